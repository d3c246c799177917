// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "base/inputFile.h"

#include "support.h"

#include <cstdint>

using namespace seedforest::detail;

namespace {

TEST(InputFile, GivesAllBytes) {
  const TemporaryFolder folder;
  constexpr std::size_t piece = 1 << 16;
  for (const std::size_t size : {std::size_t{0}, std::size_t{5}, piece - 1, piece, 3 * piece + 7}) {
    std::string written;
    while (written.size() < size)
      written += static_cast<char>(written.size() * 31 >> 3);
    InputFile file(folder.write("f", written).c_str());
    ASSERT_TRUE(file.isOpen());
    EXPECT_EQ(file.certainBytes(), size);
    EXPECT_EQ(takeBytes(file, SIZE_MAX).view(), written);
    EXPECT_FALSE(file.hasFailed());
    EXPECT_EQ(file.size(), size);
  }
  EXPECT_FALSE(InputFile(folder.path("missing").c_str()).isOpen());
  InputFile endless("/dev/zero");
  EXPECT_EQ(takeBytes(endless, 3 * piece + 7).size, 3 * piece + 7);
}

TEST(InputFile, TellsTheEndFromAnError) {
  InputFile folder("/");
  EXPECT_FALSE(folder.hasMore());
  EXPECT_FALSE(folder.hasFailed());
  InputFile memory("/proc/self/mem"); // of which the first page is nobody's
  EXPECT_FALSE(memory.hasMore());
  EXPECT_TRUE(memory.hasFailed());
}

} // namespace
