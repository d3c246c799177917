// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Writes performance.md: tables of what was measured, in order of the rows.

#include "bench/measure.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

namespace bench {

namespace {

std::string shown(double value) {
  char text[40];
  std::snprintf(text, sizeof text, value < 10 ? "%.2f" : value < 100 ? "%.1f" : "%.0f", value);
  return text;
}

std::string squared(int side) {
  return std::to_string(side) + "²";
}

std::string processor() {
  std::ifstream file("/proc/cpuinfo");
  for (std::string line; std::getline(file, line);)
    if (line.rfind("model name", 0) == 0)
      return line.substr(line.find(':') + 2);
  return "an unnamed processor";
}

// The size of a cache as the system gives it: 0 to 3 for those of the first processor.
std::string cache(int index) {
  std::ifstream file("/sys/devices/system/cpu/cpu0/cache/index" + std::to_string(index) + "/size");
  std::string size;
  std::getline(file, size);
  return size;
}

std::string machine() {
  std::string text = processor();
  if (!cache(3).empty())
    text += " (caches: " + cache(0) + ", " + cache(2) + ", " + cache(3) + ')';
  return text;
}

std::string compiler() {
#if defined(__clang__)
  return "clang++ " __clang_version__;
#else
  return "g++ " __VERSION__;
#endif
}

// Cells by line and column, in the order in which they come.
class Table {
public:
  void set(const std::string &line, const std::string &column, const std::string &text) {
    if (!contains(lines_, line))
      lines_.push_back(line);
    if (!contains(columns_, column))
      columns_.push_back(column);
    cells_[{line, column}] = text;
  }

  // A title that holds a bar is that of several columns, and so are the lines.
  std::string markdown(const std::string &title) const {
    std::ostringstream page;
    page << "| " << title << " |";
    for (const std::string &column : columns_)
      page << ' ' << column << " |";
    const auto more = static_cast<std::size_t>(std::count(title.begin(), title.end(), '|'));
    page << "\n|---|";
    for (std::size_t i = 0; i < columns_.size() + more; ++i)
      page << "---|";
    page << '\n';
    for (const std::string &line : lines_) {
      page << "| " << line << " |";
      for (const std::string &column : columns_) {
        const auto cell = cells_.find({line, column});
        page << ' ' << (cell == cells_.end() ? "" : cell->second) << " |";
      }
      page << '\n';
    }
    return page.str();
  }

private:
  static bool contains(const std::vector<std::string> &list, const std::string &text) {
    return std::find(list.begin(), list.end(), text) != list.end();
  }

  std::vector<std::string> lines_;
  std::vector<std::string> columns_;
  std::map<std::pair<std::string, std::string>, std::string> cells_;
};

std::string timeTable(const std::vector<Timing> &timings) {
  Table table;
  for (const Timing &t : timings) {
    std::string line = t.row + ", " + t.image + " | ";
    line += t.library.empty() ? "–" : t.library + ", " + t.how;
    const std::string at = squared(t.side);
    table.set(line, "ours, " + at, shown(t.ours));
    if (t.library.empty())
      continue;
    table.set(line, "theirs, " + at, shown(t.theirs));
    table.set(line, "ours by theirs, " + at,
              shown(t.ratio) + " (" + shown(t.least) + " – " + shown(t.largest) + ")");
  }
  return table.markdown("job, image | peer");
}

std::string sizeTable(const std::vector<Growth> &growth, int largest) {
  Table table;
  for (const Growth &g : growth)
    if (g.isNatural)
      table.set(g.row + ", " + g.image, squared(g.side), shown(g.nanoseconds));
  const std::string ratio = squared(largest) + " by " + squared(largest / 8);
  for (const Growth &g : growth)
    if (g.isNatural && g.side == largest)
      table.set(g.row + ", " + g.image, ratio, shown(g.times));
  return table.markdown("ns a pixel");
}

std::string hardTable(const std::vector<Growth> &growth) {
  Table table;
  for (const Growth &g : growth)
    if (!g.isNatural)
      table.set(g.row, g.image, shown(g.nanoseconds) + " (" + shown(g.times) + " ×)");
  return table.markdown("ns a pixel");
}

std::string memoryTable(const std::vector<Peak> &peaks) {
  Table table;
  for (const Peak &peak : peaks)
    table.set(peak.row + ", " + peak.image + " | " +
                  (peak.library.empty() ? "ours" : peak.library + ", " + peak.how),
              squared(peak.side), shown(peak.bytes));
  return table.markdown("bytes a pixel | whose");
}

std::string toolTable(const std::vector<Peak> &peaks) {
  Table table;
  for (const Peak &peak : peaks)
    table.set('`' + peak.row + '`', peak.image, shown(peak.bytes));
  return table.markdown("bytes a pixel");
}

constexpr const char *introduction =
    R"(# Performance

What each job costs, beside what other libraries take for it. `scripts/bench` measures it on your
machine, `scripts/bench --write` makes this page.

A job runs on one thread, on images that are drawn by the program: a synthetic micrograph, noise,
shapes, a mosaic of bricks, colours as in a photograph. Pixels are of 32 bits on our side; a peer has
those that suit it best. Reading its input into a peer's types is not timed. Ours and all peers of a
row take turns in one run, in at least five rounds. Times are medians in nanoseconds per pixel; the
ratio is taken in each round, and its median, least and largest value are given: below 1 we are faster.
Where definitions agree, the sums of the results have been compared, and a difference ends the run.
Freed memory stays with the process and serves again: what fresh pages cost is the system's matter.
Times belong to a machine, ratios less so. `copy` is the yardstick: a plain copy of an image.
[What limits the speed](limits.md) says what the time goes into.

)";

} // namespace

void writePage(const std::string &folder, int largest, std::FILE *report) {
  std::ofstream page(folder + "/performance.md");
  std::ofstream chart(folder + "/performance.svg");
  if (!page || !chart)
    throw std::runtime_error("cannot write performance.md and performance.svg in " + folder);
  // Memory first, while this process has little of its own.
  const std::vector<Peak> toolPeaks = measureToolMemory(largest / 2, report);
  const std::vector<Peak> peaks = measureMemory("", largest, report);
  keepMemory();
  const std::vector<Timing> timings = measureTimes("", {largest / 8, largest / 2}, report);
  const std::vector<Growth> growth = measureGrowth("", largest, report);

  page << introduction << "Measured on " << machine() << ", compiled with " << compiler()
       << ", beside";
  std::string comma = " ";
  for (const std::string &library : peerLibraries()) {
    page << comma << library;
    comma = ", ";
  }
  page << ".\n\n## Time\n\n"
       << timeTable(timings)
       << "\n## Growth\n\n![Cost against size](performance.svg)\n\n"
          "Small images take turns, as many as have the pixels of a large one, so that none is in "
          "the\ncache from its last turn; in the table above it may be.\n\n"
       << sizeTable(growth, largest) << "\nImages that are hard for some algorithms, of "
       << squared(largest / 4)
       << " pixels, and how often the cost of the natural image of that size it is:\n\n"
       << hardTable(growth)
       << "\n## Memory\n\nThe most memory in use at a time: input, result and all between them, in "
          "bytes per pixel.\nA pixel of our images takes 4.\n\nThe tool, on images of "
       << squared(largest / 2) << " pixels:\n\n"
       << toolTable(toolPeaks) << "\nThe rows:\n\n"
       << memoryTable(peaks);
  chart << chartOf(growth);
  if (!page.flush() || !chart.flush())
    throw std::runtime_error("cannot write into " + folder);
}

} // namespace bench
