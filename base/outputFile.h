// Writing files: a regular file is the old one or the new one, never a part.
#pragma once

#include "base/writer.h"

#include <cstdio>
#include <memory>
#include <string_view>

namespace seedforest::detail {

class Replacement;

/// A file being written.
///
/// A regular file, or one that is not there yet, is written beside its place, as
/// ".seedforest-tmp-" with letters behind it, and renamed over the old one by close(). It has the
/// old one's permissions, and its owner and group where that is allowed; other hard links keep the
/// old file. Where the path is a symbolic link, what it points to is replaced, there yet or not,
/// and the link stays. Until close() succeeds the old file is as it was. Nothing is forced to the
/// disk: after a power cut the file may be the old one, the new one or, on some file systems, empty.
///
/// Written in place are: devices, pipes and the like; a file in a folder where no file can be made
/// or replaced; every file on systems without POSIX. A path that names a descriptor of the process
/// ("/dev/stdout", "/dev/fd/N", "/proc/self/fd/N") is written where that descriptor stands, behind
/// what the process has written on standard output.
class OutputFile {
public:
  explicit OutputFile(const char *path);

  /// Without a successful close(), removes what was written beside the file's place.
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

  std::unique_ptr<Replacement> replacement_; // none for what is written in place
  std::unique_ptr<std::FILE, Close> stream_;
  Writer writer_;
};

/// Removes what all OutputFiles of the process are writing beside its place. For signal handlers.
void removeUnfinishedFiles();

} // namespace seedforest::detail
