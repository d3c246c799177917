// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Words for the pixels of an image with a frame around them, for floods over the 8-adjacency: the
// words of the frame say that there is nothing to do, so no neighbour needs a bounds test.
#pragma once

#include "base/buffer.h"
#include "base/inline.h"
#include "image/imImage.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace seedforest::detail {

/// The word of pixel (x, y) is at (x + 1) + (y + 1) * stride(); the end of each row is also the next
/// one's left frame.
template <class Word>
class FramedWords {
public:
  /// The number of words.
  static std::int64_t sizeFor(const imImage *image) {
    return (std::int64_t{image->ncols} + 1) * (std::int64_t{image->nrows} + 2) + 1;
  }

  /// wordOf(value) is called with the values of band 0, in raster order; sizeFor(image) fits an int.
  template <class WordOf>
  FramedWords(const imImage *image, Word frame, WordOf wordOf)
      : ncols_(image->ncols), size_(static_cast<std::size_t>(sizeFor(image))),
        words_(makeArray<Word>(size_)) {
    Word *word = std::fill_n(words_.get(), stride() + 1, frame);
    for (int y = 0; y < image->nrows; ++y) {
      const int *value = image->band[0] + image->row[y];
      word = std::transform(value, value + ncols_, word, wordOf);
      *word++ = frame;
    }
    std::fill_n(word, stride(), frame);
  }

  std::size_t size() const { return size_; }
  int stride() const { return ncols_ + 1; }
  int indexOf(int p) const { return p + p / ncols_ + stride() + 1; }
  Word *data() { return words_.get(); }
  Word &operator[](int i) { return words_[i]; }
  const Word &operator[](int i) const { return words_[i]; }

  /// Prefetches the words at i and at the places above and below it, inside the frame.
  SEEDFOREST_INLINE void prefetch(int i) const {
    const Word *word = words_.get() + i;
    prefetchAt(word - stride());
    prefetchAt(word);
    prefetchAt(word + stride());
  }

private:
  int ncols_;
  std::size_t size_;
  Array<Word> words_;
};

} // namespace seedforest::detail
