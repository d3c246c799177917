// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// No library: the loops that one would write down first.

#include "bench/rows.h"

#include "ift/core/detail/forestTransforms.h"
#include "image/detail/neighborWalk.h"
#include "tests/reference/literalTransform.h"
#include "tests/reference/plainMorph.h"

namespace bench {

namespace {

using namespace seedforest::detail;

Job watershed(Scene scene) {
  struct Work {
    imImagePtr image;
    ifRootsPtr seeds = gridSeeds(image.get());
    imImagePtr forest{imCreateImage(3, imTypeWork, image->ncols, image->nrows)};
  };
  const auto work = std::make_shared<Work>(Work{drawGrey(scene)});
  return {[work] {
            const int *value = work->image->band[0];
            const auto weigh = [value](int, int q) { return value[q]; };
            const auto extend = [](int cost, int weight) { return std::max(cost, weight); };
            int **band = work->forest->band;
            std::fill_n(band[1], work->image->npixels, ifInfiniteCost);
            literalTransform(
                ForestTransform<Minimising, AdjacencyArcs<decltype(weigh)>, decltype(extend)>{
                    {band[0], band[1], band[2], 255},
                    {NeighborWalk(work->image.get(), imNeighborhood8), weigh},
                    extend},
                256, work->image->npixels, *work->seeds);
          },
          [work] { return sumOf(work->forest.get(), 1); }};
}

template <int s>
Job dilation(Scene scene) {
  struct Work {
    imImagePtr in;
    imImagePtr out{imCopyImage(in.get())};
  };
  const auto work = std::make_shared<Work>(Work{drawGrey(scene)});
  return {[work] { plainDilate(work->in.get(), work->out.get(), s); },
          [work] { return sumOf(work->out.get()); }};
}

} // namespace

std::vector<Peer> plainPeers() {
  const std::string none = "plain loops";
  return {
      {"watershed", none, "a queue of linked lists", true, watershed},
      {"dilation s = 2", none, "each pixel of each disc", true, dilation<2>},
      {"dilation s = 13", none, "each pixel of each disc", true, dilation<13>},
  };
}

} // namespace bench
