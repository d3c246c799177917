// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Reading text: the one scanner of decimal integers, for image headers, ASCII samples, roots files
// and the command line. Its grammar is that of the %d conversion: white space, an optional sign,
// digits. Text may come in pieces; the next one is fetched only when it is needed.
#pragma once

#include "base/buffer.h"

#include <cstddef>
#include <string_view>

namespace seedforest::detail {

/// Text still to be read; scanning moves `at` towards `end`. This class holds a text that is whole
/// in memory; a derived class holds one piece at a time and fetches the next in refill().
class Text {
public:
  const char *at;
  const char *end;

  explicit Text(std::string_view text) : at(text.data()), end(text.data() + text.size()) {}
  virtual ~Text() = default;

  /// Whether there is text at `at`.
  bool hasMore() { return at != end || refill(); }

  /// Called where at == end: fetches the next piece, or returns false at the end of the text.
  virtual bool refill() { return false; }

  /// Whether the text ended because reading failed.
  virtual bool hasFailed() const { return false; }

  /// A lower bound of the number of bytes still to be read.
  virtual std::size_t certainBytes() const { return static_cast<std::size_t>(end - at); }

protected:
  Text(const Text &) = default;
  Text &operator=(const Text &) = default;
};

/// The outcome of scanning one integer; clamped: it lay outside 32 bits and took the nearest value.
enum class Scanned { nothing, exact, clamped };

/// White space as the C locale has it.
constexpr bool isSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr bool isSign(char c) {
  return c == '-' || c == '+';
}

void skipSpace(Text &text);

/// Skips everything before the next newline.
void skipLine(Text &text);

/// Scans one integer into `value`. On failure `value` is unchanged; white space and a sign without
/// digits behind it have been consumed.
Scanned scanInt(Text &text, int &value);

/// Scans up to `count` integers into `values`, as scanInt() would one by one, and returns how many
/// there were before the first failure.
std::size_t scanInts(Text &text, int *values, std::size_t count);

/// Scans a word: the characters up to the next white space, of any number; a NUL ends the word too
/// and is its last character. Empty at the end of the text.
String scanWord(Text &text);

/// Copies up to `count` bytes; returns how many, fewer only at the end of the text.
std::size_t copyBytes(Text &text, char *to, std::size_t count);

/// The next `count` bytes, or all up to the end of the text. Memory grows with the bytes read, not
/// with `count`.
struct Bytes {
  Array<char> data;
  std::size_t size = 0;

  std::string_view view() const { return {data.get(), size}; }
};
Bytes takeBytes(Text &text, std::size_t count);

} // namespace seedforest::detail
