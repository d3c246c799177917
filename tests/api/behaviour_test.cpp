// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// What is the C++ interface's own: ownership, files and memory, extrema that stand out, shapes that
// touch, proofs, callables, progress, errors, threads.

#include "api/interfaceSupport.h"

#include <array>
#include <atomic>
#include <barrier>
#include <cstdlib>
#include <functional>
#include <thread>

TEST_F(InTemporaryFolder, ImagesAndRootsComeFromFilesAndMemory) {
  for (const int ncols : {1, 17, 300}) // up to more than one chunk
    for (const sf::Image &image :
         {random(5, ncols, 257, 0, 255, 1, imTypeGrey), random(6, ncols, 257, -70000, 70000),
          random(7, ncols, 257, 0, 255, 3, imTypeColor)}) {
      sf::write(image, folder.path("image"));
      EXPECT_EQ(contentsOf(folder.path("image")), sf::encode(image));
      const sf::Image again = sf::read(folder.path("image"));
      EXPECT_TRUE(again == image);
      EXPECT_EQ(again.type(), image.type());
      EXPECT_EQ(again.maxValue(), image.maxValue());
      EXPECT_TRUE(sf::decode(sf::encode(image)) == image);
    }
  const sf::Roots roots = {{0, 3}, {7, 1}};
  const sf::Image small(4, 3);
  sf::writeRoots(roots, small, folder.path("roots"));
  EXPECT_EQ(contentsOf(folder.path("roots")), "2\n0 0 3\n3 1 1\n");
  EXPECT_EQ(sf::encodeRoots(roots, small), "2\n0 0 3\n3 1 1\n");
  EXPECT_TRUE(sf::decodeRoots("2\n0 0 3\n3 1 1\n", small) == roots);
  const std::string bytes = std::string(200000, 'a') + '\0' + "end"; // in more than one piece
  sf::writeFile(bytes, folder.path("bytes"));
  EXPECT_EQ(sf::readFile(folder.path("bytes")), bytes);
  EXPECT_EQ(sf::readFile("/dev/null"), "");
}

TEST_F(InTemporaryFolder, NothingIsPrintedOrLeftBehind) {
  const auto work = [] {
    const sf::Image grey = random(1, 23, 17, 0, 40);
    const sf::Roots cells = sf::cellRoots(grey, 2);
    sf::decodeRoots("1\n2 3 1", grey);
    sf::rgbToLuv(random(3, 9, 9, 0, 255, 3, imTypeColor));
    sf::measure(sf::components(grey).labels, grey);
    EXPECT_THROW(sf::read("none.pgm"), sf::FileError);
  };
  EXPECT_EQ(printedBy([&] { EXPECT_EQ(errorsOf(work), ""); }), "");
  EXPECT_TRUE(isEmpty());
}

TEST(InterfaceImage, OwnsBorrowsAndGivesUp) {
  const std::array<unsigned char, 6> bytes = {1, 2, 3, 4, 5, 200};
  const auto copied = sf::Image::copyOf(std::span<const unsigned char>(bytes), 3, 1);
  EXPECT_EQ(copied.nbands(), 2);
  EXPECT_EQ(copied.at(2, 0, 1), 200);
  EXPECT_EQ(copied.maxValue(), 200);
  std::vector<int> own = {5, 0, 9, 1};
  {
    auto borrowed = sf::Image::borrow(own, 2, 2);
    borrowed.at(1, 0) = 7;
    EXPECT_EQ(borrowed.pixels().data(), own.data());
    EXPECT_TRUE(sf::dilate(borrowed, 2) == image({{9, 9}, {9, 9}}));
    EXPECT_THROW(borrowed.release(), sf::Error);
  }
  EXPECT_EQ(own, (std::vector{5, 7, 9, 1}));
  sf::Image made = image({{1, 2}});
  const int *pixels = made.pixels().data();
  sf::Image moved = std::move(made);
  const imImagePtr record = moved.release();
  EXPECT_EQ(record->band[0], pixels);
  EXPECT_FALSE(moved);
}

