// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The readers of images and of roots: the input is the file, whole and in pieces.

#include "api/detail/memoryFile.h"
#include "harness.h"
#include "ift/core/detail/rootsTools.h"
#include "image/detail/parseImage.h"
#include "image/detail/writeImage.h"
#include "plainImage.h"

using namespace seedforest::detail;

namespace {

// A P2 file may announce any number of pixels and hold none, which costs memory by design.
constexpr int mostPixels = 1 << 14;

imImagePtr parse(Text &&text) {
  imImagePtr image;
  succeeds([&] { image = parseImage(text, "input"); });
  return image;
}

void checkSamples(const imImage *image, const PlainImage &plain) {
  check(image->type == (plain.kind == '2'   ? imTypeAscii
                        : plain.kind == '5' ? imTypeGrey
                                            : imTypeColor) &&
            image->ncols == plain.ncols && image->nrows == plain.nrows &&
            image->maxValue == plain.maxValue,
        "the header is another one");
  const std::size_t nbands = image->nbands;
  for (std::size_t i = 0; i < plain.samples.size(); ++i)
    check(image->band[i % nbands][i / nbands] == plain.samples[i], "a sample is another one");
}

void readImage(std::string_view file) {
  const PlainImage plain(file, mostPixels);
  if (plain.accepted && plain.npixels() > mostPixels)
    return;
  const imImagePtr image = parse(Text(file));
  const imImagePtr inPieces = parse(Pieces(file, file.size() % 13 + 1));
  check((image != nullptr) == plain.accepted, "acceptance differs from the plain reader's");
  check((inPieces != nullptr) == plain.accepted, "acceptance differs in pieces");
  if (image == nullptr)
    return;
  checkSamples(image.get(), plain);
  checkSameImage(image.get(), inPieces.get(), "the image differs in pieces");
  const std::string written = textOf([&](Writer &writer) { writeImage(writer, image.get()); });
  const imImagePtr again = parse(Text(written));
  check(again != nullptr, "what was written is refused");
  if (image->type != imTypeAscii)
    image->maxValue = 255; // as binary files declare
  checkSameImage(image.get(), again.get(), "what was written is another image");
}

ifRootsPtr parseRootsOf(std::string_view file, const imImage *image) {
  ifRootsPtr roots;
  succeeds([&] { roots = parseRoots(file, "input", image); });
  return roots;
}

void readRoots(std::string_view file) {
  constexpr int mostRoots = 2000; // files may give fewer than they announce, but not many fewer
  Text text(file);
  int n = 0;
  scanInt(text, n);
  if (n > mostRoots && n <= 65536 + static_cast<std::int64_t>(file.size()))
    return;
  const imImagePtr image = blank(static_cast<int>(file.size() % 40 + 1), 5);
  const ifRootsPtr roots = parseRootsOf(file, image.get());
  check((roots != nullptr) == (n > 0 && n <= mostRoots), "acceptance differs from the count");
  if (roots == nullptr)
    return;
  const std::string written = textOf(
      [&](Writer &writer) { putRoots(writer, image.get(), roots->n, roots->pixel, roots->label); });
  const ifRootsPtr again = parseRootsOf(written, image.get());
  check(again != nullptr && listOf(roots.get()) == listOf(again.get()),
        "what was written are other roots");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  const seedforest::ThrowingErrors throwing;
  const std::string_view file(reinterpret_cast<const char *>(bytes), size);
  readImage(file);
  readRoots(file);
  return 0;
}
