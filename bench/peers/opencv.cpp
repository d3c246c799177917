// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// OpenCV, on one thread. What it lacks is composed from what it has.

#include "bench/peers/opencv.h"
#include "bench/scratch.h"

#include "image/imIO.h"

#include <cmath>
#include <cstdio>

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

namespace bench {

namespace {

// ----- regional maxima

// A pixel without a higher neighbour is a candidate. Those of a component are equal, and none is a
// maximum if one of them has an equal neighbour that is no candidate.
struct Maxima {
  cv::Mat labels;          // of the components of candidates
  std::vector<int> number; // of the maximum that a component is, 0 for none
  int count = 0;

  explicit Maxima(const cv::Mat &image) {
    cv::Mat dilated, candidates, others;
    cv::dilate(image, dilated, cv::Mat());
    cv::compare(image, dilated, candidates, cv::CMP_EQ);
    image.copyTo(others);
    others.setTo(0, candidates);
    cv::dilate(others, dilated, cv::Mat());
    const int n = cv::connectedComponents(candidates, labels);
    std::vector<char> isMaximum(static_cast<std::size_t>(n), 1);
    isMaximum[0] = 0;
    for (int y = 0; y < image.rows; ++y) {
      const int *label = labels.ptr<int>(y);
      const unsigned char *value = image.ptr(y);
      const unsigned char *nearby = dilated.ptr(y);
      for (int x = 0; x < image.cols; ++x)
        if (nearby[x] == value[x])
          isMaximum[static_cast<std::size_t>(label[x])] = 0;
    }
    for (const char is : isMaximum)
      number.push_back(is != 0 ? ++count : 0);
  }

  // Calls visit(x, y, number) for each pixel of a maximum, or number 0 for another pixel.
  template <class Visit>
  void each(Visit visit) const {
    for (int y = 0; y < labels.rows; ++y)
      for (int x = 0; x < labels.cols; ++x)
        visit(x, y, number[static_cast<std::size_t>(labels.ptr<int>(y)[x])]);
  }
};

struct Root {
  int x, y, label;
};

std::vector<Root> rootsOf(const Maxima &maxima) {
  std::vector<Root> roots;
  maxima.each([&](int x, int y, int number) {
    if (number != 0)
      roots.push_back({x, y, number});
  });
  return roots;
}

struct Work {
  cv::Mat in;
  cv::Mat out;
  double count = 0;
};

Job labelledMaxima(Scene scene) {
  const auto work = std::make_shared<Work>();
  work->in = matOf(drawGrey(scene).get());
  return {[work] {
            const Maxima maxima(work->in);
            work->count = static_cast<double>(rootsOf(maxima).size()) + 1e9 * maxima.count;
          },
          [work] { return work->count; }};
}

Job maskOfMaxima(Scene scene) {
  const auto work = std::make_shared<Work>();
  work->in = matOf(drawGrey(scene).get());
  return {[work] {
            const Maxima maxima(work->in);
            work->out.create(work->in.size(), CV_8U);
            maxima.each([&](int x, int y, int number) { work->out.ptr(y)[x] = number != 0; });
          },
          [work] { return sumOf(work->out); }};
}

// Reads an image file and writes a roots file.
Job wholeRun(Scene scene) {
  struct Files {
    ScratchFile image, roots;
    double count = 0;
  };
  const auto work = std::make_shared<Files>();
  imSaveImage(work->image.path(), drawGrey(scene).get());
  return {[work] {
            const cv::Mat image = cv::imread(work->image.path(), cv::IMREAD_UNCHANGED);
            const std::vector<Root> roots = rootsOf(Maxima(image));
            work->count = static_cast<double>(roots.size());
            std::FILE *file = std::fopen(work->roots.path(), "w");
            if (file == nullptr)
              return;
            std::fprintf(file, "%zu\n", roots.size());
            for (const Root &root : roots)
              std::fprintf(file, "%d %d %d\n", root.x, root.y, root.label);
            std::fclose(file);
          },
          [work] { return work->count; }};
}

// ----- components, watershed, distances

Job components(Scene scene) {
  const auto work = std::make_shared<Work>();
  work->in = matOf(drawShapes(scene).get());
  return {[work] {
            work->out.release();
            work->count = cv::connectedComponents(work->in, work->out) - 1;
          },
          [work] { return work->count; }};
}

Job watershed(Scene scene) {
  struct Seeded {
    cv::Mat image, markers, labels;
  };
  const auto work = std::make_shared<Seeded>();
  const imImagePtr image = drawGrey(scene);
  const ifRootsPtr seeds = gridSeeds(image.get());
  cv::cvtColor(matOf(image.get()), work->image, cv::COLOR_GRAY2BGR);
  work->markers = cv::Mat::zeros(scene.side, scene.side, CV_32S);
  for (int i = 0; i < seeds->n; ++i)
    work->markers.ptr<int>()[seeds->pixel[i]] = seeds->label[i];
  return {[work] {
            work->markers.copyTo(work->labels);
            cv::watershed(work->image, work->labels);
          },
          [] { return 0.0; }};
}

using RootsOfFn = ifRootsPtr (*)(const imImage *shapes);

template <RootsOfFn rootsOf>
Job distances(Scene scene) {
  const auto work = std::make_shared<Work>();
  const imImagePtr shapes = drawShapes(scene);
  const ifRootsPtr roots = rootsOf(shapes.get());
  work->in = cv::Mat(scene.side, scene.side, CV_8U, cv::Scalar(255));
  for (int i = 0; i < roots->n; ++i)
    work->in.data[roots->pixel[i]] = 0;
  return {
      [work] { cv::distanceTransform(work->in, work->out, cv::DIST_L2, cv::DIST_MASK_PRECISE); },
      [work] {
        double sum = 0;
        for (int y = 0; y < work->out.rows; ++y)
          for (int x = 0; x < work->out.cols; ++x)
            sum += std::rint(std::pow(double(work->out.ptr<float>(y)[x]), 2));
        return sum;
      }};
}

} // namespace

std::vector<Peer> openCvPeers() {
  cv::setNumThreads(1);
  const std::string library = "OpenCV " CV_VERSION;
  const std::string maxima = "dilate, connectedComponents: 8-bit";
  const std::string exact = "distanceTransform: 8-bit, float distances, exact, no roots";
  std::vector<Peer> peers = {
      {"copy", library, "copyTo: 8-bit", true,
       [](Scene scene) {
         const auto work = std::make_shared<Work>();
         work->in = matOf(drawGrey(scene).get());
         return Job{[work] { work->in.copyTo(work->out); }, [work] { return sumOf(work->out); }};
       }},
      {"regMax run", library, "imread, the maxima composed, fprintf", true, wholeRun},
      {"labelled maxima", library, maxima, true, labelledMaxima},
      {"mask of maxima", library, maxima, true, maskOfMaxima},
      {"components", library, "connectedComponents: 8-bit", true, components},
      {"watershed", library, "watershed: three bands of 8 bits, lines between labels", false,
       watershed},
      {"distances from ground", library, exact, false, distances<groundAsRoots>},
      {"distances from borders", library, exact, false, distances<bordersAsRoots>},
      {"exact distances from ground", library, exact, true, distances<groundAsRoots>},
      {"exact distances from borders", library, exact, true, distances<bordersAsRoots>},
  };
  for (Peer &peer : openCvImagePeers(library))
    peers.push_back(std::move(peer));
  return peers;
}

} // namespace bench
