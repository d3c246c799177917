// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "base/outputFile.h"

#include "support.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iomanip>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

using namespace seedforest::detail;

namespace {

TEST(OutputFile, PadsAndKeepsOrder) {
  const TemporaryFolder folder;
  OutputFile file(folder.path("f").c_str());
  std::ostringstream expected;
  for (int i = -100; i < 9000; ++i) { // more than a chunk
    file.writer().number(i, 5);
    expected << std::setw(5) << i;
  }
  file.writer().number(minInt, 5);
  const std::string longText(3 * Writer::chunk / 2, 'x');
  file.writer().text(longText);
  EXPECT_TRUE(file.close());
  EXPECT_TRUE(contentsOf(folder.path("f")) == expected.str() + "-2147483648" + longText);
}

TEST(Writer, StopsWhereAPartFails) {
  std::string target;
  const auto put = [](void *to, std::string_view part) {
    return static_cast<std::string *>(to)->append(part).size() != 2 * Writer::chunk;
  };
  Writer writer(put, &target); // like a disk that is full once
  writer.text(std::string(4 * Writer::chunk, 'x'));
  EXPECT_FALSE(writer.flush());
  EXPECT_EQ(target.size(), 2 * Writer::chunk);
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
    EXPECT_EQ(contentsOf(path), "old");
    EXPECT_TRUE(folder.names().begin()->starts_with(".seedforest-tmp-"));
  }
  EXPECT_EQ(folder.names(), std::set<std::string>{"f"});
  EXPECT_EQ(contentsOf(path), "old");
  EXPECT_TRUE(save(path, "new"));
  EXPECT_EQ(contentsOf(path), "new");
  EXPECT_EQ(folder.names(), std::set<std::string>{"f"});
  EXPECT_EQ(static_cast<int>(std::filesystem::status(path).permissions()), 0640);
  for (const std::string &none : {std::string(), folder.path(""), folder.path("no/f")})
    EXPECT_FALSE(save(none, "x")) << none;
}

TEST(OutputFile, LinksStay) {
  const TemporaryFolder folder;
  folder.write("old", "old");
  std::filesystem::create_directory(folder.path("sub"));
  const char *links[][2] = {
      {"sub/up", "../old"}, {"twice", "sub/up"}, {"dangling", "sub/made"}, {"loop", "loop"}};
  for (const auto &[name, target] : links)
    std::filesystem::create_symlink(target, folder.path(name));
  EXPECT_TRUE(save(folder.path("twice"), "new"));
  EXPECT_EQ(contentsOf(folder.path("old")), "new");
  EXPECT_TRUE(save(folder.path("dangling"), "made"));
  EXPECT_EQ(contentsOf(folder.path("sub/made")), "made");
  EXPECT_FALSE(save(folder.path("loop"), "x"));
  for (const auto &link : links)
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path(link[0]))) << link[0];
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
