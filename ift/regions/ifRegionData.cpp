// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/regions/ifRegionData.h"

#include "base/arith.h"
#include "base/report.h"
#include "base/require.h"
#include "graph/detail/graphTools.h"
#include "graph/detail/linkSize.h"
#include "image/detail/imageTools.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

using namespace seedforest::detail;

namespace {

constexpr int areaSize = 1;
constexpr int volumeSize = 2;
constexpr int colorSize = 4;

void increase(int &sum, std::int64_t by) {
  sum = saturate(sum + by);
}

void requireDataSize(const char *operation, int dataSize, int size) {
  if (dataSize < size)
    fatal("%s: elements with %d integers where %d are needed\n", operation, dataSize, size);
}

void requireDataSize(const char *operation, const ufUnionFind *uf, int size) {
  requireGiven(operation, "union/find", uf);
  requireDataSize(operation, uf->dataSize, size);
}

// Sets the data of each pixel: an area of 1, then its values in the first size - 1 bands.
void initData(const char *operation, ufUnionFind *uf, const imImage *image, int size) {
  requireDataSize(operation, uf, size);
  requireBands(operation, image, size - 1);
  if (uf->n < image->npixels)
    fatal("%s: %d elements for %d pixels\n", operation, uf->n, image->npixels);
  for (int p = 0; p < image->npixels; ++p) {
    int *data = uf->elems[p].data;
    data[0] = 1;
    for (int b = 1; b < size; ++b)
      data[b] = image->band[b - 1][p];
  }
}

void addData(const char *operation, ufElement *elems, int a, int b, int size) {
  if (const int dataSize = dataSizeOfLink(); dataSize >= 0)
    requireDataSize(operation, dataSize, size);
  for (int i = 0; i < size; ++i)
    increase(elems[a].data[i], elems[b].data[i]);
}

const int *dataOf(ufUnionFind *uf, int p) {
  return uf->elems[ufFindSet(uf, p)].data;
}

// The smaller of measure(data) for the regions of p and of q.
template <class Measure>
int smallerOf(ufUnionFind *uf, int p, int q, Measure measure) {
  return saturate(std::min<std::int64_t>(measure(dataOf(uf, p)), measure(dataOf(uf, q))));
}

// A copy of the graph with the sums, over the pixels of each vertex, of measure(pixel).
template <class Measure>
ifGraphPtr sumOverRegions(const char *operation, ifGraph *graph, Measure measure) {
  requireEdges(operation, graph);
  progress("will copy base graph %d\n", graph->nVertices);
  ifGraphPtr result = copyOf(operation, graph, 1);
  progress("done!!!!\n");
  const imImage *labels = graph->labelImage;
  for (int p = 0; p < labels->npixels; ++p)
    increase(*result->vertices[labels->band[0][p]].data, measure(p));
  return result;
}

} // namespace

void ifInitAreaData(ufUnionFind *uf, const imImage *image) {
  initData("ifInitAreaData", uf, image, areaSize);
}

int ifUpdateAreaData(ufElement *elems, int a, int b) {
  addData("ifUpdateAreaData", elems, a, b, areaSize);
  return elems[b].data[0];
}

int ifEdgeWeightArea(const imImage *, ufUnionFind *uf, int p, int q) {
  requireDataSize("ifEdgeWeightArea", uf, areaSize);
  return smallerOf(uf, p, q, [](const int *data) { return data[0]; });
}

void ifInitVolumeData(ufUnionFind *uf, const imImage *image) {
  initData("ifInitVolumeData", uf, image, volumeSize);
}

int ifUpdateVolumeData(ufElement *elems, int a, int b) {
  addData("ifUpdateVolumeData", elems, a, b, volumeSize);
  return elems[b].data[1];
}

int ifEdgeWeightVolume(const imImage *image, ufUnionFind *uf, int p, int q) {
  requireBands("ifEdgeWeightVolume", image, 1);
  requireDataSize("ifEdgeWeightVolume", uf, volumeSize);
  requirePixel("ifEdgeWeightVolume", image, p);
  const std::int64_t value = image->band[0][p];
  return smallerOf(uf, p, q, [value](const int *data) { return data[0] * value - data[1]; });
}

void ifInitColorData(ufUnionFind *uf, const imImage *image) {
  initData("ifInitColorData", uf, image, colorSize);
}

int ifUpdateColorData(ufElement *elems, int a, int b) {
  addData("ifUpdateColorData", elems, a, b, colorSize);
  return elems[b].data[0];
}

int ifEdgeWeightColor(const imImage *, ufUnionFind *uf, int p, int q) {
  requireDataSize("ifEdgeWeightColor", uf, colorSize);
  const int *a = dataOf(uf, p);
  const int *b = dataOf(uf, q);
  if (a[0] == 0 || b[0] == 0)
    fatal("ifEdgeWeightColor: a region without pixels at pixel %d or %d\n", p, q);
  std::int64_t largest = 0;
  for (int i = 1; i < colorSize; ++i)
    largest = std::max(largest, std::abs(std::int64_t{a[i]} / a[0] - std::int64_t{b[i]} / b[0]));
  return saturate(largest);
}

ifGraph *ifComputeArea(ifGraph *graph) {
  requireRegions("ifComputeArea", graph);
  return sumOverRegions("ifComputeArea", graph, [](int) { return 1; }).release();
}

ifGraph *ifComputeVolume(ifGraph *graph, const imImage *image) {
  requireRegions("ifComputeVolume", graph);
  requireBands("ifComputeVolume", image, 1);
  requireSameSize("ifComputeVolume", graph->labelImage, image);
  const std::int64_t top = image->maxValue;
  const int *value = image->band[0];
  return sumOverRegions("ifComputeVolume", graph, [top, value](int p) { return top - value[p]; })
      .release();
}
