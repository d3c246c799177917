// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// VIGRA. Compiled as C++17, the newest standard that the library's headers support.

#include "bench/rows.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iostream>
#include <numeric>

#include <vigra/config.hxx>
#include <vigra/labelimage.hxx>
#include <vigra/localminmax.hxx>
#include <vigra/multi_array.hxx>
#include <vigra/seededregiongrowing.hxx>
#include <vigra/vector_distance.hxx>
#include <vigra/watersheds.hxx>

namespace bench {

namespace {

template <class T>
using Plane = vigra::MultiArray<2, T>;
using Bytes = Plane<unsigned char>;

Bytes bytesOf(const imImage *image) {
  Bytes bytes(vigra::Shape2(image->ncols, image->nrows));
  std::copy_n(image->band[0], image->npixels, bytes.data());
  return bytes;
}

Job watershed(Scene scene) {
  struct Work {
    Bytes image;
    Plane<unsigned> markers, labels;
  };
  const auto work = std::make_shared<Work>();
  const imImagePtr image = drawGrey(scene);
  const ifRootsPtr seeds = gridSeeds(image.get());
  work->image = bytesOf(image.get());
  work->markers.reshape(work->image.shape());
  work->labels.reshape(work->image.shape());
  for (int i = 0; i < seeds->n; ++i)
    work->markers.data()[seeds->pixel[i]] = static_cast<unsigned>(seeds->label[i]);
  return {[work] {
            work->labels = work->markers;
            vigra::watershedsRegionGrowing(work->image, work->labels, vigra::EightNeighborCode(),
                                           vigra::WatershedOptions().turboAlgorithm(256));
          },
          [work] { return 0.0; }};
}

template <class T>
struct FromBytes {
  Bytes image;
  Plane<T> result;
};

// A result for each pixel of 8 bits.
template <class T>
std::shared_ptr<FromBytes<T>> fromBytes(const imImage *image) {
  const auto work = std::make_shared<FromBytes<T>>();
  work->image = bytesOf(image);
  work->result.reshape(work->image.shape());
  return work;
}

Job maskOfMaxima(Scene scene) {
  const auto work = fromBytes<unsigned char>(drawGrey(scene).get());
  return {[work] {
            work->result = 0;
            vigra::localMaxima(srcImageRange(work->image), destImage(work->result),
                               vigra::LocalMinmaxOptions()
                                   .neighborhood(8)
                                   .markWith(1)
                                   .allowAtBorder()
                                   .allowPlateaus());
          },
          [work] { return std::accumulate(work->result.begin(), work->result.end(), 0.0); }};
}

Job components(Scene scene) {
  struct Work {
    std::shared_ptr<FromBytes<unsigned>> planes;
    unsigned count = 0;
  };
  const auto work = std::make_shared<Work>();
  work->planes = fromBytes<unsigned>(drawShapes(scene).get());
  return {[work] {
            work->count = vigra::labelImageWithBackground(work->planes->image, work->planes->result,
                                                          true, static_cast<unsigned char>(0));
          },
          [work] { return work->count; }};
}

using RootsOfFn = ifRootsPtr (*)(const imImage *shapes);

// To the nearest pixel that is not 0.
template <RootsOfFn rootsOf>
Job vectors(Scene scene) {
  const imImagePtr shapes = drawShapes(scene);
  const ifRootsPtr roots = rootsOf(shapes.get());
  const auto work = fromBytes<vigra::Shape2>(shapes.get());
  work->image = 0;
  for (int i = 0; i < roots->n; ++i)
    work->image.data()[roots->pixel[i]] = 1;
  return {[work] { vigra::separableVectorDistance(work->image, work->result, true); },
          [work] {
            double sum = 0;
            for (const vigra::Shape2 &vector : work->result)
              sum += static_cast<double>(vigra::squaredNorm(vector));
            return sum;
          }};
}

} // namespace

std::vector<Peer> vigraPeers() {
  const std::string vigra = "VIGRA " VIGRA_VERSION;
  const std::string exact = "separableVectorDistance: 8-bit, a vector of 16 bytes a pixel, exact";
  return {
      {"mask of maxima", vigra, "localMaxima with plateaus: 8-bit", true, maskOfMaxima},
      {"components", vigra, "labelImageWithBackground: 8-bit", true, components},
      {"watershed", vigra, "watershedsRegionGrowing: 8-bit, labels only, other ties", false,
       watershed},
      {"distances from ground", vigra, exact, false, vectors<groundAsRoots>},
      {"distances from borders", vigra, exact, false, vectors<bordersAsRoots>},
      {"exact distances from ground", vigra, exact, true, vectors<groundAsRoots>},
      {"exact distances from borders", vigra, exact, true, vectors<bordersAsRoots>},
  };
}

} // namespace bench
