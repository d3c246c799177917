// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The runs of object pixels of an image, row by row, grouped into 8-connected components: the
// run-based form of component labelling (Rosenfeld and Pfaltz, "Sequential operations in digital
// picture processing", 1966, on runs), with a union-find.
#pragma once

#include "base/buffer.h"
#include "base/findRoot.h"

#include <cstddef>

namespace seedforest::detail {

/// Runs are numbered from 0 in raster order. The arrays have room for a run at every second pixel;
/// the part that is not used takes up no memory.
class Runs {
public:
  Runs(int ncols, int nrows);

  /// The next row's object pixels: 1 for each that is one, else 0.
  unsigned char *objects() { return object_.get(); }

  /// Appends the runs of object pixels and joins them with the runs of the row above that they
  /// touch.
  void addRow();

  /// Appends an empty run that touches no other: a component to join() others with.
  void addEmptyRun();

  /// Joins run i's component with that of an earlier run.
  void join(int i, int earlier) { link_[leader(i)] = leader(earlier); }

  /// The first run of run i's component; compresses the path to it.
  int leader(int i) const {
    return findRoot(
        i, [this](int k) { return link_[k]; }, [this](int k, int first) { link_[k] = first; });
  }

  int count() const { return count_; }
  /// Run i holds the pixels from start(i) to before end(i).
  int start(int i) const { return edge_[2 * static_cast<std::size_t>(i)]; }
  int end(int i) const { return edge_[2 * static_cast<std::size_t>(i) + 1]; }

  /// The union-find itself: run i is linked to an earlier run of its component, and the component's
  /// first run, the leader, to itself.
  int *links() const { return link_.get(); }

private:
  int findEdges() const;
  void joinRows(int count);

  int ncols_;
  int firstPixel_ = 0; // of the next row
  int above_ = 0;      // first run of the row above
  int count_ = 0;
  Array<unsigned char> object_; // of the next row, filled up to whole words with zeros
  Array<int> edge_;             // run i begins at pixel edge_[2i] and ends before edge_[2i + 1]
  Array<int> link_;
};

} // namespace seedforest::detail