TEST(InterfaceRoots, AreASequenceWithStartingCosts) {
  const sf::Image values = image({{4, 8, 6}});
  sf::Roots roots = {{2, 1, 5}, {0, 2}};
  for (int i = 0; i < 40; ++i)
    roots.push_back({1, 3, i});
  EXPECT_EQ(roots.size(), 42U);
  EXPECT_EQ((roots[41]), (sf::Root{1, 3, 39}));
  EXPECT_EQ(std::ranges::distance(roots.begin(), roots.end()), 42);
  const sf::Roots few = roots.within(5, 6);
  EXPECT_TRUE(few == (sf::Roots{{2, 1, 5}, {1, 3, 5}, {1, 3, 6}}));
  EXPECT_TRUE(few.copy().startAt(0) == (sf::Roots{{2, 1}, {1, 3}, {1, 3}}));
  EXPECT_TRUE(few.copy().startAt(values) == (sf::Roots{{2, 1, 6}, {1, 3, 8}, {1, 3, 8}}));
}

// The definition: the marker, grown pixel by pixel under the image until nothing changes.
static sf::Image reconstructed(const sf::Image &image, const sf::Image &marker) {
  sf::Image grown = sf::lowerEnvelope(marker, image);
  for (;;) {
    sf::Image next = sf::lowerEnvelope(sf::dilate(grown, 2), image);
    if (next == grown)
      return next;
    grown = std::move(next);
  }
}

TEST(InterfaceReconstruction, GrowsTheMarkerUnderTheImage) {
  std::mt19937 numbers(4);
  const int sizes[][2] = {{1, 1}, {1, 30}, {30, 1}, {2, 9}, {17, 33}, {35, 18}};
  for (int round = 0; round < 60; ++round) {
    SCOPED_TRACE(round);
    const auto [ncols, nrows] = sizes[round % 6];
    const int top = std::vector{1, 5, 255, 100000}[round % 4];
    sf::Image f = random(round, ncols, nrows, 0, top);
    for (int y = 1; round % 3 == 0 && y < nrows; y += 2) // a path that winds through the image
      for (int x = 0; x < ncols; ++x)
        f.pixels()[x + y * ncols] = x == (y % 4 == 1 ? ncols - 1 : 0) ? top : 0;
    sf::Image marker = sf::add(f, round % 2 == 0 ? -pick(numbers, 0, 1 + top / 4) : -top);
    marker.pixels()[pick(numbers, 0, ncols * nrows - 1)] = pick(numbers, 0, 2 * top);
    const sf::Image grown = reconstructed(f, marker);
    EXPECT_TRUE(sf::reconstruct(f, marker).image == grown);
    const auto mirrored = [top](const sf::Image &image) {
      sf::Image result = sf::add(image, 0);
      for (int &value : result.pixels())
        value = 2 * top - value;
      return result;
    };
    const sf::Filtered dual = sf::reconstructDual(mirrored(f), mirrored(marker));
    EXPECT_TRUE(std::ranges::equal(dual.image.pixels(), mirrored(grown).pixels()));
    EXPECT_TRUE(std::ranges::all_of(dual.labels.pixels(), [](int label) { return label == 1; }));
  }
}

TEST(InterfaceExtrema, StandOutByMoreThanH) {
  // The first peak is 4 above the way to a higher one, the second 5, and nothing is above the last.
  // What is less than h below a peak belongs to it. Of any sign, and turned over, all is the same.
  const Matrix rows = {{1, 6, 3, 2, 4, 9, 4, 12}};
  const std::vector<std::pair<int, Matrix>> expected = {{0, {{0, 1, 0, 0, 0, 1, 0, 1}}},
                                                        {3, {{0, 1, 1, 0, 0, 1, 0, 1}}},
                                                        {4, {{0, 0, 0, 0, 0, 1, 0, 1}}},
                                                        {5, {{0, 0, 0, 0, 0, 0, 0, 1}}},
                                                        {20, {{1, 1, 1, 1, 1, 1, 1, 1}}}};
  for (const auto &[h, mask] : expected)
    for (const int shift : {0, -100, 1000000000}) {
      sf::Image f = image(rows);
      std::ranges::transform(f.pixels(), f.pixels().begin(), [&](int v) { return v + shift; });
      EXPECT_EQ(bandOf(sf::hMaxima(f, h).get()), mask) << h << " " << shift;
      std::ranges::transform(f.pixels(), f.pixels().begin(), [](int v) { return -v; });
      EXPECT_EQ(bandOf(sf::hMinima(f, h).get()), mask) << h << " " << shift;
    }
  const sf::Image f = random(8, 40, 30, 30, 60);
  EXPECT_TRUE(sf::reconstruct(f, sf::add(f, -9)).image == reconstructed(f, sf::add(f, -9)));
  EXPECT_TRUE(sf::hMaxima(f, 9) == sf::regionalMaxima(reconstructed(f, sf::add(f, -9))));
  EXPECT_TRUE(sf::markers(f, 3, 2) ==
              sf::rootsOf(sf::components(sf::hMaxima(sf::alternatingFilter(f, 2), 3)).labels));
  EXPECT_THROW(sf::hMaxima(f, -1), sf::Error);
  EXPECT_THROW(sf::hMaxima(image({{minInt, maxInt}}), 1), sf::Error);
}

