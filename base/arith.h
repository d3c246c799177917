// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Arithmetic that is defined for all values: conversions to 32 bits that saturate or wrap, and
// sums.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

namespace seedforest::detail {

inline constexpr int maxInt = std::numeric_limits<int>::max();
inline constexpr int minInt = std::numeric_limits<int>::min();

/// The nearest 32-bit value.
constexpr int saturate(std::int64_t value) {
  return static_cast<int>(std::clamp<std::int64_t>(value, minInt, maxInt));
}

/// The low 32 bits, in two's complement.
constexpr int wrap(std::int64_t value) {
  return static_cast<int>(static_cast<std::uint32_t>(value));
}

/// The integer part, saturating; 0 for NaN.
inline int truncate(double value) {
  // Without a branch, so that loops become vector code.
  const double number = std::isnan(value) ? 0.0 : value;
  const double least = number < double{minInt} ? double{minInt} : number;
  return static_cast<int>(least > double{maxInt} ? double{maxInt} : least);
}

/// (a - b)^2, which needs up to 64 unsigned bits.
constexpr std::uint64_t squaredDifference(int a, int b) {
  const std::uint64_t d =
      a > b ? std::uint64_t(a) - std::uint64_t(b) : std::uint64_t(b) - std::uint64_t(a);
  return d * d;
}

/// a + b, at most 2^64 - 1.
constexpr std::uint64_t addSaturating(std::uint64_t a, std::uint64_t b) {
  return a + b < a ? ~std::uint64_t{0} : a + b;
}

/// The integer part of the square root of value >= 0. A double holds every int exactly and its
/// square root is correctly rounded, so truncation is exact over the whole range.
inline int truncatedSqrt(int value) {
  return static_cast<int>(std::sqrt(value));
}

/// Whether all values lie in least .. most. Without an early exit, so that it becomes vector code.
inline bool allWithin(const int *values, int n, int least, int most) {
  int outside = 0;
  for (int i = 0; i < n; ++i)
    outside |= static_cast<int>(values[i] < least) | static_cast<int>(values[i] > most);
  return outside == 0;
}

/// The least and the greatest of n >= 1 values; vector code too.
inline std::pair<int, int> rangeOf(const int *values, int n) {
  int least = values[0];
  int greatest = values[0];
  for (int i = 0; i < n; ++i) {
    least = std::min(least, values[i]);
    greatest = std::max(greatest, values[i]);
  }
  return {least, greatest};
}

} // namespace seedforest::detail
