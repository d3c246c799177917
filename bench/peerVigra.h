// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// VIGRA's watershed and distance transform, for comparison; built only where the library is
// installed.
#pragma once

/// An 8-connected watershed of an 8-bit image from markers, with a queue of 256 buckets. The object
/// owns the images.
class VigraWatershed {
public:
  VigraWatershed(int ncols, int nrows);
  ~VigraWatershed();
  VigraWatershed(const VigraWatershed &) = delete;
  VigraWatershed &operator=(const VigraWatershed &) = delete;

  unsigned char *image();
  unsigned *markers();
  void run();

private:
  struct Images;
  Images *images_;
};

/// The vector from each pixel to the nearest object pixel (value not 0) of an 8-bit image.
class VigraDistance {
public:
  VigraDistance(int ncols, int nrows);
  ~VigraDistance();
  VigraDistance(const VigraDistance &) = delete;
  VigraDistance &operator=(const VigraDistance &) = delete;

  unsigned char *image();
  void run();

private:
  struct Images;
  Images *images_;
};
