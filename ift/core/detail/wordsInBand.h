// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Small words in the memory of a band.
#pragma once

#include "base/buffer.h"

#include <cstddef>
#include <cstring>

namespace seedforest::detail {

/// Bytes in the memory of a band or, where more are needed than it has, in memory of their own.
class ScratchInBand {
public:
  ScratchInBand(int *band, int npixels, std::size_t nbytes)
      : bytes_(reinterpret_cast<unsigned char *>(band)) {
    if (nbytes <= sizeof(int) * static_cast<std::size_t>(npixels))
      return;
    own_ = makeArray<unsigned char>(nbytes);
    bytes_ = own_.get();
  }

  unsigned char *bytes() const { return bytes_; }

private:
  Array<unsigned char> own_;
  unsigned char *bytes_;
};

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
