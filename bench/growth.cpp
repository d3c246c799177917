// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/measure.h"

#include <algorithm>

namespace bench {

namespace {

// Small images take turns, as many as have a large one's pixels: else a small one would still be in
// the cache from its last turn, and images that are read from a disk or a network are not.
double costOf(const Row &row, Scene scene, int largeSide) {
  const int n = std::max(1, largeSide / scene.side * (largeSide / scene.side));
  std::vector<Job> jobs;
  for (int i = 0; i < n; ++i)
    jobs.push_back(row.make(scene));
  const auto runAll = [&] {
    for (const Job &job : jobs)
      job.run();
  };
  return nanosecondsOf({runAll, nullptr}) / n / scene.side / scene.side;
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
    const auto cost = [&](Drawing drawing, int share) {
      return costOf(row, {drawing, largest / share}, largest / 2);
    };
    const double second = cost(Drawing::micrograph, 8);
    double natural = 0; // at the size of the hard images
    for (const int share : {16, 8, 4, 2, 1}) {
      const double here = share == 8 ? second : cost(Drawing::micrograph, share);
      if (share == 4)
        natural = here;
      add(row, Drawing::micrograph, largest / share, here, second);
    }
    for (const Drawing drawing : hard)
      add(row, drawing, largest / 4, cost(drawing, 4), natural);
  }
  return all;
}

} // namespace bench
