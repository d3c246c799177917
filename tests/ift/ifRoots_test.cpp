#include "ift/core/ifRoots.h"

#include "support.h"

namespace {

using seedforest::detail::createRoots;

// Reads a roots file for an image 5 pixels wide, with what it printed on standard output.
ifRootsPtr readText(const std::string &text, std::string *printed = nullptr) {
  const TemporaryFolder folder;
  const imImagePtr image(imCreateImage(1, imTypeGrey, 5, 3));
  const std::string path = folder.write("roots", text);
  testing::internal::CaptureStdout();
  ifRootsPtr roots(ifReadRoots(path.c_str(), image.get()));
  const std::string out = testing::internal::GetCapturedStdout();
  if (printed != nullptr)
    *printed = out;
  return roots;
}

TEST(Roots, FileRoundTrip) {
  const TemporaryFolder folder;
  const imImagePtr image(imCreateImage(1, imTypeGrey, 5, 3));
  const ifRootsPtr roots = makeRoots({{0, 1, 7}, {5, 2, 8}, {12, 3, 9}}); // values are not stored
  ifSaveRoots(folder.path("roots").c_str(), image.get(), roots.get());
  const std::string text = contentsOf(folder.path("roots"));
  EXPECT_EQ(text, "3\n0 0 1\n0 1 2\n2 2 3\n");
  std::string printed;
  const ifRootsPtr again = readText(text, &printed);
  EXPECT_EQ(printed, "read: 0 1\nread: 5 2\nread: 12 3\n");
  EXPECT_EQ(listOf(again.get()), (std::vector<Root>{{0, 1}, {5, 2}, {12, 3}}));
  const ifRoots2 wider = {roots->pixel, roots->label, roots->value, nullptr, 3};
  ifSaveRoots2(folder.path("roots2").c_str(), image.get(), &wider);
  EXPECT_EQ(contentsOf(folder.path("roots2")), text);
}

TEST(Roots, IndicesOutsideTheImageTruncateTowardsZero) {
  const TemporaryFolder folder;
  const imImagePtr image(imCreateImage(1, imTypeGrey, 5, 3));
  const ifRootsPtr roots = readText("3 -7 0 1  0 1000000000 2  2147483647 2147483647 3");
  EXPECT_EQ(listOf(roots.get()), (std::vector<Root>{{-7, 1}, {705032704, 2}, {-6, 3}}));
  ifSaveRoots(folder.path("roots").c_str(), image.get(), roots.get());
  EXPECT_EQ(contentsOf(folder.path("roots")).substr(0, 10), "3\n-2 -1 1\n");
  EXPECT_EXIT(ifVisualizeRoots(image.get(), roots.get()), testing::ExitedWithCode(1),
              "ifVisualizeRoots.*-7");
}

TEST(Roots, MissingLinesKeepTheLastNumbers) {
  const struct {
    const char *text;
    std::vector<Root> roots;
  } cases[] = {
      {"2", {{0, 0}, {0, 0}}},
      {"2 3 1 9", {{8, 9}, {8, 9}}},
      {"2 3 1 9 4", {{8, 9}, {9, 9}}},               // a line cut after x
      {"2 x 1 9", {{0, 0}, {0, 0}}},                 // never gets past the x
      {"3 1 0 5 - 2 0 6", {{1, 5}, {1, 5}, {2, 6}}}, // a lone sign costs one seed its line
  };
  for (const auto &c : cases)
    EXPECT_EQ(listOf(readText(c.text).get()), c.roots) << c.text;
}

TEST(Roots, InvalidCounts) {
  for (const char *text :
       {"", "0\n", "-1\n0 0 1\n", "x", "99999999999\n0 0 1\n", "65549\n0 0 1\n"}) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(readText(text), nullptr) << text;
    EXPECT_EQ(testing::internal::GetCapturedStderr().substr(0, 32),
              "invalid number of roots in file ");
  }
  EXPECT_EQ(readText("65548\n0 0 1\n")->n, 65548); // 65536 more lines than bytes are believed
}

TEST(Roots, FilesThatCannotBeOpened) {
  const imImagePtr image(imCreateImage(1, imTypeGrey, 5, 3));
  const ifRootsPtr roots = createRoots(0);
  EXPECT_EXIT(ifSaveRoots("no/folder", image.get(), roots.get()), testing::ExitedWithCode(1),
              "^Could not open file no/folder for writing\n$");
  EXPECT_EXIT(ifSaveRoots("/dev/full", image.get(), roots.get()), testing::ExitedWithCode(1),
              "/dev/full");
  EXPECT_EXIT(ifReadRoots("no/folder", image.get()), testing::ExitedWithCode(1),
              "^Could not open file no/folder for reading\n$");
  EXPECT_EXIT(createRoots(-1), testing::ExitedWithCode(1), "ifAllocateRoots");
}

TEST(Roots, PaintedInOrder) {
  const imImagePtr image(imCreateImage(3, imTypeColor, 3, 1));
  const ifRootsPtr roots = makeRoots({{1, 4}, {2, 5}, {1, 6}});
  const imImagePtr labels(ifVisualizeRoots(image.get(), roots.get()));
  EXPECT_EQ(labels->type, imTypeAscii);
  EXPECT_EQ(bandOf(labels.get()), (Matrix{{0, 6, 5}}));
}

} // namespace
