// What the functions of the interface are wrapped in, and what they share.
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

/// The thread's WithProgress as the library takes it, or none.
StepFn currentStep();

/// Does some work on the libraries: errors are thrown, what they tell is dropped, and progress goes
/// to whom the thread has asked to be told.
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

/// The record of an image. Throws Error where there is none.
const imImage *recordOf(const Image &image);

/// A record of the same pixels, for operations that change fields of their input.
imImage changeable(const Image &image);

/// What an operation returned.
inline Image made(imImage *image) {
  return Image(requireMade(image));
}

/// A new image of another's size; of its bands and type, too.
Image like(const Image &image, int nbands = 1, ImageType type = ImageType::ascii);
Image alike(const Image &image);

/// Stores the values of band 0 at the roots. Throws Error where one lies outside the image.
void takeValues(const Image &image, const Roots &roots, int *values);

/// Hands out an adjacency as an imNeighborhoodFn does.
int handOut(const Adjacency &adjacency, int **list);

/// use(a function that hands out the adjacency).
template <class Use>
decltype(auto) withNeighborhood(const Adjacency &adjacency, Use use) {
  const auto listOf = [&adjacency](int **list) { return handOut(adjacency, list); };
  return withFunction<imNeighborhoodFn>(listOf, use);
}

} // namespace seedforest::detail
