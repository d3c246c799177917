// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Whole runs of the tool: both streams, the exit status and the files, to the byte.

#include "documentedErrors.h"
#include "image/imIO.h"
#include "support.h"

#include <cstdlib>
#include <sys/wait.h>

namespace {

const char *const sample = "P2\n# a label image\n4 3\n300\n0 0 1 0\n2 -3 300 0\n0 0 0 5\n";
const char *const sampleLabels = "4\n2 0 1\n0 1 2\n2 1 300\n3 2 5\n";
const std::string wasRead = "Image in.pgm was read\n";
const std::string labelling = "in ifLabelImage\nin ifLabelImage\n";
const std::string none = "(no such file)";

std::string savedRoots(int n) {
  return "there are " + std::to_string(n) + " roots\ndone!\n";
}

struct ToolRun {
  int status;
  std::string out;
  std::string err;
};

// Runs the tool in a folder, `arguments` as the shell takes them, after other commands.
ToolRun runTool(const TemporaryFolder &folder, const std::string &arguments,
                const std::string &before = "") {
  const std::string command = "cd '" + folder.path("") + "' && exec >tool.out 2>tool.err; " +
                              before + " '" SEEDFOREST_TOOL "' " + arguments;
  const int ended = std::system(command.c_str());
  return {WIFEXITED(ended) ? WEXITSTATUS(ended) : -1, contentsOf(folder.path("tool.out")),
          contentsOf(folder.path("tool.err"))};
}

// A run in a folder with "in.pgm", which prints this and leaves this file "out".
void expectRun(const TemporaryFolder &folder, const std::string &arguments, const std::string &out,
               const std::string &roots) {
  SCOPED_TRACE(arguments);
  const ToolRun run = runTool(folder, arguments);
  EXPECT_EQ(run.out, out);
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(contentsOf(folder.path("out")), roots);
}

// The text itself stands in the tool: here are its parts, and its length.
TEST(Tool, UsageNamesAllOptions) {
  const TemporaryFolder folder;
  const ToolRun run = runTool(folder, "in.pgm out"); // the image is not looked for
  EXPECT_EQ(run.out.find("\n" SEEDFOREST_TOOL " <input image> <output roots file> <opt> "), 0);
  for (const std::string option : {"regMax", "regMin", "dt", "join", "frame", "labels", "cells"})
    EXPECT_NE(run.out.find("\n\t" + option + " "), std::string::npos) << option;
  EXPECT_EQ(run.out.size() - std::string_view(SEEDFOREST_TOOL).size(), 530);
  EXPECT_EQ(run.status, 0);
}

TEST(Tool, Runs) {
  const std::string frame =
      "10\n0 0 1\n1 0 2\n2 0 3\n3 0 4\n0 2 5\n1 2 6\n2 2 7\n3 2 8\n0 1 9\n3 1 10\n";
  const std::string sevens = "6\n0 0 7\n0 3 7\n0 1 7\n0 2 7\n0 1 7\n0 2 7\n";
  const std::string both = "6\n0 0 1\n0 3 2\n0 1 3\n0 2 4\n0 1 5\n0 2 6\n"; // sides of a column
  const std::string joined = "3\n1 1 4\n1 1 4\n1 2 -2\n";
  const std::string four = wasRead + savedRoots(4);
  const std::string column = "Image column was read\n" + savedRoots(6);
  const std::string ten = wasRead + savedRoots(10);
  const std::string readBoth =
      wasRead + "read: 5 4\nread file a\nread: 5 4\nread: 9 -2\nread file b\n" + savedRoots(3);
  const std::string stdinRead = "Image /dev/stdin was read\n" + savedRoots(4);
  const struct {
    std::string arguments, out, roots;
  } cases[] = {
      {"in.pgm out labels", four, sampleLabels},
      {"in.pgm out frame no-number", ten, frame},
      {"in.pgm out frame 0 7 8 9", ten, frame},
      {"column out frame -1x 7x", column, sevens},
      {"in.pgm out join a b", readBoth, joined},
      {"/dev/stdin out labels <<E\n" + std::string(sample) + "E", stdinRead, sampleLabels},
      {"in.pgm /dev/stdout labels", wasRead + sampleLabels + savedRoots(4), none},
      {"column out frame 0", column, both},
  };
  for (const auto &c : cases) {
    const TemporaryFolder folder;
    folder.write("in.pgm", sample);
    folder.write("column", "P2 1 4 1 0 0 0 0");
    folder.write("a", "1\n1 1 4\n");
    folder.write("b", "2\n1 1 4\n1 2 -2\n");
    expectRun(folder, c.arguments, c.out, c.roots);
  }
}

// Each case meets a row of docs/errors.md: it ends with the row's status and with its line on its
// stream. Every row is met but those about memory, which faults_test.cpp meets.
TEST(Tool, ErrorsAreThoseOfTheDocument) {
  const std::string readA = wasRead + "read: 5 4\nread file a\n";
  const std::string halfway =
      "Image row was read\nin cells roots\n\n" + labelling + "ha 1 sementes\n";
  const std::string negativeRead = "Image negative was read\nregMax: 0 9\n";
  const struct {
    std::string line; // or how it begins
    std::string arguments, out;
    std::string err = {}; // all of it, where the document leaves words open
    std::string before = {};
  } cases[] = {
      {"TOOL <input", "in.pgm out", ""}, // the image is not looked for
      {"Invalid opt", "in.pgm out dtx", wasRead, "Invalid opt dtx\n"},
      {"Invalid opt", "in.pgm out Labels", wasRead, "Invalid opt Labels\n"},
      {"Invalid number", "in.pgm out regMax 1", wasRead},
      {"Invalid number", "in.pgm out regMin 1 2 3", wasRead},
      {"Invalid number", "in.pgm out cells", wasRead},
      {"Invalid number", "in.pgm out cells 1 2", wasRead},
      {"value not suplied for <uniform", "in.pgm out frame", wasRead},
      {"value not suplied for <label", "in.pgm out frame 1", wasRead},
      {"value not suplied for <label", "in.pgm out frame 1 7 8", wasRead},
      {"invalid seed file", "in.pgm out join a", wasRead},
      {"ifCellsRoots: N steps", "in.pgm out cells 1000001", wasRead},
      {"could not open file FILE\n", "missing out nonsense", "", "could not open file missing\n"},
      {"unknown file", "/dev/null out dt", "", "unknown file format; trying to read \n"},
      {"unknown file", "/dev/zero out dt", ""},
      {"unknown file", "labeled.pgm out dt", ""},
      {"imReadImage: FILE: the header", "comment out dt", ""},
      {"imReadImage: FILE: impossible", "huge out dt", ""},
      {"error reading file", "short out dt", "",
       "error reading file short; expecting 9 pixels, read 2\n"},
      {"imReadImage: error", "/proc/self/mem out dt", ""},
      {"ifFrameAsRoots", "row out frame 0", "Image row was read\n"},
      {"ifCellsRoots: an", "colour out cells 1", "Image colour was read\n"},
      {"ifRegionalMaximaAsRoots", "negative out regMax 0 9", negativeRead},
      {"Could not open file FILE for r", "in.pgm out join a missing", readA,
       "Could not open file missing for reading\n"},
      {"invalid number", "in.pgm out join a bad", readA,
       "invalid number of roots in file bad\nerror reading seeds file bad\n"},
      {"ifReadRoots", "in.pgm out join a /proc/self/mem", readA},
      {"Could not open file FILE for w", "in.pgm no/out labels", wasRead,
       "Could not open file no/out for writing\n"},
      {"ifSaveRoots", "in.pgm /dev/full labels", wasRead},
      {"could not open file labeled", "row out cells 0", halfway},
      {"error writing image", "row out cells 0", halfway, "",
       "rmdir labeled.pgm; ln -s /dev/full labeled.pgm;"},
      {"TOOL: could", "in.pgm new labels >/dev/full", ""},
  };
  std::set<std::string> met;
  const std::vector<ErrorRow> rows = documentedErrors();
  for (const auto &c : cases) {
    SCOPED_TRACE(c.arguments);
    const auto row = std::find_if(rows.begin(), rows.end(),
                                  [&](const ErrorRow &r) { return r.line.starts_with(c.line); });
    ASSERT_NE(row, rows.end()) << c.line;
    met.insert(row->line);
    const TemporaryFolder folder;
    folder.write("in.pgm", sample);
    folder.write("row", "P2 3 1 9 1 2 3");
    folder.write("comment", "P2 3 # columns\n1 9 1 2 3");
    folder.write("huge", "P5 65536 65536 9 ");
    folder.write("short", "P5 3 3 9 12");
    folder.write("colour", "P6 1 1 9 123");
    folder.write("negative", "P2 1 1 -5 -1");
    folder.write("out", "precious");
    std::filesystem::create_directory(folder.path("labeled.pgm"));
    folder.write("a", "1\n1 1 4\n");
    folder.write("bad", "0\n");
    const ToolRun run = runTool(folder, c.arguments, c.before);
    EXPECT_EQ(run.status, row->status);
    EXPECT_EQ(run.out.substr(0, row->isOnError ? run.out.npos : c.out.size()), c.out);
    EXPECT_EQ(run.err.empty(), !row->isOnError) << run.err;
    EXPECT_TRUE(row->matches(row->isOnError ? run.err : run.out)) << run.err;
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'),
              row->isOnError ? std::count(row->line.begin(), row->line.end(), '\n') : 0);
    EXPECT_TRUE(c.err.empty() || run.err == c.err) << run.err;
    EXPECT_EQ(contentsOf(folder.path("out")), "precious"); // a failure leaves files alone
  }
  for (const ErrorRow &row : rows)
    EXPECT_NE(met.contains(row.line), row.isAboutMemory()) << row.line;
}

