// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/regions/ifRegionData.h"

#include "graphs.h"
#include "ift/regions/ifFeatures.h"

namespace {

ifGraphPtr regions(const Matrix &labels) {
  return ifGraphPtr(createGraph(makeImage(labels).get(), 0));
}

TEST(RegionData, OfSetsThatMerge) {
  const imImagePtr image = makeBands({{{90, 110, 90}}, {{51, 50, 70}}, {{-1, 0, 5}}}, imTypeColor);
  const struct {
    void (*init)(ufUnionFind *, const imImage *);
    ufMergeFn update;
    int (*weight)(const imImage *, ufUnionFind *, int, int);
    int dataSize;
    std::vector<int> merged;
    int returned, weight0, weight1; // between 0 or 1 of the region {0, 1} and the pixel 2
  } cases[] = {
      {ifInitAreaData, ifUpdateAreaData, ifEdgeWeightArea, 1, {2}, 1, 1, 1},
      // At p = 0: 2 * 90 - 200 and 90 - 90; at p = 2 the same values; at p = 1: 20 and 20.
      {ifInitVolumeData, ifUpdateVolumeData, ifEdgeWeightVolume, 2, {2, 200}, 90, -20, 20},
      // Means (100, 50, 0) and (90, 70, 5).
      {ifInitColorData, ifUpdateColorData, ifEdgeWeightColor, 4, {2, 200, 101, -1}, 1, 20, 20},
  };
  for (const auto &c : cases) {
    ufUnionFind uf;
    ufStartUnionFind(&uf, 3, c.dataSize);
    c.init(&uf, image.get());
    uf.merge = c.update;
    ufLink(&uf, 0, 1);
    EXPECT_EQ(std::vector<int>(uf.elems[1].data, uf.elems[1].data + c.dataSize), c.merged);
    EXPECT_EQ(c.weight(image.get(), &uf, 0, 2), c.weight0);
    EXPECT_EQ(c.weight(image.get(), &uf, 1, 2), c.weight1);
    EXPECT_EQ(c.update(uf.elems, 2, 0), c.returned);
    ufReleaseUnionFind(&uf);
  }
}

TEST(RegionData, OfGraphs) {
  const ifGraphPtr graph = regions({{0, 2, 2}, {0, 2, 3}});
  insertEdge(graph.get(), 0, 2, 7);
  const imImagePtr image = makeImage({{1, 2, 3}, {4, minInt, 9}});
  ifGraphPtr area, volume;
  const std::string printed = printedBy([&] {
    area.reset(ifComputeArea(graph.get()));
    volume.reset(ifComputeVolume(graph.get(), image.get()));
  });
  const std::string lines = "will copy base graph 4\ndone!!!!\n";
  EXPECT_EQ(printed, lines + lines);
  EXPECT_EQ(dataOf(area), (Matrix{{2}, {0}, {3}, {1}}));
  EXPECT_EQ(dataOf(volume), (Matrix{{13}, {0}, {maxInt}, {0}}));
  EXPECT_EQ(listsOf(area.get()), listsOf(graph.get()));
}

TEST(Features, Averages) {
  const imImagePtr image = makeImage({{10, 11, 20}, {-7, -8, 20}});
  const Matrix labels = {{1, 1, 3}, {0, 0, 3}};
  const Matrix averages = {{10, 10, 20}, {-7, -7, 20}};
  const imImagePtr output(imCopyImage(image.get()));
  ifAverageColor(output.get(), output.get(), makeImage(labels).get());
  EXPECT_EQ(bandOf(output), averages);
  const imImagePtr far =
      makeImage({{5, 2000000000, 2000000000}}); // a label far beyond the number of pixels
  ifAverageColor(far.get(), far.get(), far.get());
  EXPECT_EQ(bandOf(far), (Matrix{{5, 2000000000, 2000000000}}));

  const imImagePtr two = makeBands({{{0, 1, 1}}, {{-9, 8, 4}}}, imTypeWork);
  ifAverageColor(two.get(), two.get(), two.get()); // the labels are painted over last
  EXPECT_EQ(bandOf(two, 0), (Matrix{{0, 1, 1}}));
  EXPECT_EQ(bandOf(two, 1), (Matrix{{-9, 6, 6}}));
  const imImagePtr own = makeBands({{{0, 2, 2}}, {{7, 7, 7}}}, imTypeWork);
  ifAverageColor(makeBands({{{1000, 10, 20}}, {{1, 2, 4}}}, imTypeWork).get(), own.get(),
                 own.get());
  EXPECT_EQ(bandOf(own, 0), (Matrix{{1000, 15, 15}}));
  EXPECT_EQ(bandOf(own, 1), (Matrix{{1, 3, 3}}));

  const ifGraphPtr graph(ifComputeAverageColors(regions(labels).get(), image.get()));
  EXPECT_EQ(dataOf(graph), (Matrix{{-7}, {10}, {0}, {20}}));
  const imImagePtr painted(ifAverageColorsGraphToImage(graph.get(), imTypeGrey));
  EXPECT_EQ(bandOf(painted), averages);
  EXPECT_EQ(painted->type, imTypeGrey);
}

TEST(Features, OfNothing) {
  const imImagePtr none = blank(3, 1, 0);
  const imImagePtr labels = makeImage({{0, 2, 2}});
  ifAverageColor(none.get(), none.get(), labels.get());
  const imImagePtr features(ifCreateFeaturesVector(none.get()));
  EXPECT_EQ(features->nbands, 0);
  EXPECT_EQ(features->maxValue, 1000);
  const ifGraphPtr averages(ifComputeAverageColors(regions({{0, 2, 2}}).get(), none.get()));
  EXPECT_EQ(averages->dataSize, 0);
  const ifGraphPtr rescaled(ifCreateFeaturesGraph(averages.get()));
  EXPECT_EQ(rescaled->nVertices, 3);
  EXPECT_EQ(imImagePtr(ifAverageColorsGraphToImage(rescaled.get(), imTypeWork))->nbands, 0);
}

TEST(Features, Rescaled) {
  const std::tuple<Matrix, Matrix, std::string> cases[] = {
      {{{0, 5, 10}}, {{0, 500, 1000}}, "MAX = 10, MIN = 0\n"},
      {{{4, 4}}, {{0, 0}}, "MAX = 4, MIN = 4\n"},
      {{{0, 3000000}}, {{0, -431}}, "MAX = 3000000, MIN = 0\n"}, // 3000000000 wraps around
  };
  imImage *rescaled = nullptr;
  for (const auto &[values, expected, line] : cases) {
    const imImagePtr image = makeImage(values);
    EXPECT_EQ(printedBy([&] { rescaled = ifCreateFeaturesVector(image.get()); }), line);
    expectImage("", rescaled, imTypeFeatures, 1000, {expected});
    const imImagePtr two = makeBands({values, values}, imTypeWork);
    std::fill_n(two->band[0], two->npixels, 9);
    EXPECT_EQ(printedBy([&] { rescaled = ifAddFeatureToVector(two.get(), two.get(), 1); }), "");
    expectImage("", rescaled, imTypeFeatures, 1000,
                {{std::vector<int>(values[0].size(), 9)}, values, expected});
  }
  const ifGraphPtr graph = withData({{10, 0}, {11, -1}, {12, -4}}, {});
  ifGraphPtr features;
  EXPECT_EQ(printedBy([&] { features.reset(ifCreateFeaturesGraph(graph.get())); }),
            "MAX = 12, MIN = 10\nMAX = 0, MIN = -4\n");
  EXPECT_EQ(dataOf(features), (Matrix{{0, 1000}, {500, 750}, {1000, 0}}));
}

} // namespace
