// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Rows of colour spaces, morphology and files.

#include "bench/rows.h"
#include "bench/scratch.h"

#include "image/imColor.h"
#include "image/imIO.h"
#include "image/imMorph.h"

namespace bench {

namespace {

double sumOfBands(const imImage *image) {
  double sum = 0;
  for (int b = 0; b < image->nbands; ++b)
    sum += sumOf(image, b);
  return sum;
}

using ConversionFn = void (*)(const imImage *in, imImage *out);

template <ConversionFn convert>
Job conversion(Scene scene) {
  const auto work = std::make_shared<OneToOne>(OneToOne{drawColour(scene), nullptr});
  work->out.reset(imCreateImage(3, imTypeXyz, scene.side, scene.side));
  return {[work] { convert(work->in.get(), work->out.get()); },
          [work] { return sumOfBands(work->out.get()); }};
}

using MorphologyFn = void (*)(const imImage *in, imImage *out, int size);

template <MorphologyFn filter, int size>
Job morphology(Scene scene) {
  const auto work = std::make_shared<OneToOne>(OneToOne{drawGrey(scene), nullptr});
  work->out.reset(imCopyImage(work->in.get()));
  return {[work] { filter(work->in.get(), work->out.get(), size); },
          [work] { return sumOf(work->out.get()); }};
}

template <char type>
Job reading(Scene scene) {
  struct Work {
    ScratchFile file;
    imImagePtr image;
  };
  const auto work = std::make_shared<Work>();
  imSaveImage(work->file.path(), drawOfType(type, scene).get());
  return {[work] {
            work->image.reset(); // its memory serves again
            imImage *image = nullptr;
            imReadImage(work->file.path(), &image);
            work->image.reset(image);
          },
          [work] { return sumOfBands(work->image.get()); }};
}

template <char type>
Job writing(Scene scene) {
  struct Work {
    ScratchFile file;
    imImagePtr image;
  };
  const auto work = std::make_shared<Work>();
  work->image = drawOfType(type, scene);
  return {[work] { imSaveImage(work->file.path(), work->image.get()); },
          [work] {
            imImage *image = nullptr;
            imReadImage(work->file.path(), &image);
            return sumOfBands(imImagePtr(image).get());
          }};
}

} // namespace

std::vector<Row> imageRows() {
  const std::vector<Drawing> natural = {Drawing::micrograph};
  const std::vector<Drawing> both = {Drawing::micrograph, Drawing::noise};
  return {
      {"RGB to Lab", Subject::colour, natural, true, conversion<imRgb2lab>},
      {"RGB to Luv", Subject::colour, natural, false, conversion<imRgb2luv>},
      {"RGB to XYZ", Subject::colour, natural, false, conversion<imRgb2xyz>},
      {"RGB to HSV", Subject::colour, natural, false, conversion<imRgb2hsv>},
      {"RGB to YCbCr", Subject::colour, natural, false, conversion<imRgb2ycbcr>},
      {"dilation s = 2", Subject::grey, natural, false, morphology<imMorphDilate, 2>},
      {"dilation s = 13", Subject::grey, natural, true, morphology<imMorphDilate, 13>},
      {"dilation s = 100", Subject::grey, natural, false, morphology<imMorphDilate, 100>},
      {"open-close filter", Subject::grey, natural, true, morphology<imMorphAsfOC, 20>},
      {"read P5", Subject::grey, natural, false, reading<imTypeGrey>},
      {"read P6", Subject::colour, natural, false, reading<imTypeColor>},
      {"read P2", Subject::grey, both, false, reading<imTypeAscii>},
      {"write P5", Subject::grey, natural, false, writing<imTypeGrey>},
      {"write P6", Subject::colour, natural, false, writing<imTypeColor>},
      {"write P2", Subject::grey, both, false, writing<imTypeAscii>},
  };
}

} // namespace bench
