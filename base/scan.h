// Reading text: the one scanner of decimal integers, for image headers, ASCII samples, roots files
// and the command line. Its grammar is that of the %d conversion: white space, an optional sign,
// digits.
#pragma once

#include <cstddef>
#include <string_view>

namespace seedforest::detail {

/// Text still to be read, in memory; scanning moves `at` towards `end`.
struct Text {
  const char *at;
  const char *end;
  explicit Text(std::string_view text) : at(text.data()), end(text.data() + text.size()) {}
};

/// What came of scanning one integer. A clamped one lay outside 32 bits and took the nearest value.
enum class Scanned { nothing, exact, clamped };

/// White space as the C locale has it.
constexpr bool isSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

void skipSpace(Text &text);

/// Scans one integer into `value`. On failure `value` stays as it is, and what was consumed stays
/// consumed: the white space and, where no digit follows it, a sign.
Scanned scanInt(Text &text, int &value);

/// Scans up to `count` integers into `values`, as scanInt() would one by one, and returns how many
/// there were before the first failure.
std::size_t scanInts(Text &text, int *values, std::size_t count);

/// Scans a word: what stands between white space. Empty at the end of the text.
std::string_view scanWord(Text &text);

} // namespace seedforest::detail
