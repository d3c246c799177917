// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Rows of extrema, components, distances and skeletons.

#include "bench/rows.h"
#include "bench/scratch.h"

#include "app/tool.h"
#include "ift/core/ifExactDistance.h"
#include "ift/core/iftEuclidean.h"
#include "ift/label/ifLabel.h"
#include "ift/operators/ifSkeleton.h"
#include "ift/seeds/ifExtrema.h"
#include "image/imIO.h"
#include "image/imNeighborhood.h"

#include <algorithm>

namespace bench {

namespace {

Job copying(Scene scene) {
  struct Work {
    imImagePtr image;
    imImagePtr copy{imCopyImage(image.get())};
  };
  const auto work = std::make_shared<Work>(Work{drawGrey(scene)});
  return {[work] { std::copy_n(work->image->band[0], work->image->npixels, work->copy->band[0]); },
          [work] { return sumOf(work->copy.get()); }};
}

// The first line of a roots file has their number.
double rootsIn(const char *path) {
  std::FILE *file = std::fopen(path, "r");
  int n = 0;
  if (file == nullptr || std::fscanf(file, "%d", &n) != 1)
    n = -1;
  if (file != nullptr)
    std::fclose(file);
  return n;
}

Job wholeRun(Scene scene) {
  struct Work {
    ScratchFile image, roots;
  };
  const auto work = std::make_shared<Work>();
  imSaveImage(work->image.path(), drawGrey(scene).get());
  return {[work] {
            const char *words[] = {
                "seedforest", work->image.path(), work->roots.path(), "regMax", "0", "255"};
            seedforest::detail::runTool(6, words);
          },
          [work] { return rootsIn(work->roots.path()); }};
}

Job labelledMaxima(Scene scene) {
  struct Work {
    imImagePtr image;
    ifRootsPtr roots;
  };
  const auto work = std::make_shared<Work>(Work{drawGrey(scene), nullptr});
  return {[work] {
            work->roots.reset(); // its memory serves again
            work->roots.reset(ifRegionalMaximaAsRoots(work->image.get()));
          },
          [work] {
            const ifRoots &roots = *work->roots;
            return roots.n + 1e9 * *std::max_element(roots.label, roots.label + roots.n);
          }};
}

Job maskOfMaxima(Scene scene) {
  const auto work = std::make_shared<OneToOne>(OneToOne{drawGrey(scene), nullptr});
  return {[work] {
            work->out.reset();
            work->out.reset(ifRegionalMaxima(work->in.get()));
          },
          [work] { return sumOf(work->out.get()); }};
}

Job components(Scene scene) {
  const auto work = std::make_shared<OneToOne>(OneToOne{drawShapes(scene), nullptr});
  return {[work] {
            work->out.reset();
            work->out.reset(imCreateImage(1, imTypeAscii, work->in->ncols, work->in->nrows));
            ifLabelImage(work->in.get(), work->out.get());
          },
          [work] { return work->out->maxValue; }};
}

// ----- distances

using RootsOfFn = ifRootsPtr (*)(const imImage *shapes);
using DistanceFn = void (*)(const imImage *image, imImage *result, const ifRoots *roots);

void propagated(const imImage *image, imImage *result, const ifRoots *roots) {
  iftEuclideanDT(image, result, imNeighborhood8, roots);
}

template <DistanceFn distances, RootsOfFn rootsOf>
Job distancesFrom(Scene scene) {
  struct Work {
    imImagePtr shapes;
    ifRootsPtr roots = rootsOf(shapes.get());
    imImagePtr result{imCreateImage(3, imTypeWork, shapes->ncols, shapes->nrows)};
  };
  const auto work = std::make_shared<Work>(Work{drawShapes(scene)});
  return {[work] { distances(work->shapes.get(), work->result.get(), work->roots.get()); },
          [work] { return sumOf(work->result.get(), 1); }};
}

Job skeleton(Scene scene) {
  const auto work = std::make_shared<OneToOne>(OneToOne{drawShapes(scene), nullptr});
  return {[work] {
            work->out.reset();
            imImage *result = nullptr;
            ifSkel(work->in.get(), 1, 5, &result);
            work->out.reset(result);
          },
          [work] { return sumOf(work->out.get()); }};
}

} // namespace

std::vector<Row> seedRows() {
  constexpr Drawing natural = Drawing::micrograph;
  constexpr Drawing noise = Drawing::noise;
  return {
      {"copy", Subject::grey, {natural}, true, copying},
      {"regMax run", Subject::grey, {natural}, false, wholeRun},
      {"labelled maxima", Subject::grey, {natural, noise}, true, labelledMaxima},
      {"mask of maxima", Subject::grey, {natural, noise}, false, maskOfMaxima},
      {"components", Subject::shapes, {natural, noise}, true, components},
      {"distances from ground",
       Subject::shapes,
       {natural},
       false,
       distancesFrom<propagated, groundAsRoots>},
      {"distances from borders",
       Subject::shapes,
       {natural},
       false,
       distancesFrom<propagated, bordersAsRoots>},
      {"exact distances from ground",
       Subject::shapes,
       {natural},
       true,
       distancesFrom<ifExactDistance, groundAsRoots>},
      {"exact distances from borders",
       Subject::shapes,
       {natural},
       false,
       distancesFrom<ifExactDistance, bordersAsRoots>},
      {"skeleton", Subject::shapes, {natural}, true, skeleton},
  };
}

} // namespace bench
