// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Regions from roots, and what is done to them afterwards: see regions.h for the steps.

#include "flood.h"
#include "formats.h"
#include "pixels.h"
#include "program.h"
#include "regions.h"

#include <climits>
#include <optional>

namespace seedforest::tools {

namespace {

struct Choices {
  Relief relief = Relief::gradient;
  Cost cost = Cost::max;
  bool isFour = false;
  std::string mask = {};
  std::optional<Threshold> threshold = std::nullopt;
  Merging merging = {};
  std::optional<int> background = std::nullopt;
  bool hasLines = false;
};

// The pixels that get a label: those above the threshold and inside the mask; none without either.
std::optional<Image> maskOf(const Image &image, const Choices &choices) {
  std::optional<Image> mask;
  if (choices.threshold.has_value())
    mask = shapeAbove(image, *choices.threshold);
  if (choices.mask.empty())
    return mask;
  const Image given = readImage(choices.mask);
  requireSize(image, given, choices.mask);
  return mask.has_value() ? masked(*mask, given) : threshold(given, 1, INT_MAX);
}

Roots readRootsOf(const std::string &path, const Image &image) {
  Roots roots = readRoots(inputPath(path), image);
  requireRegions(roots, image, path);
  return roots;
}

void segment(const Choices &choices, const Operands &operands) {
  requireFormat(operands[2]);
  const Image image = readImage(operands[0]);
  Roots roots = readRootsOf(operands[1], image);
  const std::optional<Image> mask = maskOf(image, choices);
  ForestOptions options;
  options.adjacency = choices.isFour ? Adjacency::four() : Adjacency::eight();
  options.mask = mask.has_value() ? &*mask : nullptr;
  Image labels = labelsFrom(reliefOf(image, choices.relief), roots, choices.cost, options);
  labels = merged(std::move(labels), image, choices.merging);
  if (choices.background.has_value())
    clearLabel(labels, *choices.background);
  if (choices.hasLines)
    drawLines(labels, options.adjacency);
  writeImage(labels, operands[2]);
}

Program programFor(Choices &choices) {
  const auto whole = [](int &place, const char *what, int least) {
    return [&place, what, least](const std::string &text) { place = numberIn(text, what, least); };
  };
  return {
      "seedforest-segment",
      "IMAGE ROOTS LABELS",
      "Divides an image into regions, one for each label of the roots, by a watershed or another\n"
      "transform of best paths, and writes an image of their labels (.pgm, .png, .tif).",
      3,
      3,
      {{"on", "RELIEF", "flood the image, its negative or its gradient (default)",
        [&](const std::string &text) {
          choices.relief =
              static_cast<Relief>(wordIn(text, "--on", {"image", "negative", "gradient"}));
        }},
       {"connectivity", "4|8", "neighbours of a pixel (default 8)",
        [&](const std::string &text) {
          choices.isFour = wordIn(text, "--connectivity", {"4", "8"}) == 0;
        }},
       {"cost", "COST",
        "of a path: max (default: watershed), sum, or local (no higher than at the root)",
        [&](const std::string &text) {
          choices.cost = static_cast<Cost>(wordIn(text, "--cost", {"max", "sum", "local"}));
        }},
       {"mask", "FILE", "label only pixels where this image is above 0",
        [&](const std::string &text) { choices.mask = text; }},
       {"threshold", "auto|V", "label only pixels above Otsu's threshold, or above V",
        [&](const std::string &text) { choices.threshold = thresholdIn(text); }},
       {"min-area", "A", "regions of fewer than A pixels join the neighbour most like them",
        whole(choices.merging.leastArea, "--min-area", 0)},
       {"similar", "T", "neighbours whose averages differ by at most T join, the nearest first",
        [&](const std::string &text) { choices.merging.similar = numberIn(text, "--similar", 0); }},
       {"merge", "N", "join neighbours until N regions are left",
        [&](const std::string &text) { choices.merging.count = numberIn(text, "--merge", 1); }},
       {"background", "LABEL", "this label becomes 0",
        [&](const std::string &text) { choices.background = numberIn(text, "--background", 1); }},
       {"lines", nullptr, "draw a line of 0, one pixel wide, between regions",
        [&](const std::string &) { choices.hasLines = true; }}}};
}

} // namespace

} // namespace seedforest::tools

int main(int argc, char **argv) {
  using namespace seedforest::tools;
  Choices choices;
  return runProgram(programFor(choices), argc, argv,
                    [&](const Operands &operands) { segment(choices, operands); });
}
