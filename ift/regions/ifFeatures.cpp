// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/regions/ifFeatures.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/report.h"
#include "graph/detail/graphTools.h"
#include "ift/label/detail/labelIndex.h"
#include "image/detail/imageTools.h"

#include <algorithm>
#include <cstdint>

using namespace seedforest::detail;

namespace {

// Averages over the pixels of each region; indexOf(label) is a region's index in a table of `size`.
template <class IndexOf>
class RegionAverages {
public:
  RegionAverages(const imImage *labels, std::size_t size, IndexOf indexOf)
      : labels_(labels), size_(size), indexOf_(indexOf),
        count_(makeZeroedArray<std::int64_t>(size)), sum_(makeArray<std::int64_t>(size)) {
    forEachPixel([this](int, std::size_t i) { ++count_[i]; });
  }

  // The averages of a band, by the regions' indices, 0 where there are no pixels; valid until the
  // next call.
  const std::int64_t *of(const int *band) {
    std::fill_n(sum_.get(), size_, 0);
    forEachPixel([this, band](int p, std::size_t i) { sum_[i] += band[p]; });
    for (std::size_t i = 0; i < size_; ++i)
      sum_[i] /= std::max<std::int64_t>(count_[i], 1);
    return sum_.get();
  }

  // Calls look(pixel, index of its region) for every pixel.
  template <class Look>
  void forEachPixel(Look look) const {
    for (int p = 0; p < labels_->npixels; ++p)
      look(p, indexOf_(labels_->band[0][p]));
  }

private:
  const imImage *labels_;
  std::size_t size_;
  IndexOf indexOf_;
  Array<std::int64_t> count_;
  Array<std::int64_t> sum_;
};

// value * 1000 / range, in 32 bits.
int rescale(int value, int range) {
  return wrap(std::int64_t{wrap(std::int64_t{value} * 1000)} / range);
}

struct Range {
  int min;
  int max;
};

// Rescales n >= 1 values to 0 .. 1000; zeros stay where they are all the same. Returns their range.
Range rescaleBand(const int *value, int n, int *rescaled) {
  const auto [smallest, largest] = std::minmax_element(value, value + n);
  const std::int64_t min = *smallest;
  const int range = wrap(*largest - min);
  if (range != 0)
    std::transform(value, value + n, rescaled,
                   [=](int v) { return rescale(wrap(v - min), range); });
  return {*smallest, *largest};
}

} // namespace

void ifAverageColor(const imImage *image, imImage *output, const imImage *labels) {
  requireBands("ifAverageColor", image, 0);
  requireBands("ifAverageColor", output, image->nbands);
  requireSameSize("ifAverageColor", image, output);
  requireBands("ifAverageColor", labels, 1);
  requireSameSize("ifAverageColor", image, labels);
  if (!allWithin(labels->band[0], labels->npixels, 0, labels->maxValue))
    fatal("ifAverageColor: labels outside 0 .. %d\n", labels->maxValue);
  const LabelIndex index(labels);
  RegionAverages averages(labels, index.size(), [&index](int label) { return index(label); });
  for (int b = image->nbands - 1; b >= 0; --b) { // band 0 last: it may hold the labels
    const std::int64_t *average = averages.of(image->band[b]);
    averages.forEachPixel([out = output->band[b], average](int p, std::size_t i) {
      out[p] = static_cast<int>(average[i]);
    });
  }
}

imImage *ifCreateFeaturesVector(const imImage *image) {
  requireBands("ifCreateFeaturesVector", image, 0);
  imImagePtr result = createLike(image, image->nbands, imTypeFeatures);
  for (int b = 0; b < image->nbands; ++b) {
    const Range range = rescaleBand(image->band[b], image->npixels, result->band[b]);
    progress("MAX = %d, MIN = %d\n", range.max, range.min);
  }
  result->maxValue = 1000;
  return result.release();
}

imImage *ifAddFeatureToVector(const imImage *features, const imImage *image, int band) {
  requireBands("ifAddFeatureToVector", features, 0);
  requireBands("ifAddFeatureToVector", image, 0);
  requireSameSize("ifAddFeatureToVector", features, image);
  if (band < 0 || band >= image->nbands)
    fatal("ifAddFeatureToVector: the image has no band %d\n", band);
  imImagePtr result = createLike(features, features->nbands + 1, imTypeFeatures);
  for (int b = 0; b < features->nbands; ++b)
    std::copy_n(features->band[b], features->npixels, result->band[b]);
  rescaleBand(image->band[band], image->npixels, result->band[features->nbands]);
  result->maxValue = 1000;
  return result.release();
}

ifGraph *ifComputeAverageColors(ifGraph *graph, const imImage *image) {
  requireRegions("ifComputeAverageColors", graph);
  requireBands("ifComputeAverageColors", image, 0);
  requireSameSize("ifComputeAverageColors", graph->labelImage, image);
  RegionAverages averages(graph->labelImage, static_cast<std::size_t>(graph->nVertices),
                          [](int label) { return static_cast<std::size_t>(label); });
  ifGraphPtr result = copyOf("ifComputeAverageColors", graph, image->nbands);
  for (int b = 0; b < image->nbands; ++b) {
    const std::int64_t *average = averages.of(image->band[b]);
    for (int v = 0; v < graph->nVertices; ++v)
      result->vertices[v].data[b] = static_cast<int>(average[v]);
  }
  return result.release();
}

imImage *ifAverageColorsGraphToImage(ifGraph *graph, char type) {
  requireRegions("ifAverageColorsGraphToImage", graph);
  requireData("ifAverageColorsGraphToImage", graph, graph->dataSize);
  const imImage *labels = graph->labelImage;
  imImagePtr result = createLike(labels, graph->dataSize, type);
  for (int b = 0; b < graph->dataSize; ++b)
    for (int p = 0; p < labels->npixels; ++p)
      result->band[b][p] = graph->vertices[labels->band[0][p]].data[b];
  return result.release();
}

ifGraph *ifCreateFeaturesGraph(ifGraph *graph) {
  requireGraph("ifCreateFeaturesGraph", graph);
  requireData("ifCreateFeaturesGraph", graph, graph->dataSize);
  ifGraphPtr result = copyOf("ifCreateFeaturesGraph", graph, graph->dataSize);
  const imImagePtr data = createImage(graph->dataSize, imTypeFeatures, 1, graph->nVertices);
  for (int v = 0; v < graph->nVertices; ++v)
    for (int b = 0; b < graph->dataSize; ++b)
      data->band[b][v] = graph->vertices[v].data[b];
  const imImagePtr features(ifCreateFeaturesVector(data.get()));
  for (int v = 0; v < graph->nVertices; ++v)
    for (int b = 0; b < graph->dataSize; ++b)
      result->vertices[v].data[b] = features->band[b][v];
  return result.release();
}
