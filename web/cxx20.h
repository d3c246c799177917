// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// What the C++ library of older emscripten releases lacks of C++20, as far as it is used here: included
// in front of every source when compiling for the browser with one of these.
#pragma once

#include <version>
#ifndef __cpp_lib_ranges

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <iterator>

namespace std::ranges {

template <class Range, class Value>
auto find(Range &&range, const Value &value) {
  return std::find(std::begin(range), std::end(range), value);
}

template <class Range, class Condition>
auto find_if(Range &&range, Condition condition) {
  return std::find_if(std::begin(range), std::end(range), condition);
}

template <class Range, class Condition>
bool any_of(Range &&range, Condition condition) {
  return std::any_of(std::begin(range), std::end(range), condition);
}

template <class Range, class Other>
bool equal(Range &&range, Other &&other) {
  return std::equal(std::begin(range), std::end(range), std::begin(other), std::end(other));
}

template <class Range, class Value>
auto lower_bound(Range &&range, const Value &value) {
  return std::lower_bound(std::begin(range), std::end(range), value);
}

template <class Range, class Output>
auto copy(Range &&range, Output output) {
  return std::copy(std::begin(range), std::end(range), output);
}

template <class Range, class Output, class Condition>
auto copy_if(Range &&range, Output output, Condition condition) {
  return std::copy_if(std::begin(range), std::end(range), output, condition);
}

template <class Range, class Output, class Function>
auto transform(Range &&range, Output output, Function function) {
  return std::transform(std::begin(range), std::end(range), output, function);
}

template <class Range, class Value>
void fill(Range &&range, const Value &value) {
  std::fill(std::begin(range), std::end(range), value);
}

template <class Range, class Value>
void replace(Range &&range, const Value &old, const Value &value) {
  std::replace(std::begin(range), std::end(range), old, value);
}

template <class Range>
void sort(Range &&range) {
  std::sort(std::begin(range), std::end(range));
}

template <class Range>
auto max(Range &&range) {
  return *std::max_element(std::begin(range), std::end(range));
}

template <class Range>
auto min(Range &&range) {
  return *std::min_element(std::begin(range), std::end(range));
}

template <class Range>
auto minmax(Range &&range) {
  struct {
    typename std::iterator_traits<decltype(std::begin(range))>::value_type min, max;
  } result = {min(range), max(range)};
  return result;
}

} // namespace std::ranges

namespace std {

/// Digits of a number, of which the locale here always has a point.
inline to_chars_result to_chars(char *begin, char *end, double value, chars_format, int digits) {
  return {begin + std::snprintf(begin, static_cast<size_t>(end - begin), "%.*f", digits, value),
          errc()};
}

} // namespace std

#endif
