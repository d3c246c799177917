// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Compiled as C++17, the newest standard that the library's headers support.

#include "bench/peerVigra.h"

#include <iostream>

#include <vigra/multi_array.hxx>
#include <vigra/seededregiongrowing.hxx>
#include <vigra/vector_distance.hxx>
#include <vigra/watersheds.hxx>

struct VigraWatershed::Images {
  vigra::MultiArray<2, unsigned char> image;
  vigra::MultiArray<2, unsigned> markers;
  vigra::MultiArray<2, unsigned> labels;
};

VigraWatershed::VigraWatershed(int ncols, int nrows) : images_(new Images) {
  const vigra::Shape2 shape(ncols, nrows);
  images_->image.reshape(shape);
  images_->markers.reshape(shape);
  images_->labels.reshape(shape);
}

VigraWatershed::~VigraWatershed() {
  delete images_;
}

unsigned char *VigraWatershed::image() {
  return images_->image.data();
}
unsigned *VigraWatershed::markers() {
  return images_->markers.data();
}

void VigraWatershed::run() {
  images_->labels = images_->markers;
  vigra::watershedsRegionGrowing(images_->image, images_->labels, vigra::EightNeighborCode(),
                                 vigra::WatershedOptions().turboAlgorithm(256));
}

struct VigraDistance::Images {
  vigra::MultiArray<2, unsigned char> image;
  vigra::MultiArray<2, vigra::Shape2> vectors;
};

VigraDistance::VigraDistance(int ncols, int nrows) : images_(new Images) {
  const vigra::Shape2 shape(ncols, nrows);
  images_->image.reshape(shape);
  images_->vectors.reshape(shape);
}

VigraDistance::~VigraDistance() {
  delete images_;
}

unsigned char *VigraDistance::image() {
  return images_->image.data();
}

void VigraDistance::run() {
  vigra::separableVectorDistance(images_->image, images_->vectors, true);
}
