// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Buffered output of text and bytes.
#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace seedforest::detail {

class Writer {
public:
  /// Writes the next part of the output to `target`; false where that fails.
  using PutFn = bool (*)(void *target, std::string_view part);

  explicit Writer(PutFn put, void *target = nullptr) : put_(put), target_(target) {}
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

  /// Room for `count` (at most `chunk`) characters, to be filled in before the next call.
  char *room(std::size_t count) {
    if (count > chunk - used_)
      flush();
    char *at = buffer_.data() + used_;
    used_ += count;
    return at;
  }

  /// Writes out the buffer; false when any write failed. After a failure nothing more is written.
  bool flush();

  static constexpr std::size_t chunk = std::size_t{1} << 16;

private:
  void longText(std::string_view text);

  static constexpr int widest = 16; // characters of a number, all copied at once: slack in buffer_
  PutFn put_;
  void *target_;
  std::size_t used_ = 0;
  bool good_ = true;
  std::array<char, chunk + widest> buffer_;
};

/// The PutFn of a Writer that prints progress.
bool putProgress(void *, std::string_view part);

} // namespace seedforest::detail
