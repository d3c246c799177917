#include "image/imMorph.h"

#include "base/arith.h"
#include "base/report.h"

#include <algorithm>
#include <cstdint>

using namespace seedforest::detail;

namespace {

using MorphFn = void (*)(const imImage *in, imImage *out, int s);

constexpr int leastStart = -1000000; // where the search for a maximum starts
constexpr int mostStart = 1000000;   // and that for a minimum

void requireOutput(const char *operation, const imImage *in, const imImage *out, int nbands) {
  requireBands(operation, in, 0);
  requireBands(operation, out, nbands);
  requireSameSize(operation, in, out);
}

void requireOutput(const char *operation, const imImage *in, const imImage *out) {
  requireBands(operation, in, 0);
  requireOutput(operation, in, out, in->nbands);
}

// The best value of the disc around each pixel, row by row of the disc.
template <class Best>
void overDisc(const imImage *in, imImage *out, int s, int start, Best best) {
  const int reach = s < 0 ? -1 : std::min(truncatedSqrt(s), in->nrows - 1);
  out->maxValue = leastStart;
  for (int b = 0; b < in->nbands; ++b)
    for (int y = 0; y < in->nrows; ++y)
      for (int x = 0; x < in->ncols; ++x) {
        int found = start;
        for (int dy = -reach; dy <= reach; ++dy) {
          if (y + dy < 0 || y + dy >= in->nrows)
            continue;
          const int width = std::min(truncatedSqrt(s - dy * dy), in->ncols - 1);
          const int *row = in->band[b] + in->row[y + dy];
          for (int q = std::max(x - width, 0); q <= std::min(x + width, in->ncols - 1); ++q)
            found = best(found, row[q]);
        }
        out->band[b][x + out->row[y]] = found;
        out->maxValue = std::max(out->maxValue, found);
      }
}

void twice(const imImage *in, imImage *out, int s, MorphFn first, MorphFn second) {
  const imImagePtr between = createImage(in->nbands, in->type, in->ncols, in->nrows);
  first(in, between.get(), s);
  second(between.get(), out, s);
}

void alternate(const imImage *in, imImage *out, int n, const char *line, MorphFn first,
               MorphFn second) {
  const imImagePtr a = createImage(in->nbands, in->type, in->ncols, in->nrows);
  const imImagePtr b = requireMade(imCopyImage(in));
  for (int i = 1; i <= n; ++i) {
    progress(line, i);
    first(b.get(), a.get(), i);
    second(a.get(), b.get(), i);
  }
  for (int k = 0; k < in->nbands; ++k)
    std::copy_n(b->band[k], in->npixels, out->band[k]);
}

} // namespace

void imMorphDilate(const imImage *in, imImage *out, int s) {
  requireOutput("imMorphDilate", in, out);
  overDisc(in, out, s, leastStart, [](int a, int b) { return std::max(a, b); });
}

void imMorphErode(const imImage *in, imImage *out, int s) {
  requireOutput("imMorphErode", in, out);
  overDisc(in, out, s, mostStart, [](int a, int b) { return std::min(a, b); });
}

void imMorphOpen(const imImage *in, imImage *out, int s) {
  requireOutput("imMorphOpen", in, out);
  twice(in, out, s, imMorphErode, imMorphDilate);
}

void imMorphClose(const imImage *in, imImage *out, int s) {
  requireOutput("imMorphClose", in, out);
  twice(in, out, s, imMorphDilate, imMorphErode);
}

void imMorphAsfCO(const imImage *in, imImage *out, int n) {
  requireOutput("imMorphAsfCO", in, out);
  alternate(in, out, n, "squared radius is %d\n", imMorphClose, imMorphOpen);
}

void imMorphAsfOC(const imImage *in, imImage *out, int n) {
  requireOutput("imMorphAsfOC", in, out);
  alternate(in, out, n, "radius is %d\n", imMorphOpen, imMorphClose);
}

// Clamping a neighbour's place to the image leads to another neighbour or to the pixel itself,
// which do no harm: so all rows are alike, and the inner columns make a loop that compilers turn
// into vector code.
void imMorphGrad(const imImage *in, imImage *out) {
  requireBands("imMorphGrad", in, 0);
  requireOutput("imMorphGrad", in, out, std::min(in->nbands, 1));
  int largest = -1;
  const int last = in->ncols - 1;
  for (int b = 0; b < in->nbands; ++b)
    for (int y = 0; y < in->nrows; ++y) {
      const int *row = in->band[b] + in->row[y];
      const int *above = in->band[b] + in->row[std::max(y - 1, 0)];
      const int *below = in->band[b] + in->row[std::min(y + 1, in->nrows - 1)];
      int *gradient = out->band[0] + out->row[y];
      const auto look = [=, &largest](int left, int x, int right) {
        int hi = row[x];
        int lo = row[x];
        for (const int *line : {above, row, below})
          for (const int column : {left, x, right}) {
            hi = std::max(hi, line[column]);
            lo = std::min(lo, line[column]);
          }
        const int g = saturate(std::int64_t{hi} - lo);
        gradient[x] = std::max(gradient[x], g);
        largest = std::max(largest, g);
      };
      look(0, 0, std::min(1, last));
      for (int x = 1; x < last; ++x)
        look(x - 1, x, x + 1);
      look(std::max(last - 1, 0), last, last);
    }
  out->maxValue = largest;
}
