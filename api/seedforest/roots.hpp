// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Roots: seed pixels, each with a label and a starting cost, and the text files that hold them.
#pragma once

#include "ift/core/ifRoots.h"
#include "seedforest/image.hpp"

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

#pragma GCC visibility push(default)

namespace seedforest {

/// A seed: the index of its pixel, its label, and the cost at which its paths start.
struct Root {
  int pixel;
  int label;
  int value = 0;
  bool operator==(const Root &) const = default;
};

/// A sequence of roots, movable, and copied only by copy(). Roots of equal cost are served in its
/// order. A sequence that was moved from is empty.
///
/// A root's value is the cost at which its paths start: 0 for most roots, the image's value for
/// those of regional extrema. watershed() does not read it; forest() and other functions that take
/// a path cost do, so set it with startAt() before.
class Roots {
public:
  Roots() = default;
  Roots(std::initializer_list<Root> roots) : Roots(std::span(roots.begin(), roots.size())) {}
  explicit Roots(std::span<const Root> roots);

  /// Takes over a record of the library.
  explicit Roots(ifRootsPtr roots) noexcept;

  Roots(Roots &&other) noexcept;
  Roots &operator=(Roots &&other) noexcept;
  ~Roots();
  Roots copy() const;

  std::size_t size() const { return static_cast<std::size_t>(record_.n); }
  bool empty() const { return record_.n == 0; }
  Root operator[](std::size_t i) const {
    assert(i < size());
    return {record_.pixel[i], record_.label[i], record_.value[i]};
  }
  void push_back(const Root &root);

  std::span<const int> pixels() const { return {record_.pixel, size()}; }
  std::span<int> labels() { return {record_.label, size()}; }
  std::span<const int> labels() const { return {record_.label, size()}; }
  std::span<int> values() { return {record_.value, size()}; }
  std::span<const int> values() const { return {record_.value, size()}; }

  /// Sets all values to one cost, or each to the image's value (band 0) at the root's pixel.
  /// Throws Error: a root outside the image.
  Roots &startAt(int cost);
  Roots &startAt(const Image &image);

  /// The roots whose values are lo .. hi, bounds included.
  Roots within(int lo, int hi) const;

  /// The record, for the library's operations.
  const ifRoots *get() const { return &record_; }

  class Iterator {
  public:
    using value_type = Root;
    using difference_type = std::ptrdiff_t;
    Iterator() = default;
    Iterator(const Roots *roots, std::size_t i) : roots_(roots), i_(i) {}
    Root operator*() const { return (*roots_)[i_]; }
    Iterator &operator++() { return ++i_, *this; }
    Iterator operator++(int) { return {roots_, i_++}; }
    bool operator==(const Iterator &) const = default;

  private:
    const Roots *roots_ = nullptr;
    std::size_t i_ = 0;
  };
  Iterator begin() const { return {this, 0}; }
  Iterator end() const { return {this, size()}; }
  bool operator==(const Roots &other) const;

private:
  void grow();

  ifRoots record_ = {};
  int capacity_ = 0;
};

/// The roots in a file, or in its text; the image gives the width. Values are 0. See ifReadRoots.
/// Throws FileError: a file that cannot be read, or that does not start with a valid count.
Roots readRoots(const std::string &path, const Image &image);
Roots decodeRoots(std::string_view text, const Image &image);

/// Writes a roots file, or returns its text: the count, then x, y and label of each root. Values
/// are not stored.
/// Throws FileError: the file cannot be written.
void writeRoots(const Roots &roots, const Image &image, const std::string &path);
std::string encodeRoots(const Roots &roots, const Image &image);

/// A root for each pixel above 0 of a label image, in raster order, value 0.
Roots rootsOf(const Image &labels);

/// A new image of the given one's size: the labels of roots at their pixels (of several roots at
/// one pixel, the last one's), 0 elsewhere.
/// Throws Error: a root outside the image.
Image paintRoots(const Image &image, const Roots &roots);

} // namespace seedforest

#pragma GCC visibility pop
