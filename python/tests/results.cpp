// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Prints a checksum of what each function of the C++ interface makes of the images grey.pgm,
// color.ppm, shape.pgm and labels.pgm in the present folder; test_results.py compares the package.

#include "seedforest/seedforest.hpp"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace sf = seedforest;

namespace {

// Adler's checksum of 32-bit little-endian values.
class Checksum {
public:
  void add(int value) {
    for (int shift = 0; shift < 32; shift += 8) {
      a_ = (a_ + (static_cast<std::uint32_t>(value) >> shift & 255U)) % 65521;
      b_ = (b_ + a_) % 65521;
    }
  }
  unsigned get() const { return b_ << 16 | a_; }

private:
  unsigned a_ = 1;
  unsigned b_ = 0;
};

void print(const char *name, const Checksum &sum) {
  std::printf("%s %u\n", name, sum.get());
}

void tell(const char *name, const sf::Image &image) {
  Checksum sum;
  for (int b = 0; b < image.nbands(); ++b)
    for (const int value : image.pixels(b))
      sum.add(value);
  print(name, sum);
}

void tellMask(const char *name, const sf::Image &image) {
  Checksum sum;
  for (const int value : image.pixels())
    sum.add(value != 0);
  print(name, sum);
}

void tell(const char *name, const sf::Roots &roots) {
  Checksum sum;
  for (const sf::Root root : roots)
    for (const int value : {root.pixel, root.label, root.value})
      sum.add(value);
  print(name, sum);
}

void tell(const char *name, std::initializer_list<const sf::Image *> images) {
  Checksum sum;
  for (const sf::Image *image : images)
    for (const int value : image->pixels())
      sum.add(value);
  print(name, sum);
}

void tell(const char *name, const sf::Forest &forest) {
  tell(name, {&forest.labels, &forest.costs, &forest.predecessors});
}

void tell(const char *name, const sf::Filtered &filtered) {
  tell(name, {&filtered.image, &filtered.labels});
}

void tell(const char *name, const sf::Graph &graph) {
  Checksum sum;
  for (int v = 0; v < graph.size(); ++v)
    for (const sf::Graph::Edge edge : graph.edges(v))
      if (edge.target >= v)
        for (const int value : {v, edge.target, edge.weight})
          sum.add(value);
  for (int v = 0; v < graph.size(); ++v)
    for (const int value : graph.data(v))
      sum.add(value);
  print(name, sum);
}

void seeds(const sf::Image &grey, const sf::Image &shape) {
  tell("frame_seeds", sf::frameRoots(grey));
  tell("frame_seeds label", sf::frameRoots(grey, 7));
  tellMask("regional_maxima", sf::regionalMaxima(grey));
  tellMask("regional_minima", sf::regionalMinima(grey));
  tell("regional_maxima_seeds", sf::regionalMaximaRoots(grey));
  tell("regional_minima_seeds", sf::regionalMinimaRoots(grey));
  tellMask("h_maxima", sf::hMaxima(grey, 20));
  tellMask("h_minima", sf::hMinima(grey, 20));
  tell("markers", sf::markers(grey, 10, 2));
  tell("cell_seeds", sf::cellRoots(grey, 3));
  tell("contour_seeds", sf::contourRoots(shape));
  tell("contour_seeds objects", sf::contourRoots(shape, sf::BorderLabels::objects));
  tell("skeleton_seeds", sf::skeletonRoots(shape));
  tell("skeleton_seeds by_curve", sf::skeletonRootsByCurve(shape));
  tell("seeds_from_labels", sf::rootsOf(grey));
  tell("paint_seeds", sf::paintRoots(grey, sf::markers(grey, 10)));
}

void forests(const sf::Image &grey, const sf::Image &color, const sf::Image &shape) {
  const sf::Roots roots = sf::markers(grey, 10);
  tell("watershed", sf::watershed(grey, roots));
  tell("watershed four", sf::watershed(grey, roots, {.adjacency = sf::Adjacency::four()}));
  tell("watershed disc", sf::watershed(grey, roots, {.adjacency = sf::Adjacency::disc(5)}));
  tell("watershed mask", sf::watershed(grey, roots, {.mask = &shape}));
  tell("image_forest", sf::forest(color, roots, sf::pathCost::sum, sf::arcWeight::euclidean));
  tell("image_forest greatest",
       sf::forest(grey, roots.copy().startAt(grey), sf::pathCost::min, sf::arcWeight::watershed,
                  {.adjacency = sf::Adjacency::window(1), .best = sf::Best::greatest}));
  const auto pixels = grey.pixels();
  tell("image_forest function", sf::forest(grey, roots, sf::pathCost::max,
                                           [&](int p, int q) {
                                             return std::abs(pixels[static_cast<std::size_t>(p)] -
                                                             pixels[static_cast<std::size_t>(q)]);
                                           },
                                           {.maxCost = 300}));
  tell("scaled_forest",
       sf::scaledForest(grey, roots, sf::pathCost::max, sf::arcWeight::chamfer, {.mask = &shape}));
  for (const auto &[name, weights] :
       {std::pair("euclidean", &sf::euclideanWeights), std::pair("gaussian", &sf::gaussianWeights),
        std::pair("step", &sf::stepWeights), std::pair("watershed", &sf::watershedWeights)})
    tell(name, weights(color, sf::Adjacency::eight()).image);
  const sf::ArcWeights weights = sf::watershedWeights(grey);
  tell("ArcWeights.forest", sf::forest(weights, roots, sf::pathCost::max));
  tell("ArcWeights.scaled_forest", sf::scaledForest(weights, roots, sf::pathCost::max, shape));
  const sf::SpanningTree tree = sf::spanningTree(color, sf::arcWeight::largestDifference);
  tell("spanning_tree", {&tree.costs, &tree.predecessors});
  tell("SpanningTree.cut", tree.cut(0.4));
  tell("distance_forest", sf::distanceTransform(grey, roots));
  const sf::NearestRoots nearest = sf::exactDistanceTransform(grey, roots);
  tell("nearest_seeds", {&nearest.labels, &nearest.squaredDistances, &nearest.pixels});
}

void filters(const sf::Image &grey, const sf::Image &color) {
  tell("dilation", sf::dilate(color, 5));
  tell("erosion", sf::erode(color, 5));
  tell("opening", sf::open(grey, 4));
  tell("closing", sf::close(grey, 4));
  tell("alternating_filter", sf::alternatingFilter(grey, 3));
  tell("alternating_filter close", sf::alternatingFilter(grey, 3, sf::First::close));
  tell("gradient", sf::gradient(color));
  const sf::Image low = sf::subtract(grey, sf::dilate(grey, 2));
  const sf::Roots maxima = sf::regionalMaximaRoots(grey).within(100, 200);
  tell("reconstruction", sf::reconstruct(grey, low));
  tell("reconstruction erosion", sf::reconstructDual(grey, sf::dilate(grey, 9)));
  tell("reconstruction seeds", sf::reconstruct(grey, maxima));
  tell("reconstruction seeds erosion", sf::reconstructDual(grey, maxima));
  tell("reconstruction local", sf::reconstructLocally(grey, maxima));
  tell("reconstruction local erosion", sf::reconstructDualLocally(grey, maxima));
  tell("area_opening", sf::areaOpen(grey, 9));
  tell("area_closing", sf::areaClose(grey, 9));
  tell("level", sf::level(grey, sf::open(grey, 4)));
  const sf::Roots ends = {{5, 1, 10}, {700, 2, 90}};
  tell("level_from_seeds", sf::level(grey, sf::open(grey, 4), ends));
  const sf::FuzzyObject objects[] = {{200, 40}, {90, 30}};
  const sf::Connectedness fuzzy = sf::fuzzyConnectedness(grey, ends, objects);
  tell("fuzzy_connectedness", {&fuzzy.labels, &fuzzy.costs});
  const sf::Image links[] = {sf::watershedWeights(grey).image.copy()};
  const sf::Connectedness linked = sf::fuzzyConnectedness(links, ends);
  tell("fuzzy_connectedness_of_links", {&linked.labels, &linked.costs});
}

void shapesOf(const sf::Image &grey, const sf::Image &shape) {
  tell("label", sf::components(shape).labels);
  tell("relabel_sequential", sf::relabel(grey).labels);
  tellMask("flat_zones", sf::flatZones(grey, {{3, 1}, {500, 2}}));
  tellMask("inner_boundaries", sf::innerBorder(shape));
  tell("contours", sf::contours(sf::innerBorder(shape)).labels);
  tell("contour_differences", sf::contourDifferences(grey, shape));
  tell("contour_differences absolute", sf::contourDifferences(grey, shape, true));
  const sf::Skeleton skeleton = sf::skeleton(shape, 8);
  tell("skeletonize", skeleton.squaredDistances);
  tell("skeletonize both", sf::skeleton(shape, 8, sf::Side::both).squaredDistances);
  tell("skeletonize outside", sf::skeleton(shape, 8, sf::Side::outside).squaredDistances);
  tellMask("shape_of_skeleton", sf::shapeOf(skeleton.squaredDistances));
  tellMask("paint_circles", sf::paintCircles(skeleton.squaredDistances));
  tell("shortest_path", sf::shortestPath(sf::complement(shape), 0, 1));
  tell("split_touching", sf::splitTouching(shape, 1).labels);
}

void regions(const sf::Image &grey, const sf::Image &color, const sf::Image &labels) {
  Checksum sum;
  for (const sf::Region &region : sf::measure(labels, color)) {
    for (const int value : {region.label, region.area})
      sum.add(value);
    for (const int value : region.averages)
      sum.add(value);
  }
  print("measure", sum);
  tell("features", sf::featuresOf(color));
  tell("with_feature", sf::withFeature(sf::featuresOf(color), grey));
  const sf::RegionGraph graph(labels, color);
  tell("region_graph", sf::RegionGraph(labels));
  tell("region_graph image", graph);
  tell("with_averages", graph.withAverages(grey));
  tell("with_areas", graph.withAreas());
  tell("with_volumes", graph.withVolumes(grey));
  tell("with_gradients", graph.withGradients());
  tell("with_rescaled", graph.withAreas().withRescaled());
  tell("paint", graph.paint());
  tell("spanning_tree regions", graph.spanningTree(sf::regionWeight::euclidean));
  tell("cut_into", graph.spanningTree(sf::regionWeight::smaller).cutInto(3));
  tell("cut_above", graph.spanningTree(sf::regionWeight::watershed).cutAbove(100));
  tell("merge_to", graph.mergeTo(4));
  tell("merge_below", graph.mergeBelow(90));
  tell("remove_small", graph.removeSmall(60));
  tell("merge_similar", graph.mergeSimilar(80));
  tell("merge_similar_colors", graph.mergeSimilarColors(color, 30));
  const sf::RegionGraph grown =
      graph.forest({{1, 1}, {5, 2}}, sf::pathCost::max, sf::regionWeight::euclidean);
  tell("RegionGraph.forest", grown);
  tell("collapsed", grown.collapsed());
}

void pixels(const sf::Image &grey, const sf::Image &color, const sf::Image &shape,
            const sf::Image &labels) {
  tellMask("threshold", sf::threshold(grey, 100, 180));
  tell("band_pass", sf::bandPass(grey, 100, 180));
  tell("negative", sf::negative(grey));
  tell("negative labels", sf::negative(labels));
  tellMask("complement", sf::complement(shape));
  tellMask("shape_difference", sf::shapeDifference(grey, shape));
  tellMask("shape_union", sf::shapeUnion(shape, labels));
  tell("masked", sf::masked(color, shape, 9));
  tell("add_border", sf::addBorder(color, 3));
  tell("remove_border", sf::removeBorder(color, 3));
  const sf::Image shifted = sf::add(grey, 30);
  tell("add", shifted);
  tell("subtract", sf::subtract(grey, sf::erode(grey, 2)));
  tell("upper_envelope", sf::upperEnvelope(shape, grey));
  tell("lower_envelope", sf::lowerEnvelope(shape, grey));
  Checksum sum;
  for (const float count : sf::histogram(grey, shape))
    sum.add(static_cast<int>(count));
  print("histogram", sum);
  tell("overlay", sf::overlay(color, labels, {1, 2, 3}));
  tell("overlay grey", sf::overlay(grey, labels));
  tell("highlight", sf::highlight(grey, shape, {9, 8, 7}));
  tell("label2rgb", sf::averageColors(color, labels));
}

void colors(const sf::Image &grey, const sf::Image &color) {
  tell("rgb2xyz", sf::rgbToXyz(color));
  tell("xyz2rgb", sf::xyzToRgb(sf::rgbToXyz(color)));
  tell("xyz2lab", sf::xyzToLab(sf::rgbToXyz(color)));
  tell("lab2xyz", sf::labToXyz(sf::rgbToLab(color)));
  tell("xyz2luv", sf::xyzToLuv(sf::rgbToXyz(color)));
  tell("luv2xyz", sf::luvToXyz(sf::rgbToLuv(color)));
  tell("rgb2ycbcr", sf::rgbToYcbcr(color));
  tell("ycbcr2rgb", sf::ycbcrToRgb(sf::rgbToYcbcr(color)));
  tell("rgb2hsv", sf::rgbToHsv(color));
  tell("hsv2rgb", sf::hsvToRgb(sf::rgbToHsv(color)));
  tell("rgb2lab", sf::rgbToLab(color));
  tell("lab2rgb", sf::labToRgb(sf::rgbToLab(color)));
  tell("rgb2luv", sf::rgbToLuv(color));
  tell("luv2rgb", sf::luvToRgb(sf::rgbToLuv(color)));
  tell("gray2rgb", sf::greyToRgb(grey));
}

} // namespace

int main() try {
  const sf::Image grey = sf::read("grey.pgm");
  const sf::Image color = sf::read("color.ppm");
  const sf::Image shape = sf::read("shape.pgm");
  const sf::Image labels = sf::read("labels.pgm");
  seeds(grey, shape);
  forests(grey, color, shape);
  filters(grey, color);
  shapesOf(grey, shape);
  regions(grey, color, labels);
  pixels(grey, color, shape, labels);
  colors(grey, color);
} catch (const sf::Error &error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
