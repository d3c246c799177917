// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The tool: reads an image, makes roots by the option named on the command line, writes them.
//
// One table says how many arguments each option takes and how it makes its roots; a new option is a
// line in it. Argument errors are reported only after the image has been read.

#include "app/tool.h"

#include "base/report.h"
#include "base/scan.h"
#include "ift/core/detail/rootsTools.h"
#include "ift/ift.h"
#include "image/image.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace seedforest::detail;

namespace {

struct CommandLine {
  int count;          // arguments, the program's own name included
  const char **words; // the arguments

  const char *program() const { return count > 0 ? words[0] : "seedforest"; }

  // A decimal parameter; 0 where there is no number, and trailing text is ignored.
  int number(int position) const {
    Text text{std::string_view(words[position])};
    int value = 0;
    scanInt(text, value);
    return value;
  }
};

enum CommandLinePosition { imagePath = 1, rootsPath = 2, optionWord = 3, firstParameter = 4 };

// How many arguments an option takes; for other counts, the message, where it goes and the exit
// status.
struct ArgumentRule {
  int least;
  int most;
  const char *message;
  void (*print)(const char *format, ...);
  int status;
};

// Makes an option's roots. Null where it has printed why there are none; the run ends with status
// 0.
using MakeRootsFn = ifRootsPtr (*)(const CommandLine &, imImage *);

struct Option {
  std::string_view word;
  ArgumentRule rule;
  MakeRootsFn makeRoots;
};

constexpr int anyCount = INT32_MAX;

void printUsage(const char *program) {
  progress("\n%s <input image> <output roots file> <opt> [par(s)]\n", program);
  progressText("valid <opt> values:\n"
               "\tregMax (regional maxima in [min, max]) : par(s) = min max\n"
               "\tregMin (regional minima in [min, max]) : par(s) = min max\n"
               "\tdt     (contour border of binary img)  : par(s) = none\n"
               "\tjoin   (joins two roots files)         : par(s) = <roots_file2>\n"
               "\tframe  (seeds are the frame pixels)    : par(s) = <uniform labels> "
               "<label, if uniform labels is selected>\n"
               "\tlabels (label image  -> seeds)         : par(s) = none\n"
               "\tcells  (seeds to extract cells)        : par(s) = none\n"
               "\n");
}

void copyRoot(const ifRoots &from, int i, ifRoots &to, int k) {
  to.pixel[k] = from.pixel[i];
  to.label[k] = from.label[i];
  to.value[k] = from.value[i];
}

ifRootsPtr readRoots(const char *path, const imImage *image) {
  ifRootsPtr roots(ifReadRoots(path, image));
  if (roots == nullptr)
    warn("error reading seeds file %s\n", path);
  else
    progress("read file %s\n", path);
  return roots;
}

ifRootsPtr joinRoots(const CommandLine &line, imImage *image) {
  const ifRootsPtr a = readRoots(line.words[firstParameter], image);
  const ifRootsPtr b = a ? readRoots(line.words[firstParameter + 1], image) : nullptr;
  if (b == nullptr)
    return nullptr;
  ifRootsPtr joined = createRoots(std::int64_t{a->n} + b->n);
  int k = 0;
  for (const ifRoots *part : {a.get(), b.get()})
    for (int i = 0; i < part->n; ++i)
      copyRoot(*part, i, *joined, k++);
  return joined;
}

ifRootsPtr frameRoots(const CommandLine &line, imImage *image) {
  const int uniform = line.number(firstParameter);
  if (uniform != 0 && line.count != 6) {
    warn("value not suplied for <label>\n");
    return nullptr;
  }
  const int label = uniform != 0 ? line.number(firstParameter + 1) : 0;
  return ifRootsPtr(ifFrameAsRoots(image, uniform, label));
}

ifRootsPtr labelRoots(const CommandLine &, imImage *image) {
  return ifRootsPtr(ifLabelsToRoots(image));
}

// The roots whose value in band 0 of the image is in the range given on the command line.
ifRootsPtr keepRange(const char *option, const CommandLine &line, const imImage *image,
                     ifRoots *(*makeRoots)(const imImage *)) {
  const int least = line.number(firstParameter);
  const int most = line.number(firstParameter + 1);
  progress("%s: %d %d\n", option, least, most);
  ifRootsPtr roots(makeRoots(image));
  int kept = 0;
  for (int i = 0; i < roots->n; ++i)
    if (roots->value[i] >= least && roots->value[i] <= most)
      copyRoot(*roots, i, *roots, kept++);
  roots->n = kept;
  return roots;
}

ifRootsPtr maximumRoots(const CommandLine &line, imImage *image) {
  return keepRange("regMax", line, image, ifRegionalMaximaAsRoots);
}

ifRootsPtr minimumRoots(const CommandLine &line, imImage *image) {
  return keepRange("regMin", line, image, ifRegionalMinimaAsRoots);
}

ifRootsPtr contourRoots(const CommandLine &, imImage *image) {
  ifRootsPtr roots = createRoots(0);
  ifReleaseRoots(roots.get());
  ifDistTransfRoots(image, roots.get(), 1);
  return roots;
}

ifRootsPtr cellRoots(const CommandLine &line, imImage *image) {
  return ifRootsPtr(ifCellsRoots(image, line.number(firstParameter)));
}

const Option *findOption(std::string_view word) {
  constexpr const char *wrongCount = "Invalid number of parameters\n";
  static const Option options[] = {
      {"regMax", {6, 6, wrongCount, progress, 1}, maximumRoots},
      {"regMin", {6, 6, wrongCount, progress, 1}, minimumRoots},
      {"dt", {0, anyCount, "", progress, 0}, contourRoots},
      {"frame", {5, anyCount, "value not suplied for <uniform label>\n", warn, 0}, frameRoots},
      {"join", {6, anyCount, "invalid seed file(s) name(s)\n", warn, 0}, joinRoots},
      {"cells", {5, 5, wrongCount, progress, 1}, cellRoots},
      {"labels", {0, anyCount, "", progress, 0}, labelRoots},
  };
  for (const Option &option : options)
    if (option.word == word)
      return &option;
  return nullptr;
}

} // namespace

namespace seedforest::detail {

int runTool(int argc, const char **argv) {
  const CommandLine line = {argc, argv};
  if (line.count <= optionWord) {
    printUsage(line.program());
    return EXIT_SUCCESS;
  }
  imImage *read = nullptr;
  imReadImage(line.words[imagePath], &read);
  const imImagePtr image(read);
  progress("Image %s was read\n", line.words[imagePath]);
  const Option *option = findOption(line.words[optionWord]);
  if (option == nullptr)
    fatal("Invalid opt %s\n", line.words[optionWord]);
  const ArgumentRule &rule = option->rule;
  if (line.count < rule.least || line.count > rule.most) {
    rule.print("%s", rule.message);
    return rule.status;
  }
  const ifRootsPtr roots = option->makeRoots(line, image.get());
  if (roots == nullptr)
    return EXIT_SUCCESS;
  ifSaveRoots(line.words[rootsPath], image.get(), roots.get());
  progress("there are %d roots\n", roots->n);
  progress("done!\n");
  return EXIT_SUCCESS;
}

} // namespace seedforest::detail
