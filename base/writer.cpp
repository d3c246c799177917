// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "base/writer.h"

#include "base/report.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace seedforest::detail {

namespace {

// "00", "01", ..., "99", one after the other.
constexpr std::array<char, 200> makeDigitPairs() {
  std::array<char, 200> pairs{};
  for (std::size_t i = 0; i < pairs.size(); ++i)
    pairs[i] = static_cast<char>('0' + (i % 2 == 0 ? i / 20 : i / 2 % 10));
  return pairs;
}
constexpr std::array<char, 200> digitPairs = makeDigitPairs();

// How many decimal digits a number has. With b binary digits it has as many as the power of two
// below it, 1233 / 4096 being log10(2), or one more.
int digitsOf(std::uint32_t number) {
  constexpr std::uint32_t power[] = {1,       10,        100,        1000,        10'000,
                                     100'000, 1'000'000, 10'000'000, 100'000'000, 1'000'000'000};
  number |= 1; // zero has a digit too
  const int fewest = (std::bit_width(number) * 1233) >> 12;
  return fewest + (number >= power[fewest] ? 1 : 0);
}

} // namespace

void Writer::longText(std::string_view text) {
  while (!text.empty()) {
    const std::size_t part = std::min(text.size(), chunk);
    std::memcpy(room(part), text.data(), part);
    text.remove_prefix(part);
  }
}

void Writer::number(int value, int width) {
  std::uint32_t magnitude = value < 0 ? 0U - static_cast<std::uint32_t>(value) : value;
  const int length = std::max(digitsOf(magnitude) + (value < 0 ? 1 : 0), std::min(width, widest));
  char *at = room(static_cast<std::size_t>(length));
  std::memset(at, ' ', widest); // one store; what follows the number is written over later
  at += length;
  for (; magnitude >= 100; magnitude /= 100)
    std::memcpy(at -= 2, &digitPairs[2 * (magnitude % 100)], 2);
  if (magnitude >= 10)
    std::memcpy(at -= 2, &digitPairs[2 * magnitude], 2);
  else
    *--at = static_cast<char>('0' + magnitude);
  if (value < 0)
    *--at = '-';
}

bool Writer::flush() {
  good_ = good_ && put_(target_, {buffer_.data(), used_});
  used_ = 0;
  return good_;
}

bool putProgress(void *, std::string_view part) {
  progressText(part);
  return true;
}

} // namespace seedforest::detail
