#include "base/buffer.h"

#include "base/error.h"
#include "support.h"

#include <cstdint>

using namespace seedforest::detail;

namespace {

struct Vast {
  char bytes[std::size_t{1} << 60];
};

TEST(Buffer, MemoryThatCannotBeHadIsAnError) {
  const std::size_t beyond = PTRDIFF_MAX / sizeof(int);
  [[maybe_unused]] static const void *volatile used; // else a compiler drops the memory
  const std::function<void()> cases[] = {
      [=] { used = makeArray<int>(beyond).get(); },
      [=] { used = makeZeroedArray<int>(beyond).get(); },
      [=] { used = Vector<int>(beyond / 2).data(); },
      [] { used = makeUnique<Vast>().get(); },
  };
  for (const auto &allocate : cases) {
    EXPECT_FATAL(allocate(), "^(==.*\n)?could not allocate memory!\n$");
    const seedforest::ThrowingErrors throwing;
    EXPECT_THROW(allocate(), seedforest::OutOfMemory);
  }
}

} // namespace
