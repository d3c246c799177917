// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Whole runs of the tool, in process. The first line of an input holds the words from the option
// on; then come the files "image", "a" and "b", separated by lines "--".

#include "app/tool.h"

#include "harness.h"
#include "ift/core/ifRoots.h"
#include "image/imIO.h"
#include "plainImage.h"

#include <sstream>

using namespace seedforest::detail;

namespace {

// Made before the first run, and removed at the end of the process.
const TemporaryFolder &folder() {
  static const TemporaryFolder folder;
  return folder;
}

// What is before the separator, which is taken off the text with it.
std::string_view takePart(std::string_view &text, std::string_view separator) {
  const std::size_t end = std::min(text.find(separator), text.size());
  const std::string_view part = text.substr(0, end);
  text.remove_prefix(std::min(end + separator.size(), text.size()));
  return part;
}

std::vector<std::string> wordsOf(std::string_view line) {
  std::istringstream text{std::string(line)};
  std::vector<std::string> words;
  for (std::string word; words.size() < 6 && text >> word;)
    words.push_back(word);
  return words;
}

// Not admitted: files elsewhere, images of which a few bytes make millions of pixels, and filters of
// very many steps, which take the memory or the time that they are said to take.
bool isAdmitted(const std::vector<std::string> &words, std::string_view image) {
  const bool isSmall = PlainImage(image, 0).npixels() <= 32 * 32;
  const bool isHere = std::none_of(words.begin(), words.end(), [](const std::string &word) {
    return word.find('/') != word.npos;
  });
  const bool isCells = words.size() > 1 && words[0] == "cells";
  const long steps = isCells ? std::strtol(words[1].c_str(), nullptr, 10) : 0;
  return isSmall && isHere && (steps <= 20 || steps > 1000000);
}

bool exists(const char *name) {
  return std::filesystem::exists(folder().path(name));
}

// An output that is there is whole.
void checkRoots(const imImage *image) {
  const std::string text = contentsOf(folder().path("out"));
  const int n = std::atoi(text.c_str());
  check(std::count(text.begin(), text.end(), '\n') == n + 1 && text.back() == '\n',
        "the roots file is not whole");
  ifRootsPtr roots;
  if (succeeds([&] { roots.reset(ifReadRoots("out", image)); }))
    check(roots->n == n, "the roots file holds another number of roots");
  else
    check(n == 0, "the roots file is refused");
}

void run(const std::vector<std::string> &words) {
  std::vector<const char *> arguments = {"seedforest", "image", "out"};
  for (const std::string &word : words)
    arguments.push_back(word.c_str());
  int status = 1;
  const bool ended =
      succeeds([&] { status = runTool(static_cast<int>(arguments.size()), arguments.data()); });
  check(status == 0 || status == 1, "the status is neither 0 nor 1");
  imImage *read = nullptr;
  if (!exists("out"))
    return;
  check(ended && status == 0, "a run that failed has written roots");
  imReadImage("image", &read);
  const imImagePtr image(read);
  checkRoots(image.get());
  if (exists("labeled.pgm")) {
    imImage *labeled = nullptr;
    imReadImage("labeled.pgm", &labeled);
    const imImagePtr owner(labeled);
    check(labeled->npixels == image->npixels, "the labels have another size");
  }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
  std::filesystem::current_path(folder().path(""));
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  const seedforest::ThrowingErrors throwing;
  std::string_view rest(reinterpret_cast<const char *>(bytes), size);
  const std::vector<std::string> words = wordsOf(takePart(rest, "\n"));
  const std::string_view image = takePart(rest, "\n--\n");
  if (!isAdmitted(words, image))
    return 0;
  folder().write("image", image);
  folder().write("a", takePart(rest, "\n--\n"));
  folder().write("b", rest);
  for (const char *output : {"out", "labeled.pgm"})
    std::filesystem::remove(folder().path(output));
  run(words);
  for (const std::string &name : folder().names())
    check(name == "image" || name == "a" || name == "b" || name == "out" || name == "labeled.pgm",
          "a run has left another file");
  return 0;
}
