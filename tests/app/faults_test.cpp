// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Whole runs of the tool, in child processes, in which one call of the system goes wrong: each call
// in turn, in every way that it can. Whatever happens, every file is the old one or the new one, and
// the run ends as it would have or with one line and status 1.
#include "documentedErrors.h"
#include "faults.h"
#include "image/imIO.h"
#include "support.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <iostream>
#include <map>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

int toolMain(int argc, const char **argv); // main() of app/main.cpp

namespace {

bool isChild = false;

} // namespace

// The search for leaks takes a hundred times longer than the runs. The calls of the library under the
// same faults are searched (api/calls_test.cpp), and so are the tool's runs without (tool_test.cpp).
extern "C" int __lsan_is_turned_off() {
  return isChild ? 1 : 0;
}

namespace {

// What a run writes is more than a buffer holds, and so is what it reads.
const std::vector<std::vector<const char *>> runs = {
    {"tool", "../plain", "old", "labels"},
    {"tool", "../plain", "link", "labels"},
    {"tool", "../plain", "new", "labels"},
    {"tool", "../plain", "old", "regMax", "0", "9"},
    {"tool", "../colour", "old", "regMin", "0", "255"},
    {"tool", "../grey", "old", "dt"},
    {"tool", "../plain", "old", "frame", "1", "7"},
    {"tool", "../plain", "old", "join", "../roots", "../roots"},
    {"tool", "../plain", "old", "cells", "1"},
};

using Files = std::map<std::string, std::string>; // names, permissions and contents, links' targets

struct Ended {
  int status; // of the exit, or minus the number of a signal
  int calls;  // of the kind that faults are put into; only where the tool's main function returned
  std::string out, err;
  Files files;
};

// From now on files end after so many bytes.
void limitFiles(rlim_t size, bool isSignalIgnored) {
  const rlimit most = {size, size};
  setrlimit(RLIMIT_FSIZE, &most);
  if (isSignalIgnored)
    signal(SIGXFSZ, SIG_IGN);
}

class ToolFaults : public testing::Test {
protected:
  ToolFaults() {
    std::mt19937 random(3);
    const auto save = [&](const char *name, int nbands, char type, int most) {
      const imImagePtr image = randomImage(random, nbands, type, 150, 100, 1, most);
      imSaveImage(folder.path(name).c_str(), image.get());
    };
    save("plain", 1, imTypeAscii, 9);
    save("colour", 3, imTypeColor, 255);
    const imImagePtr grey = randomImage(random, 1, imTypeGrey, 300, 250, 0, 1);
    imSaveImage(folder.path("grey").c_str(), grey.get());
    std::ofstream roots(folder.path("roots"));
    roots << "9000\n";
    for (int i = 0; i < 9000; ++i)
      roots << i % 150 << " " << i / 150 << " " << i << "\n";
    std::filesystem::create_directory(work);
  }

  void TearDown() override {
    for (const auto &[what, count] : tally)
      std::cout << what << ": " << count << "\n";
  }

  // What stands in the working folder before each run.
  void tidy() const {
    for (const auto &entry : std::filesystem::directory_iterator(work))
      std::filesystem::remove(entry.path());
    for (const char *name : {"work/old", "work/labeled.pgm"}) {
      folder.write(name, "precious");
      std::filesystem::permissions(folder.path(name), std::filesystem::perms(0640));
    }
    std::filesystem::create_symlink("old", work / "link");
  }

  Files files() const {
    Files files;
    for (const auto &entry : std::filesystem::directory_iterator(work)) {
      std::string &file = files[entry.path().filename().string()];
      if (entry.is_symlink())
        file = std::filesystem::read_symlink(entry.path()).string();
      else
        file = std::to_string(static_cast<int>(entry.status().permissions())) + " " +
               contentsOf(entry.path().string());
    }
    return files;
  }

