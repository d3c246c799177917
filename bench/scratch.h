// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// What keeps measurements from leaving anything behind: progress lines, temporary files.
#pragma once

#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <initializer_list>
#include <random>
#include <string>
#include <unistd.h>

/// While an object lives, standard output goes to /dev/null: progress lines then take little time
/// and do not mix with the report.
class SilentProgress {
public:
  SilentProgress() : output_(dup(STDOUT_FILENO)) {
    const int nowhere = open("/dev/null", O_WRONLY);
    std::fflush(stdout);
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
  }
  ~SilentProgress() {
    std::fflush(stdout);
    dup2(output_, STDOUT_FILENO);
    close(output_);
  }
  SilentProgress(const SilentProgress &) = delete;
  SilentProgress &operator=(const SilentProgress &) = delete;

  /// The descriptor that standard output had.
  int output() const { return output_; }

private:
  int output_;
};

/// The path of a temporary file, which the destructor removes.
class ScratchFile {
public:
  explicit ScratchFile(const std::string &ending = "")
      : path_((std::filesystem::temp_directory_path() /
               ("seedforest-bench-" + std::to_string(std::random_device{}()) + ending))
                  .string()) {}
  ~ScratchFile() { std::remove(path_.c_str()); }
  ScratchFile(const ScratchFile &) = delete;
  ScratchFile &operator=(const ScratchFile &) = delete;

  const char *path() const { return path_.c_str(); }

private:
  std::string path_;
};

/// While an object lives, the current directory is a new one in which the files named are links to
/// /dev/null: operations that write there format their images, but store nothing.
class ScratchFolder {
public:
  explicit ScratchFolder(std::initializer_list<const char *> files)
      : before_(std::filesystem::current_path()), folder_(name_.path()) {
    std::filesystem::create_directory(folder_);
    std::filesystem::current_path(folder_);
    for (const char *file : files)
      std::filesystem::create_symlink("/dev/null", file);
  }
  ~ScratchFolder() {
    std::filesystem::current_path(before_);
    std::filesystem::remove_all(folder_);
  }
  ScratchFolder(const ScratchFolder &) = delete;
  ScratchFolder &operator=(const ScratchFolder &) = delete;

private:
  ScratchFile name_;
  std::filesystem::path before_;
  std::filesystem::path folder_;
};
