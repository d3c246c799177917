// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Seeds from an image in any format: the options of the tool `seedforest`, and two more.

#include "formats.h"
#include "pixels.h"
#include "program.h"
#include "seeding.h"

#include <climits>
#include <set>

namespace seedforest::tools {

namespace {

struct Choices {
  int smooth = 0;
  Threshold threshold = {};
  bool hasGround = false;
};

// An option's parameters.
struct Task {
  const Choices &choices;
  std::vector<std::string> paths = {};
  std::vector<int> numbers = {};
};

Roots maximumRoots(const Image &image, const Task &task) {
  return regionalMaximaRoots(image).within(task.numbers[0], task.numbers[1]);
}

Roots minimumRoots(const Image &image, const Task &task) {
  return regionalMinimaRoots(image).within(task.numbers[0], task.numbers[1]);
}

Roots borderRoots(const Image &image, const Task &) {
  return contourRoots(image);
}

Roots rootsOfFrame(const Image &image, const Task &task) {
  if (task.numbers[0] == 0)
    return frameRoots(image);
  return frameRoots(image, task.numbers[1]);
}

Roots joinedRoots(const Image &image, const Task &task) {
  Roots joined = readRoots(inputPath(task.paths[0]), image);
  for (const Root &root : readRoots(inputPath(task.paths[1]), image))
    joined.push_back(root);
  return joined;
}

Roots labelRoots(const Image &image, const Task &) {
  return rootsOf(image);
}

Roots rootsOfCells(const Image &image, const Task &task) {
  return cellRoots(image, task.numbers[0]);
}

Roots markerRoots(const Image &image, const Task &task) {
  return markers(brightnessOf(image), task.numbers[0]);
}

Roots rootsOfParts(const Image &image, const Task &task) {
  return splitRoots(image, task.choices.threshold, task.numbers[0]);
}

enum class Takes { numbers, counts, paths }; // counts are at least 0

struct Method {
  const char *word;
  Takes takes;
  std::size_t least; // parameters
  std::size_t most;
  const char *parameters;
  Roots (*make)(const Image &image, const Task &task);
};

constexpr Method methods[] = {
    {"regMax", Takes::numbers, 2, 2, "MIN MAX", maximumRoots},
    {"regMin", Takes::numbers, 2, 2, "MIN MAX", minimumRoots},
    {"dt", Takes::numbers, 0, 0, "", borderRoots},
    {"frame", Takes::numbers, 1, 2, "0|1 [LABEL]", rootsOfFrame},
    {"join", Takes::paths, 2, 2, "ROOTS ROOTS", joinedRoots},
    {"labels", Takes::numbers, 0, 0, "", labelRoots},
    {"cells", Takes::numbers, 1, 1, "STEPS", rootsOfCells},
    {"markers", Takes::counts, 1, 1, "H", markerRoots},
    {"split", Takes::counts, 1, 1, "H", rootsOfParts},
};

const Method &methodOf(const std::string &word) {
  std::vector<std::string> words;
  for (const Method &method : methods)
    words.emplace_back(method.word);
  return methods[wordIn(word, "OPTION", words)];
}

Task taskOf(const Method &method, const Operands &operands, const Choices &choices) {
  Task task = {choices};
  const std::vector<std::string> given(operands.begin() + 3, operands.end());
  if (given.size() < method.least || given.size() > method.most)
    throw UsageError(std::string("the option is: ") + method.word + " " + method.parameters);
  if (method.takes == Takes::paths)
    task.paths = given;
  else
    for (const std::string &text : given)
      task.numbers.push_back(
          numberIn(text, method.word, method.takes == Takes::counts ? 0 : INT_MIN));
  if (method.make == rootsOfFrame && task.numbers[0] != 0 && given.size() < 2)
    throw UsageError("frame 1 needs a label");
  return task;
}

void noteCounts(const Roots &roots) {
  const std::set<int> labels(roots.labels().begin(), roots.labels().end());
  note(std::to_string(labels.size()) + " labels, " + std::to_string(roots.size()) + " roots");
}

void makeSeeds(const Choices &choices, const Operands &operands) {
  const Method &method = methodOf(operands[2]);
  const Task task = taskOf(method, operands, choices);
  const Image read = readImage(operands[0]);
  const bool isSmooth = choices.smooth > 0;
  const Image filtered = isSmooth ? alternatingFilter(read, choices.smooth) : Image();
  const Image &image = isSmooth ? filtered : read;
  Roots roots = method.make(image, task);
  noteCounts(roots);
  if (choices.hasGround) {
    const Ground ground = addGround(roots, image, choices.threshold);
    note("the ground has label " + std::to_string(ground.label) + ", " +
         std::to_string(ground.count) + " roots");
  }
  writeRoots(roots, image, outputPath(operands[1]));
}

Program programFor(Choices &choices) {
  return {
      "seedforest-seeds",
      "IMAGE ROOTS OPTION ...",
      "Writes seeds of an image into a roots file. The option is one of\n"
      "  regMax MIN MAX     regional maxima of values MIN .. MAX\n"
      "  regMin MIN MAX     regional minima of values MIN .. MAX\n"
      "  dt                 borders of the objects in a binary image\n"
      "  frame 0            the image's frame, each pixel with a label of its own\n"
      "  frame 1 LABEL      the image's frame, all of one label\n"
      "  join ROOTS ROOTS   two roots files\n"
      "  labels             the pixels of a label image\n"
      "  cells STEPS        cells (label 2) and lines between them (1)\n"
      "  markers H          maxima that stand out by more than H\n"
      "  split H            objects above the threshold, holes filled, apart at necks whose\n"
      "                     half-width is more than H pixels below that of both parts",
      3,
      5,
      {{"smooth", "N", "run an alternating filter of N steps first",
        [&](const std::string &text) { choices.smooth = numberIn(text, "--smooth", 0, 1000000); }},
       {"threshold", "auto|V", "of split and --ground: Otsu's (default), or V",
        [&](const std::string &text) { choices.threshold = thresholdIn(text); }},
       {"ground", nullptr, "add the background as seeds of a further label",
        [&](const std::string &) { choices.hasGround = true; }}}};
}

} // namespace

} // namespace seedforest::tools

int main(int argc, char **argv) {
  using namespace seedforest::tools;
  Choices choices;
  return runProgram(programFor(choices), argc, argv,
                    [&](const Operands &operands) { makeSeeds(choices, operands); });
}
