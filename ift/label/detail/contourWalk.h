// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The walk along contours, as ifContourFollow() describes it, in pictures of any form.
#pragma once

#include "base/buffer.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace seedforest::detail {

/// A step of a contour, and the positions beside the pixel that it leads to, relative to that pixel,
/// at which shape and background are required.
struct ContourStep {
  int dx, dy;
  int shapeX, shapeY;
  int groundX, groundY;
};

inline constexpr std::array<ContourStep, 8> contourSteps = {{
    {0, -1, -1, 0, 1, 0}, // above
    {0, 1, 1, 0, -1, 0},  // below
    {1, 0, 0, -1, 0, 1},  // right
    {-1, 0, 0, 1, 0, -1}, // left
    {1, -1, -1, 0, 0, 1}, // above right
    {1, 1, 0, -1, -1, 0}, // below right
    {-1, -1, 0, 1, 1, 0}, // above left
    {-1, 1, 1, 0, 0, -1}, // below left
}};

/// A picture tells of its pixels p whether isWaiting(p), to be walked to, isShape(p) and isGround(p).
/// Outside the image is background. Steps are tried in the order of 8 displacements, pairs (dx, dy).
template <class Picture>
class ContourWalk {
public:
  ContourWalk(const Picture &picture, int ncols, int nrows, const int *displacements)
      : picture_(picture), ncols_(ncols), nrows_(nrows), displacement_(displacements) {
    // In images of one or two columns several steps have the same offset: the first in the table
    // decides.
    for (std::size_t k = 0; k < rules_.size(); ++k)
      rules_[k] = std::find_if(contourSteps.begin(), contourSteps.end(), [&](const auto &step) {
        return offset(step.dx, step.dy) == offset(displacements[2 * k], displacements[2 * k + 1]);
      });
  }

  /// Calls visit(q) for p and, as each is reached, for every pixel of the contour; it must no longer
  /// wait then.
  template <class Visit>
  void from(int p, Visit visit) {
    const auto enter = [&](int x, int y) {
      visit(x + y * ncols_);
      path_.push({x, y, 0});
    };
    enter(p % ncols_, p / ncols_);
    while (!path_.isEmpty()) {
      Place &place = path_.top();
      if (place.tried == rules_.size()) {
        path_.pop();
        continue;
      }
      const std::size_t k = place.tried++;
      const std::int64_t x = std::int64_t{place.x} + displacement_[2 * k];
      const std::int64_t y = std::int64_t{place.y} + displacement_[2 * k + 1];
      if (isInside(x, y) && picture_.isWaiting(pixel(x, y)) && allows(rules_[k], x, y))
        enter(static_cast<int>(x), static_cast<int>(y));
    }
  }

private:
  struct Place {
    int x, y;
    unsigned tried; // displacements
  };
  using Rule = std::array<ContourStep, 8>::const_iterator;

  std::int64_t offset(int dx, int dy) const { return dx + std::int64_t{dy} * ncols_; }
  bool isInside(std::int64_t x, std::int64_t y) const {
    return x >= 0 && x < ncols_ && y >= 0 && y < nrows_;
  }
  int pixel(std::int64_t x, std::int64_t y) const { return static_cast<int>(x + y * ncols_); }

  bool allows(Rule rule, std::int64_t x, std::int64_t y) const {
    if (rule == contourSteps.end())
      return false;
    const std::int64_t shapeX = x + rule->shapeX;
    const std::int64_t shapeY = y + rule->shapeY;
    if (!isInside(shapeX, shapeY) || !picture_.isShape(pixel(shapeX, shapeY)))
      return false;
    const std::int64_t groundX = x + rule->groundX;
    const std::int64_t groundY = y + rule->groundY;
    return !isInside(groundX, groundY) || picture_.isGround(pixel(groundX, groundY));
  }

  const Picture &picture_;
  int ncols_;
  int nrows_;
  const int *displacement_;
  std::array<Rule, 8> rules_; // by displacement
  Stack<Place> path_;         // from the contour's first pixel to the one being followed
};

} // namespace seedforest::detail
