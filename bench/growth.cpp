// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/measure.h"

namespace bench {

namespace {

double costOf(const Row &row, Scene scene) {
  return nanosecondsOf(row.make(scene)) / scene.side / scene.side;
}

} // namespace

std::vector<Growth> measureGrowth(const std::string &filter, int largest, std::FILE *report) {
  constexpr Drawing hard[] = {Drawing::spiral,   Drawing::checkerboard, Drawing::comb,
                              Drawing::constant, Drawing::manyMaxima,   Drawing::oneGround};
  std::fprintf(report, "row,image,side,ns/pixel,times\n");
  std::vector<Growth> all;
  const auto add = [&](const Row &row, Drawing drawing, int side, double cost, double by) {
    const bool isNatural = drawing == Drawing::micrograph;
    const Growth &added = all.emplace_back(
        Growth{row.name, nameOf(drawing, row.subject), isNatural, side, cost, cost / by});
    std::fprintf(report, "%s,%s,%d,%.3f,%.3f\n", added.row.c_str(), added.image.c_str(), side,
                 added.nanoseconds, added.times);
    std::fflush(report);
  };
  for (const Row &row : rowsThatBegin(filter)) {
    const double second = costOf(row, {Drawing::micrograph, largest / 8});
    double natural = 0; // at the size of the hard images
    for (const int share : {16, 8, 4, 2, 1}) {
      const double cost = share == 8 ? second : costOf(row, {Drawing::micrograph, largest / share});
      if (share == 4)
        natural = cost;
      add(row, Drawing::micrograph, largest / share, cost, second);
    }
    for (const Drawing drawing : hard)
      add(row, drawing, largest / 4, costOf(row, {drawing, largest / 4}), natural);
  }
  return all;
}

} // namespace bench
