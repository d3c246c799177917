// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "seedforest/roots.hpp"

#include "base/arith.h"
#include "base/report.h"
#include "detail/memoryFile.h"
#include "detail/quietly.h"
#include "ift/core/detail/rootsTools.h"
#include "ift/seeds/ifFrameSeeds.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace seedforest {

using namespace detail;

Roots::Roots(std::span<const Root> roots) {
  *this = quietly([&] {
    ifRootsPtr made = createRoots(std::ssize(roots));
    for (std::size_t i = 0; i < roots.size(); ++i) {
      made->pixel[i] = roots[i].pixel;
      made->label[i] = roots[i].label;
      made->value[i] = roots[i].value;
    }
    return Roots(std::move(made));
  });
}

Roots::Roots(ifRootsPtr roots) noexcept {
  if (roots == nullptr)
    return;
  record_ = std::exchange(*roots, {});
  capacity_ = record_.n;
}

Roots::Roots(Roots &&other) noexcept
    : record_(std::exchange(other.record_, {})), capacity_(std::exchange(other.capacity_, 0)) {}

Roots &Roots::operator=(Roots &&other) noexcept {
  Roots taken(std::move(other));
  std::swap(record_, taken.record_);
  std::swap(capacity_, taken.capacity_);
  return *this;
}

Roots::~Roots() {
  ifReleaseRoots(&record_);
}

Roots Roots::copy() const {
  return within(minInt, maxInt);
}

void Roots::push_back(const Root &root) {
  if (record_.n == capacity_)
    grow();
  const int at = record_.n++;
  record_.pixel[at] = root.pixel;
  record_.label[at] = root.label;
  record_.value[at] = root.value;
}

void Roots::grow() {
  quietly([this] {
    if (capacity_ == maxInt)
      outOfMemory();
    Roots grown(createRoots(saturate(2 * std::max<std::int64_t>(capacity_, 8))));
    for (const auto field : {&ifRoots::pixel, &ifRoots::label, &ifRoots::value})
      std::copy_n(record_.*field, record_.n, grown.record_.*field);
    grown.record_.n = record_.n;
    *this = std::move(grown);
  });
}

Roots &Roots::startAt(int cost) {
  std::ranges::fill(values(), cost);
  return *this;
}

Roots &Roots::startAt(const Image &image) {
  quietly([&] { takeValues(image, *this, record_.value); });
  return *this;
}

Roots Roots::within(int lo, int hi) const {
  return quietly([&] {
    Roots kept(createRoots(record_.n));
    kept.record_.n = 0;
    for (const Root &root : *this)
      if (root.value >= lo && root.value <= hi)
        kept.push_back(root);
    return kept;
  });
}

bool Roots::operator==(const Roots &other) const {
  return std::ranges::equal(pixels(), other.pixels()) &&
         std::ranges::equal(labels(), other.labels()) &&
         std::ranges::equal(values(), other.values());
}

Roots readRoots(const std::string &path, const Image &image) {
  return quietly([&] { return Roots(ifRootsPtr(ifReadRoots(path.c_str(), recordOf(image)))); });
}

Roots decodeRoots(std::string_view text, const Image &image) {
  return quietly([&] { return Roots(parseRoots(text, "in memory", recordOf(image))); });
}

void writeRoots(const Roots &roots, const Image &image, const std::string &path) {
  quietly([&] { ifSaveRoots(path.c_str(), recordOf(image), roots.get()); });
}

std::string encodeRoots(const Roots &roots, const Image &image) {
  return quietly([&] {
    const imImage *record = recordOf(image);
    return textOf([&](Writer &writer) {
      const ifRoots *list = roots.get();
      putRoots(writer, record, list->n, list->pixel, list->label);
    });
  });
}

Roots rootsOf(const Image &labels) {
  return quietly([&] { return Roots(ifRootsPtr(ifLabelsToRoots(recordOf(labels)))); });
}

Image paintRoots(const Image &image, const Roots &roots) {
  return quietly([&] { return made(ifVisualizeRoots(recordOf(image), roots.get())); });
}

} // namespace seedforest
