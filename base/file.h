// Files: loading one whole, and writing one through a buffer with every failure noticed.
#pragma once

#include "base/buffer.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

namespace seedforest::detail {

/// The bytes of a file.
struct Bytes {
  Array<char> data;
  std::size_t size = 0;

  std::string_view view() const { return {data.get(), size}; }
};

/// How many of a file's bytes its reader has use for, judged by the first of them; `allBytes` when
/// these do not tell.
using WantedBytesFn = std::size_t (*)(std::string_view start);
inline constexpr std::size_t allBytes = SIZE_MAX;

/// Loads a file, from its start to its end or until `wanted` is satisfied, whichever comes first.
/// Files that cannot seek are welcome; a directory, or a file that cannot be read on, ends there.
/// Memory grows with what has been read, never with what the file says of itself.
/// Returns false when the file cannot be opened.
bool loadFile(const char *path, WantedBytesFn wanted, Bytes &bytes);

/// Text and bytes on their way to a stream, which the caller owns.
class Writer {
public:
  explicit Writer(std::FILE *stream) : stream_(stream) {}
  Writer(const Writer &) = delete;
  Writer &operator=(const Writer &) = delete;

  void text(std::string_view text) {
    if (text.size() > chunk || text.size() > chunk - used_)
      return longText(text);
    std::memcpy(buffer_.data() + used_, text.data(), text.size());
    used_ += text.size();
  }

  /// A decimal integer, right-aligned with blanks in at least `width` (at most 16) characters.
  void number(int value, int width = 0);

  /// Room for `count` (at most `chunk`) characters, which the caller fills in at once.
  char *room(std::size_t count) {
    if (count > chunk - used_)
      flush();
    char *at = buffer_.data() + used_;
    used_ += count;
    return at;
  }

  /// Hands everything to the stream; false when anything failed since the start.
  bool flush();

  static constexpr std::size_t chunk = std::size_t{1} << 16;

private:
  void longText(std::string_view text);

  static constexpr int widest = 16; // of a number; it is stored whole, so the buffer has some slack
  std::FILE *stream_;
  std::size_t used_ = 0;
  bool good_ = true;
  std::array<char, chunk + widest> buffer_;
};

/// A file being written: created, or emptied, by the constructor.
class OutputFile {
public:
  explicit OutputFile(const char *path) : stream_(std::fopen(path, "w")), writer_(stream_.get()) {}

  bool isOpen() const { return stream_ != nullptr; }
  Writer &writer() { return writer_; }

  /// Flushes and closes; false when anything failed since the file was opened.
  bool close();

private:
  struct Close {
    void operator()(std::FILE *stream) const { std::fclose(stream); }
  };
  std::unique_ptr<std::FILE, Close> stream_;
  Writer writer_;
};

} // namespace seedforest::detail
