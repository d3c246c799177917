// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Whole runs of the companion programs.

#include "formats.h"
#include "support.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using seedforest::Image;
using namespace seedforest::tools;

struct Ended {
  int status;
  std::string out;
  std::string err;
};

// Runs "seeds ...", "segment ..." and so on in a folder, `arguments` as the shell takes them.
Ended runProgram(const TemporaryFolder &folder, const std::string &arguments) {
  const std::string command =
      "cd '" + folder.path("") +
      "' && exec >run.out 2>run.err; '" SEEDFOREST_PROGRAMS "'/seedforest-" + arguments;
  const int ended = std::system(command.c_str());
  return {WIFEXITED(ended) ? WEXITSTATUS(ended) : -1, contentsOf(folder.path("run.out")),
          contentsOf(folder.path("run.err"))};
}

void expectRun(const TemporaryFolder &folder, const std::string &arguments) {
  const Ended run = runProgram(folder, arguments);
  EXPECT_EQ(run.status, 0) << arguments << '\n' << run.err;
}

std::string text(const Matrix &rows) {
  std::string text =
      "P2 " + std::to_string(rows[0].size()) + " " + std::to_string(rows.size()) + " 255\n";
  for (const std::vector<int> &row : rows)
    for (const int value : row)
      text += std::to_string(value) + " ";
  return text;
}

Matrix rowsIn(const TemporaryFolder &folder, const std::string &name) {
  return bandOf(readImage(folder.path(name)).get());
}

// An image of blobs and noise.
Image scene(int ncols, int nrows) {
  std::mt19937 random(6);
  Image image(ncols, nrows, 1, seedforest::ImageType::grey);
  image.setMaxValue(255);
  for (int y = 0; y < nrows; ++y)
    for (int x = 0; x < ncols; ++x)
      image.at(x, y) = (x / 9 % 2 == 0 && y / 9 % 2 == 0 ? 170 : 30) + pick(random, 0, 60);
  return image;
}

// The same roots from the same pixels, whatever file they are in.
TEST(Programs, SeedsAreThoseOfTheTool) {
  const TemporaryFolder folder;
  const Image image = scene(40, 30);
  writeImage(image, folder.path("in.pgm"));
  writeImage(seedforest::gradient(image), folder.path("wide.pgm"));
  writeImage(seedforest::greyToRgb(image), folder.path("in.ppm"));
  folder.write("a", "2\n0 0 1\n3 3 4\n");
  folder.write("b", "1\n1 2 -2\n");
  std::vector<std::string> names = {"in.pgm", "in.ppm"};
#ifdef SEEDFOREST_HAVE_PNG
  writeImage(image, folder.path("in.png"));
  writeImage(seedforest::greyToRgb(image), folder.path("rgb.png"));
  names = {"in.png", "rgb.png"};
#endif
  for (const std::string option : {"regMax 150 255", "regMin 0 60", "dt", "frame 0", "frame 1 7",
                                   "join a b", "labels", "cells 2", "regMin -- -5 60"})
    for (const bool isColor : {false, true}) {
      if (isColor && option.starts_with("cells")) // of one band only
        continue;
      SCOPED_TRACE(option);
      const std::string plain = isColor ? "in.ppm" : "in.pgm";
      std::string toolOption = option;
      std::erase_if(toolOption, [at = 0](char c) mutable { return c == '-' && at++ < 2; });
      const std::string tool = "cd '" + folder.path("") + "' && '" SEEDFOREST_TOOL "' " + plain +
                               " wanted " + toolOption + " >tool.out 2>&1";
      ASSERT_EQ(std::system(tool.c_str()), 0);
      expectRun(folder, "seeds " + names[isColor ? 1 : 0] + " made " + option);
      EXPECT_EQ(contentsOf(folder.path("made")), contentsOf(folder.path("wanted")));
    }
}