// Small pictures whose roots a person can find by eye.
TEST(Tool, RunsOnPictures) {
  const std::string peaks = "P2 5 3 9\n" // two maxima of 300 and 9; the minima are at the frame
                            "0 1 1 1 1\n1 300 1 9 1\n1 1 1 1 0\n";
  const std::string binary = "P5\n5 2\n255\n" + std::string("\0\xff\xff\0\0\0\0\0\0\xff", 10);
  const struct {
    const char *what;
    std::string image;
    const char *option, *out; // before the lines of labelling
    int n;
    std::string roots; // after their number
  } cases[] = {
      {"maxima in a range", peaks, "regMax 9 300", "regMax: 9 300\n", 2, "1 1 1\n3 1 2\n"},
      {"labels are not renumbered", peaks, "regMax 9 9", "regMax: 9 9\n", 1, "3 1 2\n"},
      {"bounds the wrong way round", peaks, "regMax 300 9", "regMax: 300 9\n", 0, ""},
      {"parameters beyond 32 bits", peaks, "regMin -99999999999 0", "regMin: -2147483648 0\n", 2,
       "0 0 1\n4 2 2\n"},
      {"0 and 255", binary, "regMax 0 255", "regMax: 0 255\n", 3, "1 0 1\n2 0 1\n4 1 2\n"},
      {"contours, one object at the frame", binary, "dt", "", 3, "1 0 1\n2 0 4\n4 1 7\n"},
      {"one column, extra parameters", "P2 1 4 1 0 1 1 1", "dt 1 2", "", 1, "0 1 3\n"},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    const TemporaryFolder folder;
    folder.write("in.pgm", c.image);
    expectRun(folder, std::string("in.pgm out ") + c.option,
              wasRead + c.out + (c.out[0] == '\0' ? "" : labelling) + savedRoots(c.n),
              std::to_string(c.n) + "\n" + c.roots);
  }
}

