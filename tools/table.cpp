// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "table.h"

#include <charconv>
#include <cstdint>

namespace seedforest::tools {

namespace {

// With three digits behind the point, which is a point in every locale.
std::string decimal(double value) {
  char text[400];
  const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 3);
  return {text, end.ptr};
}

std::string whole(std::int64_t value) {
  return std::to_string(value);
}

void addBand(std::vector<Column> &columns, std::size_t b, const std::string &prefix) {
  const auto add = [&](const char *name, auto textOf) {
    columns.push_back(
        {prefix + name, [b, textOf](const Measures &m) { return textOf(m.bands[b]); }});
  };
  add("min", [](const BandMeasures &m) { return whole(m.least); });
  add("max", [](const BandMeasures &m) { return whole(m.largest); });
  add("mean", [](const BandMeasures &m) { return decimal(m.mean); });
  add("sd", [](const BandMeasures &m) { return decimal(m.deviation); });
}

void addLine(std::string &text, const std::vector<Column> &columns,
             const std::function<std::string(const Column &)> &entry) {
  for (const Column &column : columns)
    text.append(&column == columns.data() ? "" : ",").append(entry(column));
  text += '\n';
}

} // namespace

std::vector<Column> columnsFor(const Image &image) {
  std::vector<Column> columns = {
      {"label", [](const Measures &m) { return whole(m.label); }},
      {"area", [](const Measures &m) { return whole(m.area); }},
      {"x", [](const Measures &m) { return decimal(m.x); }},
      {"y", [](const Measures &m) { return decimal(m.y); }},
      {"left", [](const Measures &m) { return whole(m.left); }},
      {"top", [](const Measures &m) { return whole(m.top); }},
      {"right", [](const Measures &m) { return whole(m.right); }},
      {"bottom", [](const Measures &m) { return whole(m.bottom); }},
      {"perimeter", [](const Measures &m) { return decimal(m.perimeter); }},
      {"diameter", [](const Measures &m) { return decimal(m.diameter); }},
      {"touches_frame", [](const Measures &m) { return whole(m.touchesFrame ? 1 : 0); }},
  };
  if (image.nbands() == 1)
    addBand(columns, 0, "");
  if (image.nbands() == 3) {
    addBand(columns, 0, "red_");
    addBand(columns, 1, "green_");
    addBand(columns, 2, "blue_");
  }
  return columns;
}

std::string csvOf(const std::vector<Column> &columns, const std::vector<Measures> &regions) {
  std::string text;
  addLine(text, columns, [](const Column &column) { return column.name; });
  for (const Measures &region : regions)
    addLine(text, columns, [&](const Column &column) { return column.text(region); });
  return text;
}

} // namespace seedforest::tools
