// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "detail/quietly.h"

#include "base/buffer.h"
#include "base/report.h"
#include "seedforest/progress.hpp"

#include <algorithm>

namespace seedforest {

namespace {

thread_local const WithProgress *progressScope = nullptr;

} // namespace

WithProgress::WithProgress(Report report) : report_(std::move(report)), outer_(progressScope) {
  progressScope = this;
}

WithProgress::~WithProgress() {
  progressScope = outer_;
}

const WithProgress::Report *WithProgress::current() {
  const bool wanted = progressScope != nullptr && progressScope->report_ != nullptr;
  return wanted ? &progressScope->report_ : nullptr;
}

namespace detail {

StepFn currentStep() {
  const WithProgress::Report *report = WithProgress::current();
  if (report == nullptr)
    return nullptr;
  return [report](std::int64_t done, std::int64_t total) {
    return (*report)(static_cast<double>(done) / static_cast<double>(std::max(total, done)));
  };
}

const imImage *recordOf(const Image &image) {
  if (!image)
    fatal("there is no image: it was moved from, or never made\n");
  return image.get();
}

imImage changeable(const Image &image) {
  return *recordOf(image);
}

Image like(const Image &image, int nbands, ImageType type) {
  return Image(createLike(recordOf(image), nbands, static_cast<char>(type)));
}

Image alike(const Image &image) {
  return like(image, image.nbands(), image.type());
}

void takeValues(const Image &image, const Roots &roots, int *values) {
  const imImage *record = recordOf(image);
  requireBands("the roots' values", record, 1);
  const std::span<const int> pixels = roots.pixels();
  for (const int p : pixels)
    requirePixel("a root", record, p);
  std::ranges::transform(pixels, values, [record](int p) { return record->band[0][p]; });
}

int handOut(const Adjacency &adjacency, int **list) {
  const std::span<const Displacement> from = adjacency.displacements();
  Array<int> copy = makeArray<int>(2 * from.size());
  for (std::size_t k = 0; k < from.size(); ++k) {
    copy[2 * k] = from[k].dx;
    copy[2 * k + 1] = from[k].dy;
  }
  *list = copy.release();
  return static_cast<int>(from.size());
}

} // namespace detail

namespace {

Adjacency listOf(int n, const int *list) {
  std::vector<Displacement> displacements;
  displacements.reserve(static_cast<std::size_t>(n));
  for (const int *end = list + 2 * std::ptrdiff_t{n}; list != end; list += 2)
    displacements.push_back({list[0], list[1]});
  return Adjacency::of(std::move(displacements));
}

// The list of one of the library's adjacency relations.
template <class... Arguments>
Adjacency relation(int (*neighborhood)(int **, Arguments...), Arguments... arguments) {
  return detail::quietly([&] {
    int *list = nullptr;
    const int n = neighborhood(&list, arguments...);
    const detail::Array<int> owner(list);
    return listOf(n, list);
  });
}

} // namespace

Adjacency Adjacency::four() {
  return relation(imNeighborhood4);
}

Adjacency Adjacency::eight() {
  return relation(imNeighborhood8);
}

Adjacency Adjacency::disc(int r2) {
  return relation(imNeighborhood, r2);
}

Adjacency Adjacency::window(int r) {
  return relation(imMorphWindow, r);
}

} // namespace seedforest