  // Runs the tool in a tidy folder after `prepare`.
  Ended run(std::vector<const char *> words, const std::function<void()> &prepare) const {
    tidy();
    *calls_ = -1;
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
      isChild = true;
      const auto sendTo = [this](const char *name, int descriptor) {
        dup2(creat(folder.path(name).c_str(), 0666), descriptor);
      };
      sendTo("out", STDOUT_FILENO);
      sendTo("err", STDERR_FILENO);
      if (chdir(work.c_str()) != 0)
        _exit(99);
      prepare();
      const int status = toolMain(static_cast<int>(words.size()), words.data());
      *calls_ = endInjection();
      std::exit(status);
    }
    int ended = 0;
    waitpid(child, &ended, 0);
    return {WIFSIGNALED(ended) ? -WTERMSIG(ended) : WEXITSTATUS(ended), *calls_,
            contentsOf(folder.path("out")), contentsOf(folder.path("err")), files()};
  }

  // Every file is as before or as after a run without faults; and so is the whole outcome where the
  // status is 0. Otherwise there is one line of docs/errors.md, where no signal ended the run.
  void expectOldOrNew(Ended now, const Ended &whole) {
    tidy();
    Files old = files();
    if (now.status == -SIGKILL)
      std::erase_if(now.files, [n = 0](const auto &file) mutable {
        return file.first.starts_with(".seedforest-tmp-") && n++ == 0;
      });
    Files all = now.files;
    all.insert(old.begin(), old.end());
    for (const auto &[name, content] : all) {
      const std::string is = now.files[name]; // nothing where it is missing
      const auto made = whole.files.find(name);
      EXPECT_TRUE(is == old[name] || (made != whole.files.end() && is == made->second)) << name;
    }
    EXPECT_TRUE(now.status != 0 || (now.out == whole.out && now.files == whole.files));
    EXPECT_EQ(std::count(now.err.begin(), now.err.end(), '\n'), now.status == 1) << now.err;
    EXPECT_EQ(now.err.empty() || now.err.back() != '\n', now.status != 1) << now.err;
    EXPECT_TRUE(whole.out.starts_with(now.out));
    const auto row = std::find_if(documented.begin(), documented.end(), [&](const ErrorRow &r) {
      return r.isOnError && r.status == 1 && r.matches(now.err);
    });
    EXPECT_TRUE(now.err.empty() || row != documented.end()) << now.err;
    if (row != documented.end())
      met.insert(row->line);
  }

  // Puts a fault into each call of its kind, of each run of the tool, which may write files of some
  // size. `status` is that of all runs, or -1 where they may go well or end with an error.
  void sweep(const char *what, const Fault &fault, int status, rlim_t size = RLIM_INFINITY) {
    for (const std::vector<const char *> &words : runs) {
      const Ended whole = run(words, [&] { inject(fault, 0); });
      ASSERT_EQ(whole.status, 0) << whole.err;
      tally[what] += whole.calls;
      for (int n = 1; n <= whole.calls; ++n) {
        SCOPED_TRACE(testing::Message() << what << " " << n << ", " << words[2] << " " << words[3]);
        const Ended now = run(words, [&] {
          limitFiles(size, true);
          inject(fault, n);
        });
        const bool isEither = status == -1 && (now.status == 0 || now.status == 1);
        EXPECT_TRUE(isEither || now.status == status) << now.status << now.err;
        expectOldOrNew(now, whole);
      }
    }
    EXPECT_GT(tally[what], 0) << what;
  }

