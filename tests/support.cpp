// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "support.h"
#include "ift/core/detail/rootsTools.h"
#include "image/detail/imageTools.h"

#include <algorithm>
#include <iterator>

// Memory that cannot be had is tested too; AddressSanitizer would end the process there.
extern "C" const char *__asan_default_options() {
  return "allocator_may_return_null=1";
}

imImagePtr makeBands(const std::vector<Matrix> &bands, char type) {
  const Matrix &first = bands.front();
  imImagePtr image = blank(static_cast<int>(first[0].size()), static_cast<int>(first.size()),
                           static_cast<int>(bands.size()), type);
  for (int b = 0; b < image->nbands; ++b)
    for (int p = 0; p < image->npixels; ++p)
      image->band[b][p] = bands[b].at(p / image->ncols).at(p % image->ncols);
  image->maxValue = seedforest::detail::largestValue(image.get(), 0);
  return image;
}

Matrix bandOf(const imImage *image, int b) {
  Matrix rows;
  for (int y = 0; y < image->nrows; ++y) {
    const int *row = image->band[b] + image->row[y];
    rows.emplace_back(row, row + image->ncols);
  }
  return rows;
}

void expectImage(const char *what, imImage *image, char type, int maxValue,
                 const std::vector<Matrix> &bands) {
  SCOPED_TRACE(what);
  const imImagePtr owned(image);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->type, type);
  EXPECT_EQ(image->maxValue, maxValue);
  ASSERT_EQ(image->nbands, static_cast<int>(bands.size()));
  for (int b = 0; b < image->nbands; ++b)
    EXPECT_EQ(bandOf(image, b), bands[b]) << "band " << b;
}

imImagePtr randomImage(std::mt19937 &random, int nbands, char type, int ncols, int nrows, int lo,
                       int hi) {
  imImagePtr image = blank(ncols, nrows, nbands, type);
  for (int b = 0; b < nbands; ++b)
    std::generate_n(image->band[b], image->npixels, [&] { return pick(random, lo, hi); });
  image->maxValue = hi;
  return image;
}

ifRootsPtr makeRoots(const std::vector<Root> &roots) {
  ifRootsPtr made = seedforest::detail::createRoots(std::ssize(roots));
  for (int i = 0; i < made->n; ++i) {
    made->pixel[i] = roots[i].pixel;
    made->label[i] = roots[i].label;
    made->value[i] = roots[i].value;
  }
  return made;
}

std::vector<Root> listOf(const ifRoots *roots) {
  std::vector<Root> list;
  for (int i = 0; i < roots->n; ++i)
    list.push_back({roots->pixel[i], roots->label[i], roots->value[i]});
  return list;
}

std::string contentsOf(const std::string &path) {
  std::ifstream file(path, std::ios::binary);
  if (!file)
    return "(no such file)";
  return {std::istreambuf_iterator<char>(file), {}};
}
