#include "base/buffer.h"

#include "base/error.h"
#include "support.h"

#include <cstdint>
#include <functional>

using namespace seedforest::detail;

namespace {

struct Vast {
  char bytes[std::size_t{1} << 60];
};

TEST(Buffer, MemoryThatCannotBeHadIsAnError) {
  const std::size_t beyond = PTRDIFF_MAX / sizeof(int);
  const std::function<void()> cases[] = {
      [=] { makeArray<int>(beyond); },
      [=] { makeZeroedArray<int>(beyond); },
      [=] { Vector<int>{}.reserve(beyond); },
      [] { makeUnique<Vast>(); },
  };
  for (const auto &allocate : cases) {
    EXPECT_FATAL(allocate(), "^(==.*\n)?could not allocate memory!\n$");
    const seedforest::ThrowingErrors throwing;
    EXPECT_THROW(allocate(), seedforest::OutOfMemory);
  }
}

} // namespace