  TemporaryFolder folder;
  std::filesystem::path work = folder.path("work");
  std::vector<ErrorRow> documented = documentedErrors();
  std::set<std::string> met;        // lines of the document
  std::map<std::string, int> tally; // of the runs with a fault, by its kind

private:
  int *calls_ = static_cast<int *>(
      mmap(nullptr, sizeof(int), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
};

TEST_F(ToolFaults, EndInALine) {
  const std::pair<const char *, Fault> faults[] = {
      {"open, EIO", {Call::open, Effect::fail, EIO}},
      {"open, EDQUOT", {Call::open, Effect::fail, EDQUOT}},
      {"read, EIO", {Call::read, Effect::fail, EIO}},
      {"write, EIO", {Call::write, Effect::fail, EIO}},
      {"write, ENOSPC", {Call::write, Effect::fail, ENOSPC}},
      {"write, half, then EDQUOT", {Call::write, Effect::cutShort, EDQUOT}},
      {"close, EIO", {Call::close, Effect::fail, EIO}},
      {"close, EDQUOT", {Call::close, Effect::fail, EDQUOT}},
      {"rename, EIO", {Call::rename, Effect::fail, EIO}},
      {"rename, ENOSPC", {Call::rename, Effect::fail, ENOSPC}},
  };
  for (const auto &[what, fault] : faults)
    sweep(what, fault, 1);
}

TEST_F(ToolFaults, AreOvercome) {
  sweep("read, EINTR", {Call::read, Effect::fail, EINTR}, 0);
  sweep("read, half", {Call::read, Effect::cutShort, 0}, 0);
  sweep("write, EINTR", {Call::write, Effect::fail, EINTR}, 0);
  sweep("write, half, then EINTR", {Call::write, Effect::cutShort, EINTR}, 0);
}

TEST_F(ToolFaults, LeaveOldOrNew) {
  sweep("allocate", {Call::allocate, Effect::fail, ENOMEM}, -1);
  sweep("other, EIO", {Call::other, Effect::fail, EIO}, -1);
  sweep("other, EPERM", {Call::other, Effect::fail, EPERM}, -1);
  sweep("other, EIO, then a file too large", {Call::other, Effect::fail, EIO}, -1, 512);
  expectOldOrNew(run(runs[0],
                     [] {
                       inject({Call::draw, Effect::fail, EIO}, 1);
                     }),
                 run(runs[0], [] {}));
  for (const ErrorRow &row : documented)
    EXPECT_TRUE(!row.isAboutMemory() || met.contains(row.line)) << row.line;
}

TEST_F(ToolFaults, Signals) {
  for (const int signal : {SIGINT, SIGTERM, SIGKILL})
    for (const Call call : {Call::open, Call::read, Call::write, Call::close, Call::rename})
      sweep(strsignal(signal), {call, Effect::raise, signal}, -signal);
}

TEST_F(ToolFaults, FileSizeLimit) {
  for (const std::vector<const char *> &words : runs) {
    const Ended whole = run(words, [] {});
    for (const rlim_t limit : {512, 4096, 65536, 70000, 100000})
      for (const bool isIgnored : {false, true}) {
        SCOPED_TRACE(testing::Message() << limit << " " << words[2] << " " << words[3]);
        const Ended now = run(words, [&] { limitFiles(limit, isIgnored); });
        EXPECT_TRUE(now.status == 0 || now.status == (isIgnored ? 1 : -SIGXFSZ)) << now.status;
        expectOldOrNew(now, whole);
        tally["file size limit, runs that failed"] += now.status != 0;
      }
  }
  EXPECT_GT(tally.begin()->second, 0);
}

TEST_F(ToolFaults, FullDisk) {
  for (const char *size : {"size=12k", "size=16k", "size=64k", "size=100k", "size=130k"}) {
    if (mount("seedforest-tests", work.c_str(), "tmpfs", 0, size) != 0)
      GTEST_SKIP() << "left out: a small file system cannot be mounted here";
    std::vector<Ended> all;
    for (const std::vector<const char *> &words : runs)
      all.push_back(run(words, [] {}));
    umount2(work.c_str(), MNT_DETACH);
    for (std::size_t i = 0; i < runs.size(); ++i) {
      SCOPED_TRACE(testing::Message() << size << " " << runs[i][2] << " " << runs[i][3]);
      EXPECT_TRUE(all[i].status == 0 || all[i].status == 1) << all[i].status;
      expectOldOrNew(all[i], run(runs[i], [] {}));
      tally["full disk, runs that failed"] += all[i].status;
    }
  }
  EXPECT_GT(tally.begin()->second, 0);
}

} // namespace
