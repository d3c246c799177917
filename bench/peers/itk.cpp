// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// ITK, with 32-bit pixels and on one thread.

#include "bench/rows.h"

#include <itkAreaOpeningImageFilter.h>
#include <itkConnectedComponentImageFilter.h>
#include <itkImage.h>
#include <itkMorphologicalWatershedFromMarkersImageFilter.h>
#include <itkMultiThreaderBase.h>
#include <itkReconstructionByDilationImageFilter.h>
#include <itkRegionalMaximaImageFilter.h>
#include <itkVersion.h>

#include <algorithm>
#include <numeric>

namespace bench {

namespace {

using Image = itk::Image<int, 2>;

Image::Pointer imageOf(const imImage *image, int lower = 0) {
  const auto result = Image::New();
  result->SetRegions(Image::SizeType{{static_cast<itk::SizeValueType>(image->ncols),
                                      static_cast<itk::SizeValueType>(image->nrows)}});
  result->Allocate();
  std::transform(image->band[0], image->band[0] + image->npixels, result->GetBufferPointer(),
                 [lower](int value) { return std::max(0, value - lower); });
  return result;
}

double sumOfPixels(const Image *image) {
  const int *first = image->GetBufferPointer();
  return std::accumulate(first, first + image->GetBufferedRegion().GetNumberOfPixels(), 0.0);
}

// The filter, run anew each time, with its memory let go in between.
template <class Filter>
Job jobOf(const itk::SmartPointer<Filter> &filter) {
  return {[filter] {
            filter->GetOutput()->ReleaseData();
            filter->Modified();
            filter->Update();
          },
          [filter] { return sumOfPixels(filter->GetOutput()); }};
}

Job maskOfMaxima(Scene scene) {
  const auto filter = itk::RegionalMaximaImageFilter<Image, Image>::New();
  filter->SetInput(imageOf(drawGrey(scene).get()));
  filter->FullyConnectedOn();
  filter->SetForegroundValue(1);
  filter->SetBackgroundValue(0);
  return jobOf(filter);
}

Job components(Scene scene) {
  const auto filter = itk::ConnectedComponentImageFilter<Image, Image>::New();
  filter->SetInput(imageOf(drawShapes(scene).get()));
  filter->FullyConnectedOn();
  Job job = jobOf(filter);
  job.sum = [filter] { return static_cast<double>(filter->GetObjectCount()); };
  return job;
}

Job watershed(Scene scene) {
  const imImagePtr image = drawGrey(scene);
  const ifRootsPtr seeds = gridSeeds(image.get());
  const auto markers = imageOf(image.get());
  std::fill_n(markers->GetBufferPointer(), image->npixels, 0);
  for (int i = 0; i < seeds->n; ++i)
    markers->GetBufferPointer()[seeds->pixel[i]] = seeds->label[i];
  const auto filter = itk::MorphologicalWatershedFromMarkersImageFilter<Image, Image>::New();
  filter->SetInput1(imageOf(image.get()));
  filter->SetInput2(markers);
  filter->FullyConnectedOn();
  filter->MarkWatershedLineOff();
  return jobOf(filter);
}

Job reconstruction(Scene scene) {
  const imImagePtr image = drawGrey(scene);
  const auto filter = itk::ReconstructionByDilationImageFilter<Image, Image>::New();
  filter->SetMarkerImage(imageOf(image.get(), 1));
  filter->SetMaskImage(imageOf(image.get()));
  filter->FullyConnectedOn();
  return jobOf(filter);
}

template <int area>
Job areaOpening(Scene scene) {
  const auto filter = itk::AreaOpeningImageFilter<Image, Image>::New();
  filter->SetInput(imageOf(drawGrey(scene).get()));
  filter->FullyConnectedOn();
  filter->UseImageSpacingOff();
  filter->SetLambda(area);
  return jobOf(filter);
}

} // namespace

std::vector<Peer> itkPeers() {
  itk::MultiThreaderBase::SetGlobalMaximumNumberOfThreads(1);
  itk::MultiThreaderBase::SetGlobalDefaultNumberOfThreads(1);
  const std::string itk = std::string("ITK ") + itk::Version::GetITKVersion();
  // It sorts all pixels but the last one, which leaves sums a few grey levels apart.
  const std::string area = "AreaOpening: no labels";
  const std::string values = "ReconstructionByDilation: values only";
  return {
      {"mask of maxima", itk, "RegionalMaxima", true, maskOfMaxima},
      {"components", itk, "ConnectedComponent", true, components},
      {"watershed", itk, "MorphologicalWatershedFromMarkers: labels only, other ties", false,
       watershed},
      {"reconstruction from every pixel", itk, values, true, reconstruction},
      {"reconstruction of a marker", itk, values, true, reconstruction},
      {"area opening 50", itk, area, false, areaOpening<50>},
      {"area opening 1000", itk, area, false, areaOpening<1000>},
  };
}

} // namespace bench
