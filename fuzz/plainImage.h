// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The image reader as one would write it down for a file that is whole in memory, a character and a
// number at a time. It shares nothing with the library's, which it judges.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// A header, and the samples in the order of the file.
class PlainImage {
public:
  bool accepted = false;
  char kind = 0; // '2', '5' or '6'
  std::int64_t ncols = 0, nrows = 0, maxValue = 0;
  std::vector<int> samples;

  /// Samples are read where the image has at most `mostPixels`.
  PlainImage(std::string_view file, std::int64_t mostPixels) : rest_(file) {
    accepted = readHeader() && hasSamples();
    if (accepted && npixels() <= mostPixels)
      readSamples();
  }

  std::int64_t npixels() const { return accepted ? ncols * nrows : 0; }

private:
  static constexpr std::string_view spaces = " \t\n\v\f\r";
  static constexpr std::int64_t beyond = std::int64_t{1} << 32;

  int nbands() const { return kind == '6' ? 3 : 1; }
  std::size_t nsamples() const { return static_cast<std::size_t>(ncols * nrows * nbands()); }

  void skipSpace() { rest_.remove_prefix(std::min(rest_.find_first_not_of(spaces), rest_.size())); }

  // False where there is no number; the sign that there may have been is gone.
  bool readNumber(std::int64_t &value) {
    skipSpace();
    const bool isNegative = !rest_.empty() && rest_[0] == '-';
    if (!rest_.empty() && (rest_[0] == '-' || rest_[0] == '+'))
      rest_.remove_prefix(1);
    const std::size_t end = std::min(rest_.find_first_not_of("0123456789"), rest_.size());
    std::string digits(rest_.substr(0, end));
    rest_.remove_prefix(end);
    if (digits.empty())
      return false;
    digits.erase(0, digits.find_first_not_of('0'));
    value = digits.empty() ? 0 : digits.size() > 10 ? beyond : std::stoll(digits);
    if (isNegative)
      value = -value;
    return true;
  }

  bool readHeader() {
    skipSpace();
    const std::string_view word = rest_.substr(0, rest_.find_first_of(spaces));
    if (word != "P2" && word != "P5" && word != "P6")
      return false;
    kind = word[1];
    rest_.remove_prefix(2);
    skipSpace();
    if (rest_.starts_with("#"))
      rest_.remove_prefix(std::min(rest_.find('\n'), rest_.size()));
    for (std::int64_t *field : {&ncols, &nrows, &maxValue})
      if (!readNumber(*field) || *field != static_cast<int>(*field))
        return false;
    if (!rest_.empty())
      rest_.remove_prefix(1);
    return ncols > 0 && nrows > 0 && ncols * nrows <= INT32_MAX / nbands();
  }

  bool hasSamples() const { return kind == '2' || rest_.size() >= nsamples(); }

  void readSamples() {
    samples.resize(nsamples());
    for (std::size_t i = 0; i < samples.size(); ++i) {
      std::int64_t value = 0;
      if (kind == '2')
        readNumber(value);
      else
        value = static_cast<unsigned char>(rest_[i]);
      samples[i] = static_cast<int>(std::clamp<std::int64_t>(value, INT32_MIN, INT32_MAX));
    }
  }

  std::string_view rest_;
};
