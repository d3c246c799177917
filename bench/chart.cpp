// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Cost against size as a picture: both axes logarithmic, a line a row, its name at the right end.

#include "bench/measure.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace bench {

namespace {

constexpr double left = 60;
constexpr double right = 560;
constexpr double top = 20;
constexpr double bottom = 430;
constexpr double width = 800;
constexpr double height = 480;
constexpr double lineHeight = 16; // of names

// Colours that are seen on white and on black.
constexpr const char *colours[] = {"#8a8a8a", "#d9480f", "#2f7ed8", "#2b9348", "#a23bbd",
                                   "#c79100", "#0f9b9b", "#d6336c", "#6a5acd", "#7a8c00",
                                   "#b5651d", "#1f9ede", "#e0605e"};

struct Series {
  std::string name;
  const char *colour;
  std::vector<std::pair<double, double>> points; // sides and nanoseconds
  double nameAt = 0;
};

std::vector<Series> seriesOf(const std::vector<Growth> &growth) {
  std::vector<Series> all;
  for (const Row &row : allRows()) {
    if (!row.inChart)
      continue;
    Series series = {row.name, colours[all.size() % std::size(colours)], {}, 0};
    for (const Growth &g : growth)
      if (g.isNatural && g.row == row.name)
        series.points.emplace_back(g.side, g.nanoseconds);
    if (!series.points.empty())
      all.push_back(series);
  }
  return all;
}

// Values from `first` to `last` onto positions, by their logarithms.
struct Axis {
  double first, last, from, to;

  double at(double value) const {
    return from + (to - from) * std::log(value / first) / std::log(last / first);
  }
};

// Moves names apart that would overlap: downward in order, then up from the bottom.
void placeNames(std::vector<Series> &all, const Axis &costs) {
  for (Series &series : all)
    series.nameAt = costs.at(series.points.back().second);
  std::sort(all.begin(), all.end(),
            [](const Series &a, const Series &b) { return a.nameAt < b.nameAt; });
  double least = top;
  for (Series &series : all) {
    series.nameAt = std::max(series.nameAt, least);
    least = series.nameAt + lineHeight;
  }
  double largest = bottom;
  for (auto series = all.rbegin(); series != all.rend(); ++series) {
    series->nameAt = std::min(series->nameAt, largest);
    largest = series->nameAt - lineHeight;
  }
}

void drawAxes(std::ostream &out, const Axis &sides, const Axis &costs,
              const std::vector<Series> &all) {
  for (const auto &[side, cost] : all.front().points)
    out << "<text class=\"ink\" text-anchor=\"middle\" x=\"" << sides.at(side) << "\" y=\""
        << bottom + 20 << "\">" << side << "²</text>\n";
  for (double power = costs.first; power < costs.last * 1.01; power *= 10)
    for (const int factor : {1, 2, 5}) {
      const double cost = power * factor;
      if (cost > costs.last * 1.01)
        continue;
      out << "<path class=\"grid\" d=\"M" << left << ' ' << costs.at(cost) << 'H' << right
          << "\"/>\n<text class=\"ink\" text-anchor=\"end\" x=\"" << left - 8 << "\" y=\""
          << costs.at(cost) + 4 << "\">" << cost << "</text>\n";
    }
  out << "<text class=\"ink\" text-anchor=\"middle\" x=\"" << (left + right) / 2 << "\" y=\""
      << bottom + 42 << "\">pixels</text>\n<text class=\"ink\" text-anchor=\"middle\" "
      << "transform=\"translate(16 " << (top + bottom) / 2
      << ") rotate(-90)\">nanoseconds per pixel</text>\n";
}

void drawSeries(std::ostream &out, const Series &series, const Axis &sides, const Axis &costs) {
  out << "<g stroke=\"" << series.colour << "\"><path class=\"line\" d=\"";
  char command = 'M';
  for (const auto &[side, cost] : series.points) {
    out << command << sides.at(side) << ' ' << costs.at(cost);
    command = 'L';
  }
  out << "\"/><path class=\"lead\" d=\"M" << right + 2 << ' '
      << costs.at(series.points.back().second) << 'L' << right + 18 << ' ' << series.nameAt
      << "\"/></g><text fill=\"" << series.colour << "\" x=\"" << right + 22 << "\" y=\""
      << series.nameAt + 4 << "\">" << series.name << "</text>\n";
}

} // namespace

std::string chartOf(const std::vector<Growth> &growth) {
  std::vector<Series> all = seriesOf(growth);
  double least = 1e300;
  double largest = 0;
  for (const Series &series : all)
    for (const auto &point : series.points) {
      least = std::min(least, point.second);
      largest = std::max(largest, point.second);
    }
  const Axis costs = {std::pow(10, std::floor(std::log10(least))), largest * 1.2, bottom, top};
  const Axis sides = {all.front().points.front().first, all.front().points.back().first, left,
                      right};
  placeNames(all, costs);

  std::ostringstream out;
  out << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << width << ' ' << height
      << R"(" font-family="sans-serif" font-size="13">
<title>Nanoseconds per pixel of natural images, by their size</title>
<style>
.ink { fill: #333 } .grid { stroke: #8884 } .line { fill: none; stroke-width: 2 } .lead { fill: none }
@media (prefers-color-scheme: dark) { .ink { fill: #ccc } }
</style>
)";
  drawAxes(out, sides, costs, all);
  for (const Series &series : all)
    drawSeries(out, series, sides, costs);
  out << "</svg>\n";
  return out.str();
}

} // namespace bench
