#include "base/file.h"

#include "support.h"

using namespace seedforest::detail;

namespace {

TEST(File, LoadsAcrossItsChunks) {
  const auto everything = [](std::string_view) { return allBytes; };
  const TemporaryFolder folder;
  Bytes bytes;
  for (const std::size_t size : {std::size_t{0}, std::size_t{5}, Writer::chunk - 1, Writer::chunk,
                                 Writer::chunk + 1, 3 * Writer::chunk + 7}) {
    std::string written(size, ' ');
    for (std::size_t i = 0; i < size; ++i)
      written[i] = static_cast<char>(i * 31 >> 3);
    ASSERT_TRUE(loadFile(folder.write("f", written).c_str(), everything, bytes));
    EXPECT_TRUE(bytes.view() == written) << size;
  }
  EXPECT_FALSE(loadFile(folder.path("missing").c_str(), everything, bytes));
  const auto some = [](std::string_view) { return 3 * Writer::chunk; };
  ASSERT_TRUE(loadFile("/dev/zero", some, bytes));
  EXPECT_EQ(bytes.size, 3 * Writer::chunk);
}

TEST(File, WriterPadsAndKeepsOrder) {
  const TemporaryFolder folder;
  OutputFile file(folder.path("f").c_str());
  std::string expected;
  for (int i = 0; i < 9000; ++i) { // more than a chunk
    file.writer().number(i - 100, 5);
    file.writer().text(";");
    char text[16];
    std::snprintf(text, sizeof text, "%5d;", i - 100);
    expected += text;
  }
  file.writer().number(-2147483647 - 1, 5);
  const std::string longText(3 * Writer::chunk / 2, 'x');
  file.writer().text(longText);
  EXPECT_TRUE(file.close());
  EXPECT_TRUE(contentsOf(folder.path("f")) == expected + "-2147483648" + longText);
}

TEST(File, FullDiskIsNoticed) {
  OutputFile file("/dev/full");
  ASSERT_TRUE(file.isOpen());
  file.writer().text("a few bytes that only the last flush hands on");
  EXPECT_FALSE(file.close());
}

} // namespace
