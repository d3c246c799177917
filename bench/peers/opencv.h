// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Shared by the two parts of the comparison with OpenCV.
#pragma once

#include "bench/rows.h"

#include <opencv2/core.hpp>

namespace bench {

/// Colour spaces, morphology and files.
std::vector<Peer> openCvImagePeers(const std::string &library);

inline cv::Mat matOf(const imImage *image, int type = CV_8U) {
  cv::Mat result;
  cv::Mat(image->nrows, image->ncols, CV_32S, image->band[0]).convertTo(result, type);
  return result;
}

inline double sumOf(const cv::Mat &image) {
  const cv::Scalar sums = cv::sum(image);
  return sums[0] + sums[1] + sums[2] + sums[3];
}

} // namespace bench
