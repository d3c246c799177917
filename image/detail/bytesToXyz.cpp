// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The one place where multiply-adds may be contracted: they take a third off the time.

#include "image/detail/colorBlocks.h"

#include "base/multiversion.h"

namespace seedforest::detail::color {

// Of the 2^24 colours, none has a component within 2.5e-7 of a whole number, but for those where it is
// one, to which the formula of double precision does not come too short. Errors are below 1e-11. So
// with a nudge between the two any way of adding up gives the same integers.
SEEDFOREST_MULTIVERSION void bytesToXyz(const Bands &rgb, Block &xyz, int n) {
  applyWith<Small>(rgb, xyz, n, [](Small, double r, double g, double b, int) SEEDFOREST_INLINE {
    constexpr double scale = one / 255;
    constexpr double nudge = 1e-7;
    const auto sum = [=](double ofR, double ofG, double ofB) SEEDFOREST_INLINE {
      return static_cast<int>(scale * ofR * r + (scale * ofG * g + (scale * ofB * b + nudge)));
    };
    return Pixel{{sum(0.412453, 0.35758, 0.180423), sum(0.212671, 0.71516, 0.072169),
                  sum(0.019334, 0.119193, 0.950227)}};
  });
}

} // namespace seedforest::detail::color
