// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The scope in which the interface's functions run, and helpers that they share.
#pragma once

#include "base/error.h"
#include "image/detail/imageTools.h"
#include "seedforest/adjacency.hpp"
#include "seedforest/detail/through.hpp"
#include "seedforest/image.hpp"
#include "seedforest/roots.hpp"

#include "image/imNeighborhood.h"

#include <new>
#include <stdexcept>

namespace seedforest::detail {

/// The report of the thread's WithProgress as a StepFn, or null.
StepFn currentStep();

/// Runs work() with the libraries' errors thrown, their messages dropped, and progress passed to
/// the thread's WithProgress.
template <class Work>
auto quietly(Work work) {
  const ThrowingErrors throwing(nullptr, currentStep());
  try {
    return work();
  } catch (const std::bad_alloc &) {
    throw OutOfMemory("could not allocate memory!");
  } catch (const std::length_error &) {
    throw OutOfMemory("could not allocate memory!");
  }
}

/// The record of an image. Throws Error where the image holds none.
const imImage *recordOf(const Image &image);

/// A copy of the record, with the same pixels, for operations that change fields of their input.
imImage changeable(const Image &image);

/// Takes over the image that an operation returned; throws Error for null.
inline Image made(imImage *image) {
  return Image(requireMade(image));
}

/// A new image of another's size; alike() also takes its number of bands and type.
Image like(const Image &image, int nbands = 1, ImageType type = ImageType::ascii);
Image alike(const Image &image);

/// Stores the values of band 0 at the roots. Throws Error where one lies outside the image.
void takeValues(const Image &image, const Roots &roots, int *values);

/// Stores a new list of displacements and returns their number, as an imNeighborhoodFn does.
int handOut(const Adjacency &adjacency, int **list);

/// Calls use(function) with an imNeighborhoodFn for the adjacency.
template <class Use>
decltype(auto) withNeighborhood(const Adjacency &adjacency, Use use) {
  const auto listOf = [&adjacency](int **list) { return handOut(adjacency, list); };
  return withFunction<imNeighborhoodFn>(listOf, use);
}

} // namespace seedforest::detail
