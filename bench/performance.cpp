// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Measures every row: time beside other libraries, growth, memory.
//   performance time [ROW] [--side N]     ours and each peer, taking turns
//   performance growth [ROW]              in five sizes, and on hard images
//   performance memory [ROW]              peaks of rows and peers, and of the tool without a ROW
//   performance once ROW IMAGE SIDE       the job once, for a profiler; all of it in countedJob()
//   performance write FOLDER              all, as performance.md and performance.svg
//   performance list                      the rows
// ROW is what names of rows begin with. --largest N measures at smaller sizes than up to 8192: for
// trials. Ends with status 1 where a peer's result is another one than ours, and should not be.

#include "bench/measure.h"
#include "bench/scratch.h"

#include <cstdlib>
#include <cstring>
#include <stdexcept>

using namespace bench;

/// Where a profiler begins and ends to count.
extern "C" [[gnu::noinline]] void countedJob(const Job &job) {
  job.run();
}

namespace {

struct CommandLine {
  std::vector<std::string> words;
  int side = 0;
  int largest = 8192;

  CommandLine(int argc, char **argv) {
    for (int i = 1; i < argc; ++i) {
      int *number = std::strcmp(argv[i], "--side") == 0      ? &side
                    : std::strcmp(argv[i], "--largest") == 0 ? &largest
                                                             : nullptr;
      if (number == nullptr)
        words.emplace_back(argv[i]);
      else if (++i < argc)
        *number = std::atoi(argv[i]);
    }
  }
  std::string word(std::size_t i) const { return i < words.size() ? words[i] : ""; }
};

void runOnce(const std::string &name, const std::string &image, int side) {
  for (const Row &row : rowsThatBegin(name))
    for (int d = 0; d <= static_cast<int>(Drawing::oneGround); ++d) {
      const auto drawing = static_cast<Drawing>(d);
      if (row.name == name && image == nameOf(drawing, row.subject) && side > 0) {
        countedJob(row.make({drawing, side}));
        return;
      }
    }
  throw std::runtime_error("no row " + name + " on an image " + image);
}

// Returns whether the command line asked for something.
bool run(const CommandLine &line, std::FILE *report) {
  const std::string command = line.word(0);
  const std::string filter = line.word(1);
  const std::vector<int> sides = {line.largest / 8, line.largest / 2};
  if (command == "time" || command == "growth")
    keepMemory();
  if (command == "time")
    measureTimes(filter, line.side > 0 ? std::vector{line.side} : sides, report);
  else if (command == "growth")
    measureGrowth(filter, line.largest, report);
  else if (command == "memory") {
    measureMemory(filter, line.largest, report);
    if (filter.empty())
      measureToolMemory(line.largest / 2, report);
  } else if (command == "once" && line.words.size() == 4)
    runOnce(filter, line.words[2], std::atoi(line.words[3].c_str()));
  else if (command == "write" && line.words.size() == 2)
    writePage(filter, line.largest, report);
  else if (command == "list")
    for (const Row &row : allRows())
      std::fprintf(report, "%s (%s)\n", row.name.c_str(),
                   nameOf(row.drawings.front(), row.subject));
  else
    return false;
  return true;
}

} // namespace

int main(int argc, char **argv) {
  const SilentProgress silent; // operations print while they work
  std::FILE *report = fdopen(dup(silent.output()), "w");
  try {
    const CommandLine line(argc, argv);
    if (line.largest < 512)
      throw std::runtime_error("--largest is at least 512");
    if (!run(line, report)) {
      std::fprintf(stderr, "usage: performance time [ROW] [--side N] | growth [ROW] | memory [ROW] "
                           "| once ROW IMAGE SIDE | write FOLDER | list   [--largest N]\n");
      return 2;
    }
  } catch (const std::exception &error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  return std::fclose(report) == 0 ? 0 : 1;
}
