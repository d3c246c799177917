// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Every family of operations on images that are hard in different ways:
//   corpus sums           a checksum for each operation and image, to be compared between builds
//   corpus growth         nanoseconds per pixel on each image, small and large, as a table
//   corpus draw FOLDER    the images as files, for runs of the tool
#include "images.h"

#include "seedforest/seedforest.hpp"

#include <chrono>
#include <cinttypes>
#include <clocale>
#include <cstring>
#include <functional>
#include <map>
#include <random>
#include <variant>

using namespace seedforest;

namespace {

// ----- the images

enum Pattern { natural, noise, spiral, checkerboard, comb, manyMaxima, oneRow, constant };
constexpr const char *patternNames[] = {"micrograph", "noise",       "spiral",  "checkerboard",
                                        "comb",       "many maxima", "one row", "constant"};

bench::Drawing drawingOf(Pattern pattern) {
  using bench::Drawing;
  constexpr Drawing drawings[] = {Drawing::micrograph,   Drawing::noise,   Drawing::spiral,
                                  Drawing::checkerboard, Drawing::comb,    Drawing::manyMaxima,
                                  Drawing::noise,        Drawing::constant};
  return drawings[pattern];
}

Image draw(Pattern pattern, int side) {
  if (pattern != oneRow)
    return Image(bench::drawGrey({drawingOf(pattern), side}));
  Image image(side * side, 1, 1, ImageType::grey);
  std::mt19937 random(3);
  for (int &value : image.pixels())
    value = static_cast<int>(random() % 256);
  image.setMaxValue(255);
  return image;
}

Image inColours(const Image &grey) {
  Image image(grey.ncols(), grey.nrows(), 3, ImageType::color);
  for (int p = 0; p < grey.npixels(); ++p)
    for (int b = 0; b < 3; ++b)
      image.pixels(b)[p] = (grey.pixels()[p] * (b + 1) + p % 17 * b) % 256;
  image.setMaxValue(255);
  return image;
}

// Bricks of 8 x 8 pixels, or of 64 pixels of a row.
Image bricks(const Image &image) {
  Image labels(image.ncols(), image.nrows());
  const int width = image.nrows() == 1 ? 64 : 8;
  const int perRow = (image.ncols() + width - 1) / width;
  for (int y = 0; y < image.nrows(); ++y)
    for (int x = 0; x < image.ncols(); ++x)
      labels.at(x, y) = 1 + x / width + y / 8 * perRow;
  labels.setMaxValue(labels.pixels().back());
  return labels;
}

// What the operations are given.
struct Scene {
  Image image, colour, shape, bricks, marker, everyOther;
  Roots roots; // one in each brick, in two classes

