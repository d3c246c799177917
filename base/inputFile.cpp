// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "base/inputFile.h"

#include <algorithm>
#include <cerrno>

#if __has_include(<unistd.h>)
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace seedforest::detail {

namespace {

constexpr std::size_t pieceSize = std::size_t{1} << 16;

#if __has_include(<unistd.h>)

// Reads at most a piece and returns the number of bytes, which may be smaller: a pipe is not waited
// for until the piece is full. 0 at the end and for a directory, negative where reading failed.
std::ptrdiff_t readPiece(std::FILE *stream, char *to) {
  for (;;) {
    const ssize_t count = read(fileno(stream), to, pieceSize);
    if (count >= 0 || errno != EINTR)
      return count < 0 && errno == EISDIR ? 0 : count;
  }
}

// The bytes behind the read position of a regular file; 0 for pipes, devices and the like.
std::size_t bytesAhead(std::FILE *stream) {
  struct stat status;
  const int file = fileno(stream);
  if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode))
    return 0;
  return static_cast<std::size_t>(std::max<off_t>(status.st_size - lseek(file, 0, SEEK_CUR), 0));
}

#else

std::ptrdiff_t readPiece(std::FILE *stream, char *to) {
  const std::size_t count = std::fread(to, 1, pieceSize, stream);
  return count == 0 && std::ferror(stream) != 0 ? -1 : static_cast<std::ptrdiff_t>(count);
}

std::size_t bytesAhead(std::FILE *) {
  return 0;
}

#endif

} // namespace

InputFile::InputFile(const char *path)
    : Text(std::string_view()), stream_(std::fopen(path, "r")), piece_(makeArray<char>(pieceSize)) {
}

bool InputFile::refill() {
  if (ended_)
    return false;
  const std::ptrdiff_t count = readPiece(stream_.get(), piece_.get());
  failed_ = count < 0;
  ended_ = count <= 0;
  at = piece_.get();
  end = at + std::max<std::ptrdiff_t>(count, 0);
  size_ += static_cast<std::size_t>(end - at);
  return !ended_;
}

std::size_t InputFile::certainBytes() const {
  return Text::certainBytes() + bytesAhead(stream_.get());
}

} // namespace seedforest::detail
