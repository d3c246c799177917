// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The measurements, and the page that is made of them. Each prints its figures on `report` as lines
// of comma-separated values while it goes on. A filter is what the names of the rows begin with.
#pragma once

#include "bench/rows.h"

#include <cstdio>
#include <string>
#include <vector>

namespace bench {

/// One of ours beside a peer, or alone (no library). Nanoseconds are medians of the rounds, in each
/// of which all that do the job take turns; a ratio is ours by theirs in one round.
struct Timing {
  std::string row, image;
  int side;
  std::string library, how;
  double ours, theirs; // nanoseconds per pixel
  double ratio, least, largest;
};

/// How one of ours grows: `times` is the cost by that of the natural image, at the second size for
/// the natural image itself and at the same size for another.
struct Growth {
  std::string row, image;
  bool isNatural;
  int side;
  double nanoseconds; // per pixel
  double times;
};

/// The most memory in use during a job, its inputs and its result included, beyond what the process
/// had before. Ours where there is no library.
struct Peak {
  std::string row, image;
  int side;
  std::string library, how;
  double bytes; // per pixel
};

/// From now on, freed memory stays with the process and serves again, in large blocks as in small
/// ones. Else the page faults of large images would be timed, not those of small ones; what a fresh
/// page costs is the system's matter.
void keepMemory();

std::vector<Row> rowsThatBegin(const std::string &filter);

/// The median time per run of a job alone, in nanoseconds.
double nanosecondsOf(const Job &job);

/// Throws where ours and a peer that does the same differ in the sum of their results.
std::vector<Timing> measureTimes(const std::string &filter, const std::vector<int> &sides,
                                 std::FILE *report);

/// Natural images in five sizes up to the largest; images that are hard, a quarter as large.
std::vector<Growth> measureGrowth(const std::string &filter, int largest, std::FILE *report);

/// Rows and peers, in two sizes.
std::vector<Peak> measureMemory(const std::string &filter, int largest, std::FILE *report);

/// Options of the tool, on images that are hard.
std::vector<Peak> measureToolMemory(int side, std::FILE *report);

/// All of it, as performance.md and performance.svg in the folder.
void writePage(const std::string &folder, int largest, std::FILE *report);
std::string chartOf(const std::vector<Growth> &growth);

} // namespace bench
