// Reading text: the one scanner of decimal integers, for image headers, ASCII samples, roots files
// and the command line. Its grammar is that of the %d conversion: white space, an optional sign,
// digits. Text may come in pieces; none is asked for before it is needed.
#pragma once

#include "base/buffer.h"

#include <cstddef>
#include <string_view>

namespace seedforest::detail {

/// Text still to be read; scanning moves `at` towards `end`. This one is in memory whole; others
/// have only a part of theirs at hand, and more when it is asked for.
class Text {
public:
  const char *at;
  const char *end;

  explicit Text(std::string_view text) : at(text.data()), end(text.data() + text.size()) {}
  virtual ~Text() = default;

  /// Whether there is text at `at`.
  bool hasMore() { return at != end || refill(); }

  /// Called with nothing at hand: puts what comes next there, or returns false at the end.
  virtual bool refill() { return false; }

  /// Whether the end is where reading failed.
  virtual bool hasFailed() const { return false; }

  /// How many more bytes there are at least.
  virtual std::size_t certainBytes() const { return static_cast<std::size_t>(end - at); }

protected:
  Text(const Text &) = default;
  Text &operator=(const Text &) = default;
};

/// What came of scanning one integer. A clamped one lay outside 32 bits and took the nearest value.
enum class Scanned { nothing, exact, clamped };

/// White space as the C locale has it.
constexpr bool isSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr bool isSign(char c) {
  return c == '-' || c == '+';
}

void skipSpace(Text &text);

/// Skips what stands before the next newline.
void skipLine(Text &text);

/// Scans one integer into `value`. On failure `value` stays as it is, and what was consumed stays
/// consumed: the white space and, where no digit follows it, a sign.
Scanned scanInt(Text &text, int &value);

/// Scans up to `count` integers into `values`, as scanInt() would one by one, and returns how many
/// there were before the first failure.
std::size_t scanInts(Text &text, int *values, std::size_t count);

/// Scans a word: what stands between white space, of any length; a NUL ends it too, and is its last
/// character. Empty at the end of the text.
String scanWord(Text &text);

/// Copies up to `count` bytes; returns how many there were.
std::size_t copyBytes(Text &text, char *to, std::size_t count);

/// The next `count` bytes, or all that there are. Memory grows with what there is, never with what
/// is asked for.
struct Bytes {
  Array<char> data;
  std::size_t size = 0;

  std::string_view view() const { return {data.get(), size}; }
};
Bytes takeBytes(Text &text, std::size_t count);

} // namespace seedforest::detail
