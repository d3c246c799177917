// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Small words in the memory of a band.
#pragma once

#include <cstddef>
#include <cstring>

namespace seedforest::detail {

/// Words in the memory of a band, which later receives its values: read and written as bytes.
template <class Word>
class WordsInBand {
public:
  explicit WordsInBand(int *band) : bytes_(reinterpret_cast<unsigned char *>(band)) {}
  explicit WordsInBand(unsigned char *bytes) : bytes_(bytes) {}

  unsigned char *at(int p) const { return bytes_ + sizeof(Word) * static_cast<std::size_t>(p); }
  Word operator[](int p) const {
    Word word;
    std::memcpy(&word, at(p), sizeof(Word));
    return word;
  }
  void set(int p, Word word) const { std::memcpy(at(p), &word, sizeof(Word)); }

private:
  unsigned char *bytes_;
};

} // namespace seedforest::detail
