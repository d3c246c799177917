// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/peers/opencv.h"
#include "bench/scratch.h"

#include "image/imIO.h"
#include "image/imNeighborhood.h"

#include <cstdlib>

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

namespace bench {

namespace {

struct Work {
  cv::Mat in;
  cv::Mat out;
};

// Values 0 to 1, the bands side by side.
template <int code>
Job conversion(Scene scene) {
  const auto work = std::make_shared<Work>();
  const imImagePtr rgb = drawColour(scene);
  work->in.create(scene.side, scene.side, CV_32FC3);
  for (int p = 0; p < rgb->npixels; ++p)
    for (int b = 0; b < 3; ++b)
      work->in.ptr<float>()[3 * std::size_t(p) + std::size_t(b)] =
          static_cast<float>(rgb->band[b][p]) / 255;
  return {[work] { cv::cvtColor(work->in, work->out, code); }, [] { return 0.0; }};
}

// The disc of squared radius s as a matrix.
cv::Mat discOf(int s) {
  int *list = nullptr;
  const int n = imNeighborhood(&list, s);
  const int reach = -list[0];
  cv::Mat disc = cv::Mat::zeros(2 * reach + 1, 2 * reach + 1, CV_8U);
  for (int k = 0; k < n; ++k)
    disc.at<unsigned char>(list[2 * k + 1] + reach, list[2 * k] + reach) = 1;
  std::free(list);
  return disc;
}

template <int s, int type>
Job dilation(Scene scene) {
  const auto work = std::make_shared<Work>();
  work->in = matOf(drawGrey(scene).get(), type);
  return {[work, disc = discOf(s)] { cv::dilate(work->in, work->out, disc); },
          [work] { return sumOf(work->out); }};
}

template <int type>
Job openCloseFilter(Scene scene) {
  const auto work = std::make_shared<Work>();
  work->in = matOf(drawGrey(scene).get(), type);
  std::vector<cv::Mat> discs;
  for (int s = 1; s <= 20; ++s)
    discs.push_back(discOf(s));
  return {[work, discs] {
            work->in.copyTo(work->out);
            for (const cv::Mat &disc : discs) {
              cv::morphologyEx(work->out, work->out, cv::MORPH_OPEN, disc);
              cv::morphologyEx(work->out, work->out, cv::MORPH_CLOSE, disc);
            }
          },
          [work] { return sumOf(work->out); }};
}

template <char type>
Job reading(Scene scene) {
  struct Files {
    ScratchFile file;
    cv::Mat image;
  };
  const auto work = std::make_shared<Files>();
  imSaveImage(work->file.path(), drawOfType(type, scene).get());
  return {[work] {
            work->image.release();
            work->image = cv::imread(work->file.path(), cv::IMREAD_UNCHANGED);
          },
          [work] { return sumOf(work->image); }};
}

template <char type>
Job writing(Scene scene) {
  struct Files {
    ScratchFile file{type == imTypeColor ? ".ppm" : ".pgm"};
    cv::Mat image;
  };
  const auto work = std::make_shared<Files>();
  {
    const ScratchFile drawn;
    imSaveImage(drawn.path(), drawOfType(type, scene).get());
    work->image = cv::imread(drawn.path(), cv::IMREAD_UNCHANGED);
  }
  return {[work] {
            cv::imwrite(work->file.path(), work->image,
                        {cv::IMWRITE_PXM_BINARY, type == imTypeAscii ? 0 : 1});
          },
          [work] { return sumOf(cv::imread(work->file.path(), cv::IMREAD_UNCHANGED)); }};
}

} // namespace

std::vector<Peer> openCvImagePeers(const std::string &library) {
  const std::string floats = "cvtColor: float, bands side by side";
  const std::string linear = floats + ", without gamma";
  return {
      {"RGB to Lab", library, linear, false, conversion<cv::COLOR_LRGB2Lab>},
      {"RGB to Luv", library, linear, false, conversion<cv::COLOR_LRGB2Luv>},
      {"RGB to XYZ", library, floats, false, conversion<cv::COLOR_RGB2XYZ>},
      {"RGB to HSV", library, floats, false, conversion<cv::COLOR_RGB2HSV>},
      {"RGB to YCbCr", library, floats, false, conversion<cv::COLOR_RGB2YCrCb>},
      {"dilation s = 2", library, "dilate: float", true, dilation<2, CV_32F>},
      {"dilation s = 2", library, "dilate: 8-bit", true, dilation<2, CV_8U>},
      {"dilation s = 13", library, "dilate: float", true, dilation<13, CV_32F>},
      {"dilation s = 13", library, "dilate: 8-bit", true, dilation<13, CV_8U>},
      {"dilation s = 100", library, "dilate: float", true, dilation<100, CV_32F>},
      {"dilation s = 100", library, "dilate: 8-bit", true, dilation<100, CV_8U>},
      {"open-close filter", library, "morphologyEx: float", true, openCloseFilter<CV_32F>},
      {"open-close filter", library, "morphologyEx: 8-bit", true, openCloseFilter<CV_8U>},
      {"read P5", library, "imread: 8-bit", true, reading<imTypeGrey>},
      {"read P6", library, "imread: 8-bit", true, reading<imTypeColor>},
      {"read P2", library, "imread: 8-bit", true, reading<imTypeAscii>},
      {"write P5", library, "imwrite: 8-bit", true, writing<imTypeGrey>},
      {"write P6", library, "imwrite: 8-bit", true, writing<imTypeColor>},
      {"write P2", library, "imwrite: 8-bit", true, writing<imTypeAscii>},
  };
}

} // namespace bench
