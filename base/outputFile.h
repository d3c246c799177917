// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Writing files. A regular file is replaced as a whole: readers find the old one or the new one,
// never a part.
#pragma once

#include "base/writer.h"

#include <cstdio>
#include <memory>
#include <string_view>

namespace seedforest::detail {

class Replacement;

/// A file being written.
///
/// A regular file, or one that does not exist yet, is written in its folder under a temporary name
/// (".seedforest-tmp-" and 13 random letters or digits), and close() renames it over the old one.
/// The new file has the old one's permissions, and its owner and group where that is allowed; other
/// hard links keep the old file. Where the path is a symbolic link, its target is replaced or
/// created and the link stays. Until close() succeeds the old file is unchanged. There is no
/// fsync(): after a power cut the file may be the old one, the new one or, on some file systems,
/// empty.
///
/// Written in place are: devices, pipes and the like; a file in a folder where no file can be made,
/// given the old one's permissions or put in its place; every file on systems without POSIX. A path
/// that names a descriptor of the process ("/dev/stdout", "/dev/fd/N", "/proc/self/fd/N") is written
/// where that descriptor stands, behind what the process has written on standard output.
class OutputFile {
public:
  explicit OutputFile(const char *path);

  /// Without a successful close(), removes the temporary file.
  ~OutputFile();

  bool isOpen() const { return stream_ != nullptr; }
  Writer &writer() { return writer_; }

  /// Flushes, closes and puts the file into its place; false when anything failed since the file
  /// was opened.
  bool close();

private:
  struct Close {
    void operator()(std::FILE *stream) const { std::fclose(stream); }
  };

  std::unique_ptr<Replacement> replacement_; // null for a file that is written in place
  std::unique_ptr<std::FILE, Close> stream_;
  Writer writer_;
};

/// Removes the temporary files of all OutputFiles of the process, or of 64 of them where there are
/// more. Safe in a signal handler.
void removeUnfinishedFiles();

} // namespace seedforest::detail