TEST(Programs, SeedsOfTouchingObjects) {
  const TemporaryFolder folder;
  Image image(60, 30); // two discs that touch, with a dark spot in the first, on a slope
  for (int y = 0; y < 30; ++y)
    for (int x = 0; x < 60; ++x) {
      const int left = (x - 19) * (x - 19) + (y - 15) * (y - 15);
      const int right = (x - 39) * (x - 39) + (y - 15) * (y - 15);
      image.at(x, y) = left <= 1 ? 40 : left <= 121 || right <= 121 ? 200 : x / 2;
    }
  writeImage(image, folder.path("in.pgm"));
  const Ended seeds = runProgram(folder, "seeds in.pgm r split 3 --ground");
  EXPECT_EQ(seeds.status, 0);
  EXPECT_NE(seeds.err.find("2 labels"), std::string::npos);
  EXPECT_NE(seeds.err.find("ground has label 3"), std::string::npos);
  expectRun(folder, "segment in.pgm r l.pgm --background 3 --quiet");
  const Matrix labels = rowsIn(folder, "l.pgm");
  for (int y = 0; y < 30; ++y)
    for (int x = 0; x < 60; ++x) {
      const bool isObject = image.at(x, y) >= 40;
      const int label = labels[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
      if (std::abs(x - 29) > 2) { // not at the neck
        EXPECT_EQ(label, !isObject ? 0 : x < 29 ? 1 : 2) << x << " " << y;
      }
    }
}

TEST(Programs, Segment) {
  const TemporaryFolder folder;
  folder.write("in.pgm", text({{1, 1, 5, 1, 9, 1}}));
  folder.write("mask.pgm", text({{1, 0, 1, 1, 1, 1}}));
  folder.write("r", "2\n0 0 3\n5 0 8\n");
  folder.write("square.pgm", text({{0, 9}, {9, 0}}));
  folder.write("corner", "2\n0 0 1\n1 0 2\n");
  const struct {
    std::string arguments;
    Matrix labels;
  } cases[] = {
      {"in.pgm r - --on image", {{3, 3, 3, 3, 8, 8}}}, // the crest of 9 goes to the first to come
      {"in.pgm r - --on negative", {{3, 3, 3, 8, 8, 8}}}, // no crest: both sides at once
      {"in.pgm r - --on image --cost sum", {{3, 3, 3, 3, 8, 8}}},
      {"in.pgm r - --on image --cost local", {{3, 3, 0, 0, 0, 8}}},
      {"in.pgm r - --on image --mask mask.pgm", {{3, 0, 8, 8, 8, 8}}},
      {"in.pgm r - --on image --threshold 0 --lines", {{3, 3, 3, 3, 0, 8}}},
      {"in.pgm r - --on image --threshold 4", {{0, 0, 0, 0, 0, 0}}},
      {"in.pgm r - --on image --background 3", {{0, 0, 0, 0, 8, 8}}},
      {"in.pgm r - --on image --merge 1", {{3, 3, 3, 3, 3, 3}}},
      {"in.pgm r - --on image --min-area 3", {{3, 3, 3, 3, 3, 3}}},
      {"square.pgm corner - --on image", {{1, 2}, {1, 1}}},
      {"square.pgm corner - --on image --connectivity 4", {{1, 2}, {1, 2}}},
  };
  for (const auto &test : cases) {
    SCOPED_TRACE(test.arguments);
    const Ended run = runProgram(folder, "segment " + test.arguments);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(bandOf(decodeImage(run.out).image.get()), test.labels);
  }
}

TEST(Programs, Measure) {
  const TemporaryFolder folder;
  folder.write("l.pgm", text({{0, 0, 0}, {0, 300, 300}, {0, 0, 0}}));
  folder.write("in.pgm", text({{0, 0, 0}, {0, 10, 13}, {0, 0, 0}}));
  const std::string head = "label,area,x,y,left,top,right,bottom,perimeter,diameter,touches_frame";
  const std::string row = "300,2,1.500,1.000,1,1,2,1,4.578,1.596,1";
  EXPECT_EQ(runProgram(folder, "measure l.pgm").out, head + "\n" + row + "\n");
  EXPECT_EQ(runProgram(folder, "measure - in.pgm <l.pgm").out,
            head + ",min,max,mean,sd\n" + row + ",10,13,11.500,1.500\n");
  EXPECT_EQ(runProgram(folder, "measure --format json l.pgm").out,
            "[\n{\"label\": 300, \"area\": 2, \"x\": 1.500, \"y\": 1.000, \"left\": 1, \"top\": 1, "
            "\"right\": 2, \"bottom\": 1, \"perimeter\": 4.578, \"diameter\": 1.596, "
            "\"touches_frame\": 1}\n]\n");
  const std::string geo = runProgram(folder, "measure --format geojson l.pgm").out;
  EXPECT_NE(geo.find("\"geometry\": {\"type\": \"Polygon\", \"coordinates\": "
                     "[[[1,1],[3,1],[3,2],[1,2],[1,1]]]}"),
            std::string::npos)
      << geo;
}

TEST(Programs, Paint) {
  const TemporaryFolder folder;
  folder.write("in.pgm", text({{100, 100, 100, 100}, {100, 100, 100, 100}}));
  folder.write("l.pgm", text({{1, 1, 1, 2}, {1, 1, 1, 2}}));
  folder.write("m.pgm", text({{2, 2, 2, 2}, {2, 2, 2, 2}}));
  folder.write("r", "1\n0 1 2\n");
  expectRun(folder, "paint in.pgm l.pgm l.ppm");
  expectRun(folder, "paint in.pgm m.pgm m.ppm");
  expectRun(folder, "paint in.pgm r r.ppm");
  expectRun(folder, "paint in.pgm l.pgm - --style borders --scale 3 >b.ppm");
  const Image regions = readImage(folder.path("l.ppm"));
  const Image other = readImage(folder.path("m.ppm"));
  const Image spot = readImage(folder.path("r.ppm"));
  bool isSame = true, differs = false;
  for (int b = 0; b < 3; ++b) {
    isSame = isSame && regions.at(3, 0, b) == other.at(0, 0, b); // label 2 has one colour
    differs = differs || regions.at(0, 0, b) != regions.at(3, 0, b);
    EXPECT_EQ((3 * 100 + spot.at(0, 1, b)) / 4, other.at(0, 0, b));
    EXPECT_EQ(spot.at(3, 0, b), 100);
  }
  EXPECT_TRUE(isSame && differs);
}

TEST(Programs, WrongCommandLinesAndFiles) {
  const TemporaryFolder folder;
  folder.write("in.pgm", text({{1, 2}}));
  folder.write("small.pgm", text({{1}}));
  folder.write("r", "1\n0 0 1\n");
  folder.write("far", "1\n0 5 1\n");
  folder.write("none", "0\n");
  folder.write("noise", "not an image");
  const struct {
    std::string arguments;
    int status;
    std::string message;
  } cases[] = {
      {"seeds in.pgm out cells abc", 2, "\"abc\" is no whole number"},
      {"seeds in.pgm out cells 3x", 2, "no whole number"},
      {"seeds in.pgm out cells 99999999999", 2, "is not in"},
      {"seeds in.pgm out regMax 1", 2, "regMax MIN MAX"},
      {"seeds in.pgm out RegMax 1 2", 2, "is none of regMax"},
      {"seeds in.pgm out frame 1", 2, "needs a label"},
      {"seeds in.pgm out markers 1 --smooth -1", 2, "--smooth"},
      {"seeds in.pgm out", 2, "IMAGE ROOTS OPTION"},
      {"segment in.pgm r", 2, "IMAGE ROOTS LABELS"},
      {"segment in.pgm r out.pgm --on top", 2, "is none of image, negative, gradient"},
      {"segment in.pgm r out.pgm --nonsense", 2, "--help"},
      {"segment in.pgm r out.gif", 1, "out.gif"},
      {"segment missing.pgm r out.pgm", 1, "missing.pgm"},
      {"segment noise r out.pgm", 1, "noise: no image"},
      {"segment in.pgm missing out.pgm", 1, "missing"},
      {"segment in.pgm far out.pgm", 1, "far"},
      {"segment in.pgm none out.pgm", 1, "none"},
      {"segment in.pgm r no/out.pgm", 1, "no/out.pgm"},
      {"segment in.pgm r - --mask small.pgm", 1, "small.pgm"},
      {"segment in.pgm r - >/dev/full", 1, "/dev/stdout"},
      {"measure noise", 1, "noise"},
      {"measure in.pgm small.pgm", 1, "small.pgm"},
      {"measure in.pgm >/dev/full", 1, "standard output"},
      {"measure in.pgm --format xml", 2, "csv, json, geojson"},
      {"paint in.pgm r out.ppm --style borders", 1, "roots file"},
      {"paint in.pgm in.pgm out.ppm --scale 0", 2, "--scale"},
      {"paint in.pgm small.pgm out.ppm", 1, "small.pgm"},
  };
  for (const auto &test : cases) {
    SCOPED_TRACE(test.arguments);
    const Ended run = runProgram(folder, test.arguments);
    EXPECT_EQ(run.status, test.status) << run.err;
    EXPECT_NE(run.err.find(test.message), std::string::npos) << run.err;
  }
  EXPECT_EQ(folder.names().size(), 8); // the files above and the two of runs: no output
  for (const std::string program : {"seeds", "segment", "measure", "paint"}) {
    EXPECT_NE(runProgram(folder, program + " --help").out.find("--quiet"), std::string::npos);
    EXPECT_EQ(runProgram(folder, program + " --version").out.find("seedforest-" + program + " "),
              0);
  }
}

// A run that a signal ends while it works leaves the old file or the new one, and nothing else.
TEST(Programs, EndedByASignal) {
  const TemporaryFolder folder;
  const std::string out = folder.path("l.pgm");
  writeImage(scene(300, 300), folder.path("in.pgm"));
  expectRun(folder, "seeds in.pgm r markers 20 --smooth 2");
  const std::string program = SEEDFOREST_PROGRAMS "/seedforest-segment";
  const std::string in = folder.path("in.pgm");
  const std::string roots = folder.path("r");
  std::mt19937 random(7);
  std::string whole;
  int ended = 0;
  for (int run = 0; run < 60; ++run) {
    folder.write("l.pgm", "old");
    const pid_t child = fork();
    if (child == 0) {
      execl(program.c_str(), program.c_str(), in.c_str(), roots.c_str(), out.c_str(), nullptr);
      _exit(99);
    }
    if (run > 0) {
      usleep(static_cast<useconds_t>(pick(random, 500, 30000)));
      kill(child, run % 2 == 0 ? SIGTERM : SIGINT);
    }
    int status = 0;
    waitpid(child, &status, 0);
    const std::string found = contentsOf(out);
    if (run == 0)
      whole = found;
    EXPECT_TRUE(found == "old" || found == whole);
    ended += WIFSIGNALED(status) ? 1 : 0;
    EXPECT_EQ(folder.names(),
              (std::set<std::string>{"in.pgm", "l.pgm", "r", "run.err", "run.out"}));
  }
  EXPECT_GT(whole.size(), 300 * 300);
  EXPECT_GT(ended, 0);
}

} // namespace