// The cells of small pictures: the roots and the class image.
TEST(Tool, Cells) {
  const std::string blobs = "P2 7 3 9 0 0 0 0 0 0 0 0 9 0 0 0 9 0 0 0 0 0 0 0 0";
  const std::string noise =
      "P2 8 6 9 7 9 5 4 2 2 0 5 8 7 9 1 5 8 9 0 6 2 7 6 2 2 3 0 1 2 8 9 1 6 1 "
      "4 3 3 6 1 4 3 6 4 5 0 3 0 6 0 6 7";
  const struct {
    const char *what;
    std::string image;
    int steps, nMarkers, nRoots; // steps of the filter
    std::string roots;           // after their number
    Matrix classes;
  } cases[] = {
      // clang-format off
      {"the first basin takes the middle column, and the line", blobs, 0, 2, 5,
       "3 0 1\n1 1 2\n3 1 1\n5 1 2\n3 2 1\n",
       {{0, 0, 0, 1, 0, 0, 0}, {0, 2, 0, 1, 0, 2, 0}, {0, 0, 0, 1, 0, 0, 0}}},
      {"one blob has no lines", "P5 3 2 255\n\1\1\1\1\x90\x90", -4, 2, 2,
       "1 1 2\n2 1 2\n", {{0, 0, 0}, {0, 2, 2}}},
      {"noise, checked with an independent program", noise, 3, 8, 17,
       "0 0 2\n1 0 2\n0 1 2\n1 1 2\n4 1 1\n5 1 1\n6 1 1\n7 1 1\n4 2 1\n7 2 1\n4 3 1\n4 4 1\n6 4 2\n"
       "7 4 2\n4 5 1\n6 5 2\n7 5 2\n",
       {{2, 2, 0, 0, 0, 0, 0, 0}, {2, 2, 0, 0, 1, 1, 1, 1}, {0, 0, 0, 0, 1, 0, 0, 1},
        {0, 0, 0, 0, 1, 0, 0, 0}, {0, 0, 0, 0, 1, 0, 2, 2}, {0, 0, 0, 0, 1, 0, 2, 2}}},
      {"negative pixels, higher than white when negated", "P2 4 1 9 6 -1 -3 8", 0, 3, 3,
       "0 0 2\n1 0 1\n3 0 2\n", Matrix{{2, 1, 0, 2}}},
      {"an image of 0 has no markers", "P2 2 1 9 0 0", 1, 0, 0, "", Matrix{{0, 0}}},
      // clang-format on
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    const TemporaryFolder folder;
    folder.write("in.pgm", c.image);
    std::string out = wasRead + "in cells roots\n\n";
    for (int i = 1; i <= c.steps; ++i)
      out += "radius is " + std::to_string(i) + "\n";
    out += labelling + "ha " + std::to_string(c.nMarkers) + " sementes\n" + savedRoots(c.nRoots);
    expectRun(folder, "in.pgm out cells " + std::to_string(c.steps), out,
              std::to_string(c.nRoots) + "\n" + c.roots);
    const imImagePtr classes = makeImage(c.classes);
    imSaveImage(folder.path("expected").c_str(), classes.get());
    EXPECT_EQ(contentsOf(folder.path("labeled.pgm")), contentsOf(folder.path("expected")));
  }
}

} // namespace
