// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// A table of the regions of a label image.

#include "formats.h"
#include "measures.h"
#include "outlines.h"
#include "pixels.h"
#include "program.h"
#include "regions.h"
#include "table.h"

#include <cstdint>
#include <cstdio>

namespace seedforest::tools {

namespace {

enum class Format { csv, json, geojson };

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
  printList(ring, ",", [](const Corner &c) {
    print("[", std::to_string(c.x), ",", std::to_string(c.y), "]");
  });
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
    print("{\"type\": \"Feature\", \"id\": ", std::to_string(region.label), ", \"properties\": ");
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
    return print(csvOf(columns, regions));
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
