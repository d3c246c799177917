// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/measure.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <stdexcept>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace bench {

namespace {

struct Contestant {
  Job job;
  int repeats = 1;           // runs in a round
  std::vector<double> times; // a run in each round, in nanoseconds
};

double timeOf(const Contestant &contestant) {
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < contestant.repeats; ++i)
    contestant.job.run();
  const std::chrono::duration<double, std::nano> time = std::chrono::steady_clock::now() - start;
  return time.count() / contestant.repeats;
}

double medianOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t half = values.size() / 2;
  return values.size() % 2 == 1 ? values[half] : (values[half - 1] + values[half]) / 2;
}

// Takes turns; short jobs are run several times in a round, and more rounds are made of short ones,
// until it is enough.
void race(std::vector<Contestant> &contestants, int leastRounds, double enough) {
  constexpr double shortest = 2e7; // nanoseconds
  double round = 0;
  for (Contestant &contestant : contestants) {
    const double time = timeOf(contestant);
    contestant.repeats = std::max(1, static_cast<int>(std::ceil(shortest / time)));
    round += contestant.repeats * time;
  }
  const int rounds = std::clamp(static_cast<int>(enough / round), leastRounds, 15);
  for (int i = 0; i < rounds; ++i)
    for (Contestant &contestant : contestants)
      contestant.times.push_back(timeOf(contestant));
}

Contestant runOnce(const MakeJobFn &make, Scene scene) {
  Contestant contestant;
  contestant.job = make(scene);
  contestant.job.run();
  return contestant;
}

Timing compared(const Contestant &ours, const Contestant &theirs, double pixels) {
  Timing timing = {};
  timing.ours = medianOf(ours.times) / pixels;
  timing.theirs = medianOf(theirs.times) / pixels;
  std::vector<double> ratios;
  for (std::size_t i = 0; i < ours.times.size(); ++i)
    ratios.push_back(ours.times[i] / theirs.times[i]);
  timing.ratio = medianOf(ratios);
  timing.least = *std::min_element(ratios.begin(), ratios.end());
  timing.largest = *std::max_element(ratios.begin(), ratios.end());
  return timing;
}

void print(const Timing &t, std::FILE *report) {
  std::fprintf(report, "%s,%s,%d,%s,\"%s\",%.3f", t.row.c_str(), t.image.c_str(), t.side,
               t.library.c_str(), t.how.c_str(), t.ours);
  if (t.library.empty())
    std::fprintf(report, ",,,,\n");
  else
    std::fprintf(report, ",%.3f,%.3f,%.3f,%.3f\n", t.theirs, t.ratio, t.least, t.largest);
  std::fflush(report);
}

void requireSameSum(const Timing &timing, double ours, double theirs) {
  if (ours == theirs)
    return;
  throw std::runtime_error(timing.row + " on " + timing.image + ", side " +
                           std::to_string(timing.side) + ": the sum is " + std::to_string(ours) +
                           ", that of " + timing.library + " (" + timing.how + ") " +
                           std::to_string(theirs));
}

std::vector<Timing> timesOf(const Row &row, Scene scene) {
  const std::vector<Peer> peers = peersOf(row);
  std::vector<Contestant> contestants;
  contestants.push_back(runOnce(row.make, scene));
  Timing title = {};
  title.row = row.name;
  title.image = nameOf(scene.drawing, row.subject);
  title.side = scene.side;
  const double ours = contestants.front().job.sum();
  for (const Peer &peer : peers) {
    contestants.push_back(runOnce(peer.make, scene));
    title.library = peer.library;
    title.how = peer.how;
    if (peer.isSameSum)
      requireSameSum(title, ours, contestants.back().job.sum());
  }
  race(contestants, 5, 5e9);

  const double pixels = double(scene.side) * scene.side;
  if (peers.empty()) {
    title.ours = medianOf(contestants.front().times) / pixels;
    return {title};
  }
  std::vector<Timing> timings;
  for (std::size_t i = 0; i < peers.size(); ++i) {
    Timing timing = compared(contestants.front(), contestants[i + 1], pixels);
    timing.row = title.row;
    timing.image = title.image;
    timing.side = title.side;
    timing.library = peers[i].library;
    timing.how = peers[i].how;
    timings.push_back(timing);
  }
  return timings;
}

} // namespace

void keepMemory() {
#if defined(__GLIBC__)
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, -1);
#endif
}

std::vector<Row> rowsThatBegin(const std::string &filter) {
  std::vector<Row> rows;
  for (const Row &row : allRows())
    if (row.name.compare(0, filter.size(), filter) == 0)
      rows.push_back(row);
  if (rows.empty())
    throw std::runtime_error("no row begins with " + filter);
  return rows;
}

double nanosecondsOf(const Job &job) {
  std::vector<Contestant> alone(1);
  alone.front().job = job;
  race(alone, 3, 1e9);
  return medianOf(alone.front().times);
}

std::vector<Timing> measureTimes(const std::string &filter, const std::vector<int> &sides,
                                 std::FILE *report) {
  std::fprintf(report, "row,image,side,peer,how,ours ns/pixel,peer's,ratio,least,largest\n");
  std::vector<Timing> all;
  for (const Row &row : rowsThatBegin(filter))
    for (const Drawing drawing : row.drawings)
      for (const int side : sides)
        for (Timing &timing : timesOf(row, {drawing, side})) {
          print(timing, report);
          all.push_back(std::move(timing));
        }
  return all;
}

} // namespace bench
