// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "ift/core/ifRoots.h"

#include "base/arith.h"
#include "base/buffer.h"
#include "base/inputFile.h"
#include "base/outputFile.h"
#include "base/report.h"
#include "base/require.h"
#include "base/scan.h"
#include "base/writer.h"
#include "ift/core/detail/rootsTools.h"
#include "image/detail/imageTools.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace seedforest::detail;

namespace {

void saveRoots(const char *operation, const char *path, const imImage *image, int n,
               const int *pixel, const int *label) {
  OutputFile file(path);
  if (!file.isOpen())
    fatal(About::file, "Could not open file %s for writing\n", path);
  putRoots(file.writer(), image, n, pixel, label);
  if (!file.close())
    fatal(About::file, "%s: could not write all of %s\n", operation, path);
}

// The end of a root's line: " y label\n". It is kept for the next root, which often has the same: a
// whole regMax run on a constant image of 2048² pixels takes 22.6 in place of 28 ns a pixel.
class LineEnd {
public:
  std::string_view of(int y, int label) {
    if (y != y_ || label != label_ || size_ == 0)
      write(y, label);
    return {text_.data(), size_};
  }

private:
  void write(int y, int label) {
    char *end = text_.data() + text_.size() - 1;
    char *at = text_.data();
    *at++ = ' ';
    at = std::to_chars(at, end, y).ptr;
    *at++ = ' ';
    at = std::to_chars(at, end, label).ptr;
    *at++ = '\n';
    y_ = y;
    label_ = label;
    size_ = static_cast<std::size_t>(at - text_.data());
  }

  int y_ = 0;
  int label_ = 0;
  std::size_t size_ = 0;
  std::array<char, 32> text_; // two numbers of at most 11 characters
};

template <class Roots>
void requireRoots(const char *operation, const imImage *image, const Roots *roots) {
  requireBands(operation, image, 0);
  requireGiven(operation, "roots record", roots);
}

void requireReadable(const Text &text, const char *path) {
  if (text.hasFailed())
    fatal(About::file, "ifReadRoots: error reading %s\n", path);
}

// Scans x, y and label for each seed, with a debug line for each.
void scanSeeds(Text &text, const imImage *image, const ifRoots &roots) {
  Writer out(putProgress);
  int line[3] = {0, 0, 0}; // where a scan fails, the seed takes the values of the one before
  for (int i = 0; i < roots.n; ++i) {
    scanInts(text, line, 3);
    roots.pixel[i] = wrap(line[0] + std::int64_t{line[1]} * image->ncols);
    roots.label[i] = line[2];
    out.text("read: ");
    out.number(roots.pixel[i]);
    out.text(" ");
    out.number(roots.label[i]);
    out.text("\n");
  }
  out.flush();
}

// The roots whose count has been scanned from a text of that size.
ifRootsPtr scanRoots(int n, std::size_t size, Text &lines, const char *path, const imImage *image) {
  constexpr std::size_t countBeyondSize = 65536; // lines may be missing, but not billions of them
  if (n <= 0 || static_cast<std::size_t>(n) > countBeyondSize + size) {
    fail(About::file, "invalid number of roots in file %s\n", path);
    return nullptr;
  }
  ifRootsPtr roots = createRoots(n);
  scanSeeds(lines, image, *roots);
  return roots;
}

} // namespace

void ifAllocateRoots(ifRoots *roots, int n) {
  requireGiven("ifAllocateRoots", "roots record", roots);
  if (n < 0)
    fatal("ifAllocateRoots: %d is no number of roots\n", n);
  const auto count = static_cast<std::size_t>(n);
  Array<int> pixel = makeZeroedArray<int>(count);
  Array<int> label = makeZeroedArray<int>(count);
  Array<int> value = makeZeroedArray<int>(count);
  *roots = {pixel.release(), label.release(), value.release(), n};
}

void ifReleaseRoots(ifRoots *roots) {
  if (roots == nullptr)
    return;
  std::free(roots->pixel);
  std::free(roots->label);
  std::free(roots->value);
  *roots = {};
}

void ifReleaseRoots2(ifRoots2 *roots) {
  if (roots == nullptr)
    return;
  std::free(roots->pixel);
  std::free(roots->label);
  std::free(roots->value);
  std::free(roots->extra);
  *roots = {};
}

void ifSaveRoots(const char *path, const imImage *image, const ifRoots *roots) {
  requireGiven("ifSaveRoots", "path", path);
  requireRoots("ifSaveRoots", image, roots);
  saveRoots("ifSaveRoots", path, image, roots->n, roots->pixel, roots->label);
}

void ifSaveRoots2(const char *path, const imImage *image, const ifRoots2 *roots) {
  requireGiven("ifSaveRoots2", "path", path);
  requireRoots("ifSaveRoots2", image, roots);
  saveRoots("ifSaveRoots2", path, image, roots->n, roots->pixel, roots->label);
}

ifRoots *ifReadRoots(const char *path, const imImage *image) {
  requireGiven("ifReadRoots", "path", path);
  requireBands("ifReadRoots", image, 0);
  InputFile file(path);
  if (!file.isOpen())
    fatal(About::file, "Could not open file %s for reading\n", path);
  int n = 0;
  scanInt(file, n);
  const Bytes lines = n > 0 ? takeBytes(file, SIZE_MAX) : Bytes();
  requireReadable(file, path);
  Text text(lines.view());
  return scanRoots(n, file.size(), text, path, image).release();
}

imImage *ifVisualizeRoots(const imImage *image, const ifRoots *roots) {
  requireRoots("ifVisualizeRoots", image, roots);
  for (int i = 0; i < roots->n; ++i)
    requirePixel("ifVisualizeRoots", image, roots->pixel[i]);
  imImage *labels = imCreateImage(1, imTypeAscii, image->ncols, image->nrows);
  for (int i = 0; labels != nullptr && i < roots->n; ++i)
    labels->band[0][roots->pixel[i]] = roots->label[i];
  return labels;
}

void ifRootsDeleter::operator()(ifRoots *roots) const {
  ifReleaseRoots(roots);
  std::free(roots);
}

namespace seedforest::detail {

ifRootsPtr createRoots(std::int64_t n) {
  if (n > maxInt)
    outOfMemory();
  ifRootsPtr roots(static_cast<ifRoots *>(allocateZeroed(1, sizeof(ifRoots))));
  ifAllocateRoots(roots.get(), static_cast<int>(n));
  return roots;
}

void putRoots(Writer &writer, const imImage *image, int n, const int *pixel, const int *label) {
  writer.number(n);
  writer.text("\n");
  LineEnd end;
  for (int i = 0; i < n; ++i) {
    const int y = pixel[i] / image->ncols;
    writer.number(pixel[i] - y * image->ncols);
    writer.text(end.of(y, label[i]));
  }
}

ifRootsPtr parseRoots(std::string_view bytes, const char *path, const imImage *image) {
  Text text(bytes);
  int n = 0;
  scanInt(text, n);
  return scanRoots(n, bytes.size(), text, path, image);
}

void requireRoots(const char *operation, const ifRoots *roots, const imImage *image) {
  requireGiven(operation, "roots record", roots);
  for (int i = 0; i < roots->n; ++i)
    requirePixel(operation, image, roots->pixel[i]);
}

} // namespace seedforest::detail
