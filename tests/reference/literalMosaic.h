// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The region adjacency graph as one would write it down.
#pragma once

#include "graphs.h"
#include "image/detail/neighborWalk.h"
#include "image/imNeighborhood.h"

/// An insertion for each pair of neighbours that differ.
inline Lists literalMosaic(const imImage *labels) {
  const ifGraphPtr graph(createGraph(labels, 0));
  const seedforest::detail::NeighborWalk neighbors(labels, imNeighborhood8forward);
  for (int p = 0; p < labels->npixels; ++p)
    neighbors.each(p, [&](int q, int) {
      if (labels->band[0][p] != labels->band[0][q])
        insertEdge(graph.get(), labels->band[0][p], labels->band[0][q], 0);
    });
  return listsOf(graph.get());
}
