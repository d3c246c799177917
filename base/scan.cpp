#include "base/scan.h"

#include "base/arith.h"

#include <cstdint>

namespace seedforest::detail {

namespace {

constexpr bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

} // namespace

void skipSpace(Text &text) {
  while (text.at != text.end && isSpace(*text.at))
    ++text.at;
}

Scanned scanInt(Text &text, int &value) {
  skipSpace(text);
  bool negative = false;
  if (text.at != text.end && (*text.at == '-' || *text.at == '+'))
    negative = *text.at++ == '-';
  if (text.at == text.end || !isDigit(*text.at))
    return Scanned::nothing;
  constexpr std::int64_t beyond = std::int64_t{1} << 32; // past every int, and ten times it fits
  std::int64_t magnitude = 0;
  for (; text.at != text.end && isDigit(*text.at); ++text.at)
    if (magnitude < beyond)
      magnitude = magnitude * 10 + (*text.at - '0');
  const std::int64_t number = negative ? -magnitude : magnitude;
  value = saturate(number);
  return value == number ? Scanned::exact : Scanned::clamped;
}

std::size_t scanInts(Text &text, int *values, std::size_t count) {
  std::size_t n = 0;
  while (n < count && scanInt(text, values[n]) != Scanned::nothing)
    ++n;
  return n;
}

std::string_view scanWord(Text &text) {
  skipSpace(text);
  const char *start = text.at;
  while (text.at != text.end && !isSpace(*text.at))
    ++text.at;
  return {start, static_cast<std::size_t>(text.at - start)};
}

} // namespace seedforest::detail
