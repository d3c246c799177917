#include "base/outputFile.h"

#include "support.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

using namespace seedforest::detail;

namespace {

TEST(OutputFile, PadsAndKeepsOrder) {
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

TEST(Writer, StopsWhereAPartFails) {
  struct Target {
    int parts = 0;
    std::string text;
  } target;
  Writer writer(
      [](void *to, std::string_view part) {
        auto *into = static_cast<Target *>(to);
        into->text += part;
        return ++into->parts != 2; // a disk that is full once
      },
      &target);
  const std::string chunks(4 * Writer::chunk, 'x');
  writer.text(chunks);
  EXPECT_FALSE(writer.flush());
  EXPECT_EQ(target.text, chunks.substr(0, 2 * Writer::chunk));
}

bool save(const std::string &path, std::string_view text) {
  OutputFile file(path.c_str());
  if (!file.isOpen())
    return false;
  file.writer().text(text);
  return file.close();
}

TEST(OutputFile, ReplacesTheOldFileAtTheEnd) {
  const TemporaryFolder folder;
  const std::string path = folder.write("f", "old");
  chmod(path.c_str(), 0640);
  {
    OutputFile dropped(path.c_str());
    dropped.writer().text(std::string(2 * Writer::chunk, 'x'));
    EXPECT_EQ(folder.names().size(), 2);
    EXPECT_EQ(folder.names()[0].substr(0, 16), ".seedforest-tmp-");
  }
  EXPECT_EQ(folder.names(), std::vector<std::string>{"f"});
  EXPECT_EQ(contentsOf(path), "old");
  OutputFile file(path.c_str());
  file.writer().text("new");
  EXPECT_EQ(contentsOf(path), "old");
  EXPECT_TRUE(file.close());
  EXPECT_EQ(contentsOf(path), "new");
  EXPECT_EQ(folder.names(), std::vector<std::string>{"f"});
  struct stat status;
  ASSERT_EQ(stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0640);
  for (const std::string &none : {std::string(), folder.path(""), folder.path("no/f")})
    EXPECT_FALSE(save(none, "x")) << none;
}

TEST(OutputFile, LinksStay) {
  const TemporaryFolder folder;
  const auto link = [&folder](const char *target, const char *name) {
    std::filesystem::create_symlink(target, folder.path(name));
  };
  folder.write("old", "old");
  std::filesystem::create_directory(folder.path("sub"));
  link("../old", "sub/up");
  link("sub/up", "twice");
  link("sub/made", "dangling");
  link("loop", "loop");
  EXPECT_TRUE(save(folder.path("twice"), "new"));
  EXPECT_EQ(contentsOf(folder.path("old")), "new");
  EXPECT_TRUE(save(folder.path("dangling"), "made"));
  EXPECT_EQ(contentsOf(folder.path("sub/made")), "made");
  EXPECT_FALSE(save(folder.path("loop"), "x"));
  for (const char *name : {"sub/up", "twice", "dangling"})
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path(name))) << name;
}

// In a process of its own, which gives up the rights of root where it has them.
TEST(OutputFile, WithoutRightsInTheFolderItWritesInPlace) {
  const TemporaryFolder folder;
  const std::string path = folder.write("f", "old and long");
  const std::string locked = folder.write("locked", "old");
  chmod(path.c_str(), 0666);
  chmod(locked.c_str(), 0444);
  chmod(folder.path("").c_str(), 0555);
  const auto saveAll = [&] {
    constexpr uid_t nobody = 65534;
    const bool isReady = geteuid() != 0 || setuid(nobody) == 0;
    const bool isRight =
        save(path, "new") && !save(locked, "new") && !save(folder.path("g"), "new");
    std::_Exit(isReady && isRight ? 7 : 8);
  };
  EXPECT_EXIT(saveAll(), testing::ExitedWithCode(7), "");
  chmod(folder.path("").c_str(), 0755);
  EXPECT_EQ(contentsOf(path), "new");
  EXPECT_EQ(contentsOf(locked), "old");
}

// What stands behind a descriptor, whatever has been written through it before, stays.
TEST(OutputFile, DescriptorsAreAppendedTo) {
  const TemporaryFolder folder;
  std::FILE *stream = std::fopen(folder.write("f", "").c_str(), "w");
  std::fputs("before ", stream);
  std::fflush(stream);
  const std::string number = std::to_string(fileno(stream));
  EXPECT_TRUE(save("/dev/fd/" + number, "first "));
  EXPECT_TRUE(save("/proc/self/fd/" + number, "second "));
  std::filesystem::create_symlink("/dev/fd/" + number, folder.path("link"));
  EXPECT_TRUE(save(folder.path("link"), "third "));
  std::fputs("after", stream);
  std::fclose(stream);
  EXPECT_EQ(contentsOf(folder.path("f")), "before first second third after");
  EXPECT_FALSE(save("/dev/fd/987", "x"));
}

} // namespace
