// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Peaks are taken from processes of their own. A child makes the inputs; its child does the job, so
// that what making them took at times does not count.

#include "bench/measure.h"
#include "bench/scratch.h"

#include "app/tool.h"
#include "image/imIO.h"

#include <cstdlib>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>

namespace bench {

namespace {

// Does `work` in a child; the most memory that it had, in bytes. Throws where the child failed.
template <class Work>
double peakOfChild(Work work) {
  const pid_t child = fork();
  if (child == 0) {
    work();
    _exit(0);
  }
  int status = 0;
  rusage usage = {};
  if (child < 0 || wait4(child, &status, 0, &usage) != child || status != 0)
    throw std::runtime_error("a process to measure memory with failed");
  return static_cast<double>(usage.ru_maxrss) * 1024;
}

double bytesPerPixel(const MakeJobFn &make, Scene scene) {
  int channel[2];
  if (pipe(channel) != 0)
    throw std::runtime_error("no pipe");
  peakOfChild([&] {
    const double before = peakOfChild([] {});
    Job job = make(scene);
    const double bytes = peakOfChild([&] { job.run(); }) - before;
    job = {}; // removes its files
    if (write(channel[1], &bytes, sizeof bytes) != sizeof bytes)
      std::abort();
  });
  double bytes = 0;
  const bool isRead = read(channel[0], &bytes, sizeof bytes) == sizeof bytes;
  close(channel[0]);
  close(channel[1]);
  if (!isRead)
    throw std::runtime_error("no figure from a process to measure memory with");
  return bytes / scene.side / scene.side;
}

struct Collection {
  std::FILE *report;
  std::vector<Peak> peaks;

  void add(const std::string &row, Subject subject, Scene scene, const std::string &library,
           const std::string &how, const MakeJobFn &make) {
    const Peak &peak = peaks.emplace_back(Peak{row, nameOf(scene.drawing, subject), scene.side,
                                               library, how, bytesPerPixel(make, scene)});
    std::fprintf(report, "%s,%s,%d,%s,\"%s\",%.1f\n", row.c_str(), peak.image.c_str(), scene.side,
                 library.c_str(), how.c_str(), peak.bytes);
    std::fflush(report);
  }
};

// ----- options of the tool

void runOption(const ScratchFile &image, const char *output, std::vector<const char *> option) {
  std::vector<const char *> words = {"seedforest", image.path(), output};
  words.insert(words.end(), option.begin(), option.end());
  seedforest::detail::runTool(static_cast<int>(words.size()), words.data());
}

MakeJobFn toolRun(const std::vector<const char *> &option) {
  return [option](Scene scene) {
    struct Files {
      ScratchFile image, roots;
    };
    const auto files = std::make_shared<Files>();
    imSaveImage(files->image.path(), drawGrey(scene).get());
    const bool isJoin = std::string(option.front()) == "join";
    if (isJoin)
      runOption(files->image, files->roots.path(), {"regMax", "0", "255"});
    return Job{[files, option, isJoin] {
                 std::vector<const char *> words = option;
                 if (isJoin)
                   words.insert(words.end(), 2, files->roots.path());
                 runOption(files->image, "/dev/null", words);
               },
               [] { return 0.0; }};
  };
}

constexpr const char *title = "row,image,side,peer,how,peak bytes/pixel\n";

} // namespace

std::vector<Peak> measureMemory(const std::string &filter, int largest, std::FILE *report) {
  std::fprintf(report, "%s", title);
  Collection all = {report, {}};
  for (const Row &row : rowsThatBegin(filter))
    for (const int share : {4, 2}) {
      const Scene scene = {Drawing::micrograph, largest / share};
      all.add(row.name, row.subject, scene, "", "", row.make);
      for (const Peer &peer : peersOf(row))
        all.add(row.name, row.subject, scene, peer.library, peer.how, peer.make);
    }
  return all.peaks;
}

std::vector<Peak> measureToolMemory(int side, std::FILE *report) {
  constexpr Drawing drawings[] = {Drawing::micrograph,   Drawing::constant,   Drawing::columns,
                                  Drawing::checkerboard, Drawing::manyMaxima, Drawing::noise};
  const std::vector<std::vector<const char *>> options = {
      {"regMax", "0", "255"}, {"regMin", "0", "255"}, {"dt"}, {"join"}, {"frame", "0"}, {"labels"},
      {"cells", "5"}};
  const ScratchFolder folder({"labeled.pgm"}); // `cells` writes it
  std::fprintf(report, "%s", title);
  Collection all = {report, {}};
  for (const std::vector<const char *> &option : options) {
    std::string name = option.front();
    for (std::size_t i = 1; i < option.size(); ++i)
      name.append(" ").append(option[i]);
    for (const Drawing drawing : drawings)
      all.add(name, Subject::grey, {drawing, side}, "", "", toolRun(option));
  }
  return all.peaks;
}

} // namespace bench
