// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/ifRoots.h"

#include "ift/core/detail/rootsTools.h"
#include "support.h"

namespace {

const imImagePtr image = blank(5, 3);

ifRootsPtr readText(const std::string &text) {
  const TemporaryFolder folder;
  return ifRootsPtr(ifReadRoots(folder.write("roots", text).c_str(), image.get()));
}

TEST(Roots, FileRoundTrip) {
  const TemporaryFolder folder;
  const std::string path = folder.path("roots");
  const ifRootsPtr roots = makeRoots({{0, 1, 7}, {5, 2, 8}, {12, 3, 9}}); // values are not stored
  ifSaveRoots(path.c_str(), image.get(), roots.get());
  EXPECT_EQ(contentsOf(path), "3\n0 0 1\n0 1 2\n2 2 3\n");
  ifRootsPtr again;
  EXPECT_EQ(printedBy([&] { again = readText(contentsOf(path)); }),
            "read: 0 1\nread: 5 2\nread: 12 3\n");
  EXPECT_EQ(listOf(again.get()), (std::vector<Root>{{0, 1}, {5, 2}, {12, 3}}));
  const ifRoots2 wider = {roots->pixel, roots->label, roots->value, nullptr, 2};
  ifSaveRoots2(path.c_str(), image.get(), &wider);
  EXPECT_EQ(contentsOf(path), "2\n0 0 1\n0 1 2\n");
}

TEST(Roots, IndicesOutsideTheImageTruncateTowardsZero) {
  const TemporaryFolder folder;
  const std::string path = folder.path("roots");
  const ifRootsPtr roots = readText("3 -7 0 1  0 1000000000 2  2147483647 2147483647 3");
  EXPECT_EQ(listOf(roots.get()), (std::vector<Root>{{-7, 1}, {705032704, 2}, {-6, 3}}));
  ifSaveRoots(path.c_str(), image.get(), roots.get());
  EXPECT_EQ(contentsOf(path).substr(0, 10), "3\n-2 -1 1\n");
}

TEST(Roots, MoreThanAnIntCountsAreNotMade) {
  EXPECT_FATAL(seedforest::detail::createRoots(std::int64_t{maxInt} + 1), "^could not allocate");
}

TEST(Roots, FaultyFiles) {
  const std::pair<const char *, std::vector<Root>> cases[] = {
      {"2", {{0, 0}, {0, 0}}}, // missing lines keep the last numbers
      {"2 3 1 9", {{8, 9}, {8, 9}}},
      {"2 3 1 9 4", {{8, 9}, {9, 9}}},               // a line cut after x
      {"2 x 1 9", {{0, 0}, {0, 0}}},                 // never gets past the x
      {"3 1 0 5 - 2 0 6", {{1, 5}, {1, 5}, {2, 6}}}, // a lone sign costs one seed its line
  };
  for (const auto &[text, roots] : cases)
    EXPECT_EQ(listOf(readText(text).get()), roots) << text;
  for (const char *text : {"", "0\n", "-1\n0 0 1\n", "x", "99999999999\n0 0 1\n", "65549\n0 0 1\n"})
    EXPECT_EQ(errorsOf([&] { EXPECT_EQ(readText(text), nullptr) << text; }).substr(0, 32),
              "invalid number of roots in file ");
  EXPECT_EQ(readText("65548\n0 0 1\n")->n, 65548); // 65536 more lines than bytes are believed
}

TEST(Roots, AFileThatFailsEndsWithALine) {
  EXPECT_FATAL(ifReadRoots("/proc/self/mem", image.get()), "^ifReadRoots: .*/proc/self/mem");
}

TEST(Roots, PaintedInOrder) {
  const ifRootsPtr roots = makeRoots({{1, 4}, {2, 5}, {1, 6}});
  const imImagePtr labels(ifVisualizeRoots(blank(3, 1, 3).get(), roots.get()));
  EXPECT_EQ(labels->type, imTypeAscii);
  EXPECT_EQ(bandOf(labels), (Matrix{{0, 6, 5}}));
}

} // namespace