TEST(InterfaceShapes, ThatTouchAreSplit) {
  // Two squares of 5 joined by a bridge of 1, a speck, and the distance of a disc's centre.
  const sf::Image shape = image({{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
                                 {0, 1, 1, 1, 1, 1, 0, 1, 1, 1, 1, 1, 0, 0, 0},
                                 {0, 1, 1, 1, 1, 1, 0, 1, 1, 1, 1, 1, 0, 0, 0},
                                 {0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0, 1, 0},
                                 {0, 1, 1, 1, 1, 1, 0, 1, 1, 1, 1, 1, 0, 0, 0},
                                 {0, 1, 1, 1, 1, 1, 0, 1, 1, 1, 1, 1, 0, 0, 0},
                                 {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}});
  const sf::Forest distances = sf::distanceTransform(shape);
  EXPECT_EQ(distances.costs.at(3, 3), 9);
  const sf::Components parts = sf::splitTouching(shape, 1);
  EXPECT_EQ(parts.count, 3);
  EXPECT_EQ(parts.labels.at(11, 5), 2);
  EXPECT_EQ(sf::splitTouching(shape, 2).count, 2); // the bridge is no more than 2 narrower
  for (int p = 0; p < shape.npixels(); ++p)
    EXPECT_EQ(parts.labels.pixels()[p] > 0, shape.pixels()[p] > 0) << p;
  EXPECT_EQ(sf::splitTouching(image({{1, 1}, {1, 1}})).count, 1);
  EXPECT_EQ(sf::splitTouching(image({{0, 0}})).count, 0);
}

TEST(InterfaceForest, StartsAtTheRootsLevelAndKnowsItsPaths) {
  const sf::Image relief = image({{3, 9, 2, 2, 7, 1}});
  const sf::Forest basins = sf::watershed(relief, {{0, 1, 99}, {5, 2, 99}});
  EXPECT_EQ(bandOf(basins.labels.get()), (Matrix{{1, 1, 2, 2, 2, 2}}));
  EXPECT_EQ(bandOf(basins.costs.get()), (Matrix{{3, 9, 7, 7, 7, 1}}));
  EXPECT_EQ(basins.path(2), (std::vector{2, 3, 4, 5}));
  EXPECT_EQ(basins.labels.maxValue(), 2);
  EXPECT_THROW(static_cast<void>(basins.path(6)), sf::Error);
  sf::Forest broken = sf::watershed(relief, {{0, 1}});
  broken.predecessors.at(0, 0) = 1;
  EXPECT_THROW(static_cast<void>(broken.path(3)), sf::Error);
  // A wall that the mask puts up.
  const sf::Image mask = image({{1, 1, 0, 1, 1, 1}});
  const sf::Forest walled = sf::watershed(relief, {{0, 1}, {2, 3}, {5, 2}}, {.mask = &mask});
  EXPECT_EQ(bandOf(walled.labels.get()), (Matrix{{1, 1, 0, 2, 2, 2}}));
}

TEST(InterfaceVerify, AcceptsEveryTransformAndFindsEachFault) {
  std::mt19937 numbers(9);
  int round = 0;
  const auto check = [&](const auto &cost, const auto &weight, sf::ForestOptions options = {}) {
    for (const int top : {1, 9, 255}) {
      const sf::Image f = random(++round, pick(numbers, 1, 19), pick(numbers, 1, 14), 0, top);
      const sf::Image mask = random(round, f.ncols(), f.nrows(), 0, 5);
      options.mask = round % 2 == 0 ? &mask : nullptr;
      sf::Roots roots;
      for (int n = pick(numbers, 0, 9); n > 0; --n)
        roots.push_back(
            {pick(numbers, 0, f.npixels() - 1), pick(numbers, 1, 4), pick(numbers, 0, top)});
      const auto weigh = weight(f);
      options.maxCost = maxInt; // which only sizes the queue
      const sf::Forest sparse = sf::forest(f, roots, cost, weigh, options);
      options.maxCost = 20000;
      sf::Forest forest = sf::forest(f, roots, cost, weigh, options);
      EXPECT_TRUE(forest.labels == sparse.labels && forest.costs == sparse.costs &&
                  forest.predecessors == sparse.predecessors);
      const auto fault = sf::verify(forest, f, roots, cost, weigh, options);
      EXPECT_FALSE(fault) << fault->sentence;
      for (sf::Image *field : {&forest.labels, &forest.costs, &forest.predecessors})
        for (int p = 0; p < f.npixels(); p += 7)
          for (const int change : {-1, 1, 40}) {
            int &value = field->pixels()[p];
            const int before =
                std::exchange(value, seedforest::detail::wrap(std::int64_t{value} + change));
            // Another predecessor can give a path that is as good.
            EXPECT_TRUE(sf::verify(forest, f, roots, cost, weigh, options) ||
                        field == &forest.predecessors)
                << p << " " << change;
            value = before;
          }
    }
  };
  const auto by = [](auto weight) { return [weight](const sf::Image &) { return weight; }; };
  const auto steps = [](const sf::Image &f) {
    return [&f](int p, int q) { return std::abs(f.pixels()[p] - f.pixels()[q]); };
  };
  check(sf::pathCost::max, by(sf::arcWeight::watershed));
  check(sf::pathCost::max, steps, {.adjacency = sf::Adjacency::disc(5)});
  check(sf::pathCost::sum, steps);
  check(sf::pathCost::sum, by(sf::arcWeight::chamfer), {.adjacency = sf::Adjacency::four()});
  check(sf::pathCost::min, by(sf::arcWeight::watershed), {.best = sf::Best::greatest});

  const auto faultOf = [](sf::Forest forest, const sf::Image &relief, const sf::Roots &starts) {
    const auto fault = sf::verify(forest, relief, starts);
    return fault ? fault->sentence : "none";
  };
  // Right in itself, but (2, 0) would be reached at less from the right.
  const sf::Image relief = image({{1, 8, 5, 2}});
  const auto forestOf = [](const Matrix &labels, const Matrix &costs, const Matrix &before) {
    return sf::Forest{image(labels), image(costs), image(before)};
  };
  const sf::Roots ends = {{0, 1}, {3, 2}};
  EXPECT_EQ(faultOf(forestOf({{1, 1, 1, 2}}, {{1, 8, 8, 2}}, {{0, 0, 1, 3}}), relief, ends),
            "pixel (2, 0) has cost 8, and pixel (3, 0) offers 5");
  EXPECT_EQ(faultOf(forestOf({{1, 1, 1, 2}}, {{1, 8, 8, 2}}, {{0, 2, 1, 3}}), relief, ends),
            "pixel (1, 0) has a path that leads in a circle");
  EXPECT_EQ(faultOf(forestOf({{1, 1, 1, 2}}, {{1, 8, 5, 2}}, {{0, 0, 3, 3}}), relief, ends),
            "pixel (2, 0) has label 1 where its path gives 2");
}

TEST(InterfaceCallables, PassWithTheirStateAndTheirExceptions) {
  const sf::Image f = random(11, 30, 20, 0, 99);
  const sf::Roots roots = {{3, 1}, {599, 2}};
  int calls = 0;
  const auto weigh = [&](int p, int q) {
    ++calls;
    return std::abs(f.pixels()[p] - f.pixels()[q]);
  };
  const sf::Forest plain = sf::forest(f, roots, sf::pathCost::max, sf::arcWeight::euclidean);
  const sf::Forest through = sf::forest(f, roots, sf::pathCost::max, weigh);
  EXPECT_TRUE(through.labels == plain.labels && through.costs == plain.costs);
  EXPECT_GT(calls, f.npixels());
  // A transform within the weight of another, by the same type of lambda.
  int nested = 0;
  std::function<int(int, int)> inner = [&](int p, int q) {
    if (p == 3 && nested++ == 0) {
      EXPECT_TRUE(sf::forest(f, roots, sf::pathCost::max, inner).labels == plain.labels);
    }
    return weigh(p, q);
  };
  EXPECT_TRUE(sf::forest(f, roots, sf::pathCost::max, inner).labels == plain.labels);
  EXPECT_GT(nested, 0);
  const auto thrower = [](int p, int) -> int { throw p; };
  EXPECT_THROW(sf::forest(f, roots, sf::pathCost::max, thrower), int);
  EXPECT_TRUE(sf::forest(f, roots, sf::pathCost::max, weigh).labels == plain.labels);
}

TEST(InterfaceProgress, IsToldAndCanStopTheWork) {
  const sf::Image large = random(13, 700, 600, 0, 200);
  const sf::Roots roots = {{0, 1}};
  const auto ones = [](int, int) { return 1; };
  using Work = std::function<void()>;
  for (const Work &work :
       {Work([&] { sf::watershed(large, roots); }),
        Work([&] { sf::forest(large, roots, sf::pathCost::max, ones); }),
        Work([&] { sf::distanceTransform(large, roots); }), Work([&] { sf::hMaxima(large, 9); })}) {
    std::vector<double> told;
    {
      const sf::WithProgress progress([&told](double fraction) {
        told.push_back(fraction);
        return told.size() < 3;
      });
      EXPECT_THROW(work(), sf::Cancelled);
    }
    work();
    EXPECT_EQ(told.size(), 3U);
    for (const double fraction : told)
      EXPECT_TRUE(fraction > 0 && fraction <= 1) << fraction;
  }
}

TEST_F(InTemporaryFolder, RefusalsAreErrorsInASentence) {
  const sf::Image f = random(12, 5, 4, 0, 9);
  const sf::Image small(4, 4);
  const sf::Image none;
  const sf::Roots one = {{0, 1}}, three = {{0, 3}}, outside = {{20, 1}};
  const std::string text = folder.write("text", "no image");
  using Call = std::function<void()>;
  const std::vector<std::pair<Call, const char *>> refused = {
      {[&] { sf::Image(0, 3); }, "0 x 3"},
      {[&] { sf::Image::copyOf(std::span<const int>(f.pixels()), 3, 3); }, "20 values"},
      {[&] { sf::watershed(none, {}); }, "no image"},
      {[&] { sf::write(none, "none"); }, "no image"},
      {[&] { sf::write(sf::Image(2, 2, 3, sf::ImageType::xyz), folder.path("xyz")); }, "type 6"},
      {[&] { sf::watershed(f, one, {.mask = &small}); }, "size"},
      {[&] { sf::verify(sf::watershed(f, one), small, one); }, "size"},
      {[&] { sf::watershed(f, outside); }, "20"},
      {[&] { sf::watershed(f, one, {.maxCost = -1}); }, "-1"},
      {[&] {
         sf::fuzzyConnectedness(f, one, std::array{sf::FuzzyObject{1, 0}});
       },
       "sigma"},
      {[&] { sf::level(f, f, three); }, "label 3"},
      {[&] { sf::splitTouching(f, -1); }, "-1"},
      {[&] { sf::RegionGraph(f).spanningTree(sf::regionWeight::smaller); }, "iftPrimGraph"},
  };
  const auto before = sf::encode(f);
  for (const auto &[call, part] : refused)
    try {
      call();
      ADD_FAILURE() << part;
    } catch (const sf::Error &error) {
      const std::string_view sentence = error.what();
      EXPECT_NE(sentence.find(part), std::string_view::npos) << sentence;
      EXPECT_EQ(sentence.find('\n'), std::string_view::npos) << sentence;
    }
  EXPECT_THROW(sf::read(text), sf::FileError);
  EXPECT_THROW(sf::decode("P5 2 2 255\nxx"), sf::FileError);
  EXPECT_THROW(sf::decodeRoots("none", f), sf::FileError);
  EXPECT_THROW(sf::write(f, folder.path("no/such/folder")), sf::FileError);
  EXPECT_THROW(sf::writeFile("x", folder.path("no/such/folder")), sf::FileError);
  EXPECT_THROW(sf::writeFile("x", "/dev/full"), sf::FileError);
  EXPECT_THROW(sf::readFile(folder.path("missing")), sf::FileError);
  EXPECT_THROW(sf::watershed(f, one, {.adjacency = sf::Adjacency::disc(1 << 30)}), sf::Error);
  EXPECT_EQ(sf::encode(f), before);
}

// Each thread segments images of its own, with lambdas of one type; one of them meets an error in
// every round.
TEST(InterfaceThreads, DoNotMeet) {
  const auto round = [](int seed) {
    const sf::Image f = random(seed, 60, 50, 0, 99);
    const sf::Roots roots = sf::markers(f, 20);
    const auto steps = [&f](int p, int q) { return std::abs(f.pixels()[p] - f.pixels()[q]); };
    const sf::Forest basins = sf::watershed(sf::negative(f), roots);
    const sf::Forest forest = sf::forest(f, roots, sf::pathCost::max, steps);
    return sf::encode(sf::overlay(f, basins.labels)) + sf::encode(forest.costs);
  };
  constexpr int rounds = 20;
  std::array<std::vector<std::string>, 2> got;
  std::atomic<int> caught = 0;
  std::barrier start(2);
  const auto run = [&](int thread) {
    start.arrive_and_wait();
    for (int i = 0; i < rounds; ++i) {
      got[thread].push_back(round(2 * i + thread));
      try {
        if (thread == 1)
          sf::watershed(sf::Image(3, 3), {{9, 1}});
      } catch (const sf::Error &) {
        ++caught;
      }
    }
  };
  std::thread first(run, 0);
  std::thread second(run, 1);
  first.join();
  second.join();
  EXPECT_EQ(caught, rounds);
  for (int i = 0; i < 2 * rounds; ++i)
    EXPECT_TRUE(got[i % 2][i / 2] == round(i)) << i;
}

#ifdef SEEDFOREST_OUTLINE_CELLS
TEST_F(InTemporaryFolder, TheExampleOutlinesCells) {
  const std::string run = std::string("'") + SEEDFOREST_OUTLINE_CELLS + "' ";
  // Two bright blocks on black, with something darker between them.
  sf::Image f(40, 30, 1, sf::ImageType::grey);
  for (int y = 8; y < 22; ++y)
    for (int x = 6; x < 35; ++x)
      f.at(x, y) = x > 16 && x < 24 ? 90 : 200;
  sf::write(f, "cells.pgm");
  ASSERT_EQ(std::system((run + "cells.pgm cells.ppm").c_str()), 0);
  const sf::Image picture = sf::read("cells.ppm");
  const auto isRed = [&picture](int x, int y) {
    return picture.at(x, y) == 255 && picture.at(x, y, 1) == 0;
  };
  EXPECT_TRUE(isRed(5, 15) && isRed(35, 15)); // around the blocks
  int between = 0;
  for (int x = 17; x < 24; ++x)
    between += isRed(x, 15);
  EXPECT_EQ(between, 1);
  EXPECT_FALSE(isRed(12, 15) || isRed(28, 15) || isRed(2, 2));
  EXPECT_NE(std::system((run + "none.pgm cells.ppm 2>error").c_str()), 0);
  EXPECT_EQ(contentsOf("error"), "could not open file none.pgm\n");
  const std::string sources = SEEDFOREST_SOURCES;
  const std::string program = contentsOf(sources + "/examples/outline_cells.cpp");
  const std::string shown = program.substr(program.find("int main"));
  EXPECT_NE(contentsOf(sources + "/README.md").find(shown), std::string::npos);
}
#endif