  explicit Scene(Image drawn)
      : image(std::move(drawn)), colour(inColours(image)), shape(threshold(image, 90, 255)),
        bricks(::bricks(image)), marker(add(image, -20)), everyOther(image.copy()) {
    for (int p = 0; p < image.npixels(); ++p)
      everyOther.pixels()[p] = p % 5 != 0;
    int last = 0;
    for (int p = 0; p < image.npixels(); ++p)
      if (bricks.pixels()[p] > last) {
        last = bricks.pixels()[p];
        roots.push_back({p, 1 + last % 2, image.pixels()[p]});
      }
  }
};

// ----- the operations

using Numbers = std::vector<int>;
using Result = std::variant<Image, Roots, Numbers>;

template <class... Parts>
std::vector<Result> results(Parts &&...parts) {
  std::vector<Result> list;
  (list.emplace_back(std::forward<Parts>(parts)), ...);
  return list;
}
std::vector<Result> partsOf(Forest f) {
  return results(std::move(f.labels), std::move(f.costs), std::move(f.predecessors));
}
std::vector<Result> partsOf(Filtered f) {
  return results(std::move(f.image), std::move(f.labels));
}
std::vector<Result> partsOf(SpanningTree t) {
  Image cut = t.cut(0.5);
  return results(std::move(t.costs), std::move(t.predecessors), std::move(cut));
}
std::vector<Result> partsOf(const Graph &graph) {
  Numbers numbers;
  for (int v = 0; v < graph.size(); ++v) {
    const std::span<const int> data = graph.data(v);
    numbers.insert(numbers.end(), data.begin(), data.end());
    for (const auto &[target, weight] : graph.edges(v))
      numbers.insert(numbers.end(), {target, weight});
  }
  return results(std::move(numbers));
}

ForestOptions byGreatest() {
  ForestOptions options;
  options.best = Best::greatest;
  return options;
}
ForestOptions masked(const Image &mask) {
  ForestOptions options;
  options.mask = &mask;
  return options;
}
int brighter(const imImage *image, int p, int q) {
  return std::max(image->band[0][p], image->band[0][q]);
}

Image there(const Image &colour, Image (*convert)(const Image &), Image (*back)(const Image &)) {
  const Image converted = convert(colour);
  Image returned = back(converted);
  for (int b = 0; b < 3; ++b)
    for (int p = 0; p < returned.npixels(); ++p)
      returned.pixels(b)[p] += 1000 * converted.pixels(b)[p];
  return returned;
}

struct Operation {
  const char *name;
  std::function<std::vector<Result>(const Scene &)> run;
};

const Operation operations[] = {
    {"regional maxima", [](auto &s) { return results(regionalMaxima(s.image)); }},
    {"labelled maxima", [](auto &s) { return results(regionalMaximaRoots(s.image)); }},
    {"labelled minima", [](auto &s) { return results(regionalMinimaRoots(s.image)); }},
    {"h-maxima", [](auto &s) { return results(hMaxima(s.image, 9)); }},
    {"contour roots", [](auto &s) { return results(contourRoots(s.shape)); }},
    {"skeleton roots",
     [](auto &s) { return results(skeletonRoots(s.shape), skeletonRootsByCurve(s.shape)); }},
    {"frame roots", [](auto &s) { return results(frameRoots(s.image), frameRoots(s.image, 3)); }},
    {"roots of labels", [](auto &s) { return results(rootsOf(s.bricks)); }},
    {"cell roots", [](auto &s) { return results(cellRoots(s.image, 5)); }},
    {"markers", [](auto &s) { return results(markers(s.image, 10, 2)); }},
    {"split", [](auto &s) { return results(splitTouching(s.shape, 3).labels); }},
    {"watershed", [](auto &s) { return partsOf(watershed(s.image, s.roots)); }},
    {"by greatest cost",
     [](auto &s) {
       return partsOf(forest(s.image, s.roots, pathCost::min, arcWeight::watershed, byGreatest()));
     }},
    {"masked", [](auto &s) { return partsOf(watershed(s.image, s.roots, masked(s.everyOther))); }},
    {"weights of a caller",
     [](auto &s) { return partsOf(forest(s.image, s.roots, pathCost::max, brighter)); }},
    {"sums of weights",
     [](auto &s) { return partsOf(forest(s.image, s.roots, pathCost::sum, arcWeight::chamfer)); }},
    {"scaled",
     [](auto &s) {
       return partsOf(scaledForest(s.image, s.roots, pathCost::max, arcWeight::watershed));
     }},
    {"weight image",
     [](auto &s) {
       return partsOf(forest(watershedWeights(s.image), s.roots, pathCost::max, 255));
     }},
    {"distances", [](auto &s) { return partsOf(distanceTransform(s.image, s.roots)); }},
    {"exact distances",
     [](auto &s) {
       NearestRoots nearest = exactDistanceTransform(s.image, s.roots);
       return results(std::move(nearest.labels), std::move(nearest.squaredDistances),
                      std::move(nearest.pixels));
     }},
    {"spanning tree",
     [](auto &s) { return partsOf(spanningTree(s.image, arcWeight::largestDifference)); }},
    {"reconstruction", [](auto &s) { return partsOf(reconstruct(s.image, s.marker)); }},
    {"dual reconstruction", [](auto &s) { return partsOf(reconstructDual(s.marker, s.image)); }},
    {"local reconstruction", [](auto &s) { return partsOf(reconstructLocally(s.image, s.roots)); }},
    {"area opening", [](auto &s) { return partsOf(areaOpen(s.image, 50)); }},
    {"area closing", [](auto &s) { return partsOf(areaClose(s.image, 1000)); }},
    {"level", [](auto &s) { return results(level(s.image, s.marker)); }},
    {"fuzzy connectedness",
     [](auto &s) {
       const FuzzyObject objects[] = {{180, 900}, {60, 500}};
       Connectedness c = fuzzyConnectedness(s.image, s.roots, objects);
       return results(std::move(c.labels), std::move(c.costs));
     }},
    {"components", [](auto &s) { return results(components(s.shape).labels); }},
    {"relabelling", [](auto &s) { return results(relabel(s.colour.copyBand(2)).labels); }},
    {"flat zones", [](auto &s) { return results(flatZones(s.image, s.roots)); }},
    {"borders", [](auto &s) { return results(innerBorder(s.bricks)); }},
    {"contours", [](auto &s) { return results(contours(innerBorder(s.shape)).labels); }},
    {"skeleton",
     [](auto &s) { return results(skeleton(s.shape, 5, Side::both).squaredDistances); }},
    {"shape of a skeleton",
     [](auto &s) { return results(shapeOf(skeleton(s.shape, 0).squaredDistances)); }},
    {"shortest path",
     [](auto &s) { return results(shortestPath(s.shape, 0, s.shape.npixels() - 1)); }},
    {"region graph", [](auto &s) { return partsOf(RegionGraph(s.bricks, s.colour)); }},
    {"region tree",
     [](auto &s) {
       return partsOf(RegionGraph(s.bricks, s.colour).spanningTree(regionWeight::euclidean));
     }},
    {"merging",
     [](auto &s) {
       const RegionGraph graph(s.bricks, s.colour);
       return results(graph.mergeTo(20), graph.removeSmall(100), graph.mergeSimilar(30),
                      graph.mergeSimilarColors(s.colour, 25));
     }},
    {"measurements",
     [](auto &s) {
       Numbers numbers;
       for (const Region &region : measure(s.bricks, s.colour)) {
         numbers.push_back(region.area);
         numbers.insert(numbers.end(), region.averages.begin(), region.averages.end());
       }
       return results(std::move(numbers));
     }},
    {"dilation", [](auto &s) { return results(dilate(s.image, 13), erode(s.image, 2)); }},
    {"filter", [](auto &s) { return results(alternatingFilter(s.image, 8)); }},
    {"gradient", [](auto &s) { return results(gradient(s.image), gradient(s.colour)); }},
    {"colour",
     [](auto &s) {
       return results(there(s.colour, rgbToLab, labToRgb), there(s.colour, rgbToLuv, luvToRgb),
                      there(s.colour, rgbToXyz, xyzToRgb), there(s.colour, rgbToHsv, hsvToRgb),
                      there(s.colour, rgbToYcbcr, ycbcrToRgb));
     }},
    {"pictures",
     [](auto &s) {
       return results(overlay(s.image, s.bricks), averageColors(s.colour, s.bricks),
                      paintRoots(s.image, s.roots));
     }},
    {"pixel by pixel",
     [](auto &s) {
       return results(negative(s.image), subtract(s.image, s.marker),
                      upperEnvelope(s.image, s.marker), addBorder(s.image, 2));
     }},
    {"image files",
     [](auto &s) {
       return results(decode(encode(s.image)), decode(encode(s.bricks)), decode(encode(s.colour)));
     }},
    {"roots files",
     [](auto &s) { return results(decodeRoots(encodeRoots(s.roots, s.image), s.image)); }},
};

// ----- what is told about them

// Fowler, Noll and Vo's hash of 64 bits, over whole integers.
class Sum {
public:
  void add(int value) { sum_ = (sum_ ^ static_cast<std::uint32_t>(value)) * 1099511628211U; }
  void add(std::span<const int> values) {
    for (const int value : values)
      add(value);
  }
  void add(const Numbers &numbers) { add(std::span(numbers)); }
  void add(const Roots &roots) {
    add(roots.pixels());
    add(roots.labels());
    add(roots.values());
  }
  void add(const Image &image) {
    for (int b = 0; b < image.nbands(); ++b)
      add(image.pixels(b));
    add(image.maxValue());
  }
  std::uint64_t value() const { return sum_; }

private:
  std::uint64_t sum_ = 14695981039346656037U;
};

// What the operation makes of the scene, or the line with which it refuses.
std::vector<Result> resultsOf(const Operation &operation, const Scene &scene) {
  try {
    return operation.run(scene);
  } catch (const Error &error) {
    const std::string_view line = error.what();
    return results(Numbers(line.begin(), line.end()));
  }
}

void printSums() {
  for (const int side : {1, 2, 97, 200})
    for (int pattern = natural; pattern <= constant; ++pattern) {
      if (side < 97 && pattern != constant)
        continue;
      const Scene scene(draw(static_cast<Pattern>(pattern), side));
      for (const Operation &operation : operations) {
        Sum sum;
        for (const Result &result : resultsOf(operation, scene))
          std::visit([&](const auto &part) { sum.add(part); }, result);
        std::printf("%016" PRIx64 " %s, %s %d\n", sum.value(), operation.name,
                    patternNames[pattern], side);
      }
    }
}

double nanosecondsPerPixel(const Operation &operation, const Scene &scene) {
  constexpr int large = 20'000'000; // pixels: one run tells enough
  double best = 1e300;
  for (int run = scene.image.npixels() > large ? 1 : 0; run < 2; ++run) {
    const auto start = std::chrono::steady_clock::now();
    const std::vector<Result> made = resultsOf(operation, scene);
    const std::chrono::duration<double, std::nano> time = std::chrono::steady_clock::now() - start;
    best = std::min(best, time.count() / scene.image.npixels());
  }
  return best;
}

// A row for each operation, a column for each image: small, large.
void printGrowth() {
  constexpr int smallSide = 512;
  std::map<std::string, std::string> rows;
  std::string title = "| ns per pixel |";
  for (int pattern = natural; pattern <= constant; ++pattern) {
    // 10 million columns; 8192 x 8192 of one value; 2^20 maxima and the others at 2048 x 2048.
    const int largeSide = pattern == oneRow ? 3163 : pattern == constant ? 8192 : 2048;
    title += std::string(" ") + patternNames[pattern] + " |";
    std::map<std::string, double> small;
    for (const int side : {smallSide, largeSide}) {
      const Scene scene(draw(static_cast<Pattern>(pattern), side));
      for (const Operation &operation : operations) {
        const double cost = nanosecondsPerPixel(operation, scene);
        std::fprintf(stderr, "%s %s %d: %.1f\n", patternNames[pattern], operation.name, side, cost);
        char cell[40];
        std::snprintf(cell, sizeof cell, " %.3g, %.3g |", small[operation.name], cost);
        if (side == largeSide)
          rows[operation.name] += cell;
        small[operation.name] = cost;
      }
    }
  }
  std::printf("%s\n", title.c_str());
  for (const Operation &operation : operations)
    std::printf("| %s |%s\n", operation.name, rows[operation.name].c_str());
}

void drawInto(const std::string &folder) {
  for (int pattern = natural; pattern <= constant; ++pattern) {
    const Scene scene(draw(static_cast<Pattern>(pattern), 97));
    const std::string place = folder + '/' + std::to_string(pattern);
    write(scene.image, place + ".pgm");
    write(scene.bricks, place + "-text.pgm");
    write(scene.shape, place + "-shape.pgm");
    write(scene.colour, place + ".ppm");
  }
}

} // namespace

int main(int argc, char **argv) {
  // As a program in its user's language would: the results must not depend on it.
  std::setlocale(LC_ALL, "");
  const std::string_view word = argc > 1 ? argv[1] : "";
  try {
    if (word == "sums")
      printSums();
    else if (word == "growth")
      printGrowth();
    else if (word == "draw" && argc > 2)
      drawInto(argv[2]);
    else
      return std::fputs("usage: corpus sums | growth | draw FOLDER\n", stderr), 2;
    return 0;
  } catch (const std::exception &error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
