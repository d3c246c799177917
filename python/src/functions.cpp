// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "functions.h"

namespace seedforest::python {

const Names<ifPathCostFn> &costNames() {
  static const Names<ifPathCostFn> names = {{"max", pathCost::max},
                                            {"min", pathCost::min},
                                            {"sum", pathCost::sum},
                                            {"max_local", pathCost::maxLocal},
                                            {"min_local", pathCost::minLocal}};
  return names;
}

PathCost::PathCost(const py::object &given) {
  if (isAddress(given))
    function = atAddress<ifPathCostFn>(given);
  else if (PyCallable_Check(given.ptr()) != 0)
    callable = given;
  else
    function = named(costNames(), given, "cost");
}

ArcWeight::ArcWeight(const py::object &given, const Image &image) {
  static const Names<ifArcWeightFn> names = {{"watershed", arcWeight::watershed},
                                             {"euclidean", arcWeight::euclidean},
                                             {"largest_difference", arcWeight::largestDifference},
                                             {"chamfer", arcWeight::chamfer}};
  if (isAddress(given)) {
    native_ = atAddress<int (*)(const int *, int, int)>(given);
    flatten(image);
  } else if (PyCallable_Check(given.ptr()) != 0) {
    callable = given;
  } else {
    function = named(names, given, "weight");
  }
}

// Bands that do not lie one after the other are copied.
void ArcWeight::flatten(const Image &image) {
  pixels_ = image.pixels().data();
  bool isFlat = true;
  for (int b = 1; b < image.nbands(); ++b)
    isFlat = isFlat && image.pixels(b).data() == pixels_ + b * std::ptrdiff_t{image.npixels()};
  if (isFlat)
    return;
  for (int b = 0; b < image.nbands(); ++b)
    flat_.insert(flat_.end(), image.pixels(b).begin(), image.pixels(b).end());
  pixels_ = flat_.data();
}

} // namespace seedforest::python
