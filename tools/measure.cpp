// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// A table of the regions of a label image.

#include "formats.h"
#include "measures.h"
#include "outlines.h"
#include "pixels.h"
#include "program.h"
#include "regions.h"

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <optional>

namespace seedforest::tools {

namespace {

enum class Format { csv, json, geojson };

struct Column {
  std::string name;
  std::function<std::string(const Measures &)> text;
};

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

void printText(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
}

template <class... Parts>
void print(const Parts &...parts) {
  (printText(parts), ...);
}

// Calls write(item) for each item, with a separator between two.
template <class Items, class Write>
void printList(const Items &items, const char *separator, Write write) {
  const char *before = "";
  for (const auto &item : items) {
    print(before);
    write(item);
    before = separator;
  }
}

void printCsv(const std::vector<Column> &columns, const std::vector<Measures> &regions) {
  printList(columns, ",", [](const Column &column) { print(column.name); });
  print("\n");
  for (const Measures &region : regions) {
    printList(columns, ",", [&](const Column &column) { print(column.text(region)); });
    print("\n");
  }
}

// Names are plain words and values numbers: nothing needs an escape.
void printObject(const std::vector<Column> &columns, const Measures &region) {
  print("{");
  printList(columns, ", ",
            [&](const Column &column) { print("\"", column.name, "\": ", column.text(region)); });
  print("}");
}

void printJson(const std::vector<Column> &columns, const std::vector<Measures> &regions) {
  print("[\n");
  printList(regions, ",\n", [&](const Measures &region) { printObject(columns, region); });
  print("\n]\n");
}

void printRing(const Ring &ring) {
  print("[");
  printList(ring, ",", [](const Corner &c) { print("[", whole(c.x), ",", whole(c.y), "]"); });
  print("]");
}

void printPolygon(const Polygon &polygon) {
  print("[");
  printList(polygon, ",", printRing);
  print("]");
}

void printGeometry(const std::vector<Polygon> &polygons) {
  if (polygons.size() == 1) {
    print("{\"type\": \"Polygon\", \"coordinates\": ");
    printPolygon(polygons[0]);
  } else {
    print("{\"type\": \"MultiPolygon\", \"coordinates\": [");
    printList(polygons, ",", printPolygon);
    print("]");
  }
  print("}");
}

void printGeoJson(const std::vector<Column> &columns, const std::vector<Measures> &regions,
                  const Image &labels) {
  const std::vector<std::vector<Polygon>> outlines = outlinesOf(numbered(labels).numbers);
  std::size_t number = 0; // regions and outlines are in the same order, these with one for 0
  print("{\"type\": \"FeatureCollection\", \"features\": [\n");
  printList(regions, ",\n", [&](const Measures &region) {
    print("{\"type\": \"Feature\", \"id\": ", whole(region.label), ", \"properties\": ");
    printObject(columns, region);
    print(", \"geometry\": ");
    printGeometry(outlines[++number]);
    print("}");
  });
  print("\n]}\n");
}

void measureRegions(Format format, const Operands &operands) {
  const Image labels = asLabels(readImage(operands[0]), operands[0]);
  const Image image = operands.size() > 1 ? readImage(operands[1]) : Image();
  if (image)
    requireSize(labels, image, operands[1]);
  const std::vector<Measures> regions = measuresOf(labels, image ? &image : nullptr);
  const std::vector<Column> columns = columnsFor(image);
  switch (format) {
  case Format::csv:
    return printCsv(columns, regions);
  case Format::json:
    return printJson(columns, regions);
  case Format::geojson:
    return printGeoJson(columns, regions, labels);
  }
}

Program programFor(Format &format) {
  return {"seedforest-measure",
          "LABELS [IMAGE]",
          "Prints a table with a row for each label above 0: area, centroid, bounding box,\n"
          "perimeter (by Crofton's formula in four directions), diameter of the disc of the same\n"
          "area, whether it touches the frame and, of each band of an image, the least and the\n"
          "largest value, mean and standard deviation.",
          1,
          2,
          {{"format", "FORMAT", "csv (default), json, or geojson with outlines as polygons",
            [&](const std::string &text) {
              format = static_cast<Format>(wordIn(text, "--format", {"csv", "json", "geojson"}));
            }}}};
}

} // namespace

} // namespace seedforest::tools

int main(int argc, char **argv) {
  using namespace seedforest::tools;
  auto format = Format::csv;
  return runProgram(programFor(format), argc, argv,
                    [&](const Operands &operands) { measureRegions(format, operands); });
}
