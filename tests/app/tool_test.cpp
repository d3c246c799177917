// Whole runs of the tool: both streams, the exit status and the roots file, to the byte.

#include "support.h"

namespace {

const char *const sample = "P2\n# a label image\n4 3\n300\n0 0 1 0\n2 -3 300 0\n0 0 0 5\n";
const char *const sampleLabels = "4\n2 0 1\n0 1 2\n2 1 300\n3 2 5\n";

TEST(Tool, UsageWithoutAnOption) {
  const std::string usage =
      "\n" SEEDFOREST_TOOL " <input image> <output roots file> <opt> [par(s)]\n"
      "valid <opt> values:\n"
      "\tregMax (regional maxima in [min, max]) : par(s) = min max\n"
      "\tregMin (regional minima in [min, max]) : par(s) = min max\n"
      "\tdt     (contour border of binary img)  : par(s) = none\n"
      "\tjoin   (joins two roots files)         : par(s) = <roots_file2>\n"
      "\tframe  (seeds are the frame pixels)    : par(s) = <uniform labels> "
      "<label, if uniform labels is selected>\n"
      "\tlabels (label image  -> seeds)         : par(s) = none\n"
      "\tcells  (seeds to extract cells)        : par(s) = none\n"
      "\n";
  const TemporaryFolder folder;
  for (const char *arguments : {"", "in.pgm", "in.pgm out"}) {
    const ToolRun run = runTool(folder, arguments);
    EXPECT_EQ(run.out, usage);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.status, 0);
  }
  EXPECT_EQ(contentsOf(folder.path("out")), "(no such file)");
}

struct Case {
  const char *arguments;
  int status;
  std::string out;
  std::string err;
  std::string roots; // the file "out" afterwards
};

const std::string wasRead = "Image in.pgm was read\n";
const std::string none = "(no such file)";

// A run in a folder with "in.pgm", which prints this and leaves this file "out".
void expectRun(const TemporaryFolder &folder, const std::string &arguments, int status,
               const std::string &out, const std::string &err, const std::string &roots) {
  SCOPED_TRACE(arguments);
  const ToolRun run = runTool(folder, arguments);
  EXPECT_EQ(run.out, out);
  EXPECT_EQ(run.err, err);
  EXPECT_EQ(run.status, status);
  EXPECT_EQ(contentsOf(folder.path("out")), roots);
}

std::string savedRoots(int n) {
  return "there are " + std::to_string(n) + " roots\ndone!\n";
}

TEST(Tool, Runs) {
  const std::string frame =
      "10\n0 0 1\n1 0 2\n2 0 3\n3 0 4\n0 2 5\n1 2 6\n2 2 7\n3 2 8\n0 1 9\n3 1 10\n";
  const std::string sevens =
      "10\n0 0 7\n1 0 7\n2 0 7\n3 0 7\n0 2 7\n1 2 7\n2 2 7\n3 2 7\n0 1 7\n3 1 7\n";
  const std::string joined = "3\n1 1 4\n1 1 4\n9 0 -2\n";
  const std::string readA = "read: 5 4\nread file a\n";
  const std::string readB = "read: 5 4\nread: 9 -2\nread file b\n";
  const std::string wrongCount = "Invalid number of parameters\n";
  const std::string labelMissing = "value not suplied for <label>\n";
  const Case cases[] = {
      {"in.pgm out labels", 0, wasRead + savedRoots(4), "", sampleLabels},
      {"in.pgm out labels more 1 2", 0, wasRead + savedRoots(4), "", sampleLabels},
      {"in.pgm out frame", 0, wasRead, "value not suplied for <uniform label>\n", none},
      {"in.pgm out frame 0", 0, wasRead + savedRoots(10), "", frame},
      {"in.pgm out frame no-number", 0, wasRead + savedRoots(10), "", frame},
      {"in.pgm out frame 0 7", 0, wasRead + savedRoots(10), "", frame},
      {"in.pgm out frame 0 7 8 9", 0, wasRead + savedRoots(10), "", frame},
      {"in.pgm out frame 1", 0, wasRead, labelMissing, none},
      {"in.pgm out frame 1 7 8", 0, wasRead, labelMissing, none},
      {"in.pgm out frame -1x 7x", 0, wasRead + savedRoots(10), "", sevens},
      {"in.pgm out join a", 0, wasRead, "invalid seed file(s) name(s)\n", none},
      {"in.pgm out join a b", 0, wasRead + readA + readB + savedRoots(3), "",
       "3\n1 1 4\n1 1 4\n1 2 -2\n"},
      {"in.pgm out join a bad", 0, wasRead + readA,
       "invalid number of roots in file bad\nerror reading seeds file bad\n", none},
      {"in.pgm out join bad b", 0, wasRead,
       "invalid number of roots in file bad\nerror reading seeds file bad\n", none},
      {"in.pgm out join a missing", 1, wasRead + readA, "Could not open file missing for reading\n",
       none},
      {"in.pgm out regMax 1", 1, wasRead + wrongCount, "", none},
      {"in.pgm out regMin 1 2 3", 1, wasRead + wrongCount, "", none},
      {"in.pgm out cells", 1, wasRead + wrongCount, "", none},
      {"in.pgm out cells 1 2", 1, wasRead + wrongCount, "", none},
      {"in.pgm out dtx", 1, wasRead, "Invalid opt dtx\n", none},
      {"in.pgm out Labels", 1, wasRead, "Invalid opt Labels\n", none},
      {"in.pgm out frames 0", 1, wasRead, "Invalid opt frames\n", none},
      {"in.pgm out ''", 1, wasRead, "Invalid opt \n", none},
      {"missing out nonsense", 1, "", "could not open file missing\n", none},
      {"/dev/null out labels", 1, "", "unknown file format; trying to read \n", none},
      {"in.pgm no/out labels", 1, wasRead, "Could not open file no/out for writing\n", none},
      {"- out labels", 1, "", "could not open file -\n", none},
      {"/dev/stdin out labels <in.pgm", 0, "Image /dev/stdin was read\n" + savedRoots(4), "",
       sampleLabels},
  };
  for (const Case &c : cases) {
    const TemporaryFolder folder;
    folder.write("in.pgm", sample);
    folder.write("a", "1\n1 1 4\n");
    folder.write("b", "2\n1 1 4\n1 2 -2\n");
    folder.write("bad", "0\n");
    expectRun(folder, c.arguments, c.status, c.out, c.err, c.roots);
  }
}

// Small pictures whose roots a person can find by eye. Each run prints its lines and leaves its
// roots.
TEST(Tool, RunsOnPictures) {
  const std::string twice = "in ifLabelImage\nin ifLabelImage\n";
  const std::string peaks = "P2 5 3 9\n" // two maxima of 300 and 9; the minima are at the frame
                            "0 1 1 1 1\n1 300 1 9 1\n1 1 1 1 0\n";
  const std::string binary = "P5\n5 2\n255\n" + std::string("\0\xff\xff\0\0\0\0\0\0\xff", 10);
  const struct {
    const char *what;
    std::string image;
    const char *option;
    std::string out; // before the count
    int n;
    std::string roots;
  } cases[] = {
      {"maxima in a range", peaks, "regMax 9 300", "regMax: 9 300\n" + twice, 2,
       "2\n1 1 1\n3 1 2\n"},
      {"labels are not renumbered", peaks, "regMax 9 9", "regMax: 9 9\n" + twice, 1, "1\n3 1 2\n"},
      {"bounds the wrong way round", peaks, "regMax 300 9", "regMax: 300 9\n" + twice, 0, "0\n"},
      {"parameters beyond 32 bits", peaks, "regMin -99999999999 0",
       "regMin: -2147483648 0\n" + twice, 2, "2\n0 0 1\n4 2 2\n"},
      {"values 0 and 255: maxima", binary, "regMax 0 255", "regMax: 0 255\n" + twice, 3,
       "3\n1 0 1\n2 0 1\n4 1 2\n"},
      {"values 0 and 255: minima", binary, "regMin 0 255", "regMin: 0 255\n" + twice, 7,
       "7\n0 0 1\n3 0 1\n4 0 1\n0 1 1\n1 1 1\n2 1 1\n3 1 1\n"},
      {"a constant image of 0 has no maximum", "P5 2 1 255\n" + std::string(2, '\0'), "regMax 0 0",
       "regMax: 0 0\n" + twice, 0, "0\n"},
      {"a constant image of 255 has no minimum", "P5 2 1 255\n\xff\xff", "regMin 0 255",
       "regMin: 0 255\n" + twice, 0, "0\n"},
      {"one row", "P2 4 1 5 1 5 5 0", "regMax 0 9", "regMax: 0 9\n" + twice, 2,
       "2\n1 0 1\n2 0 1\n"},
      {"contours, one object at the frame", binary, "dt", "", 3, "3\n1 0 1\n2 0 4\n4 1 7\n"},
      {"one column", "P2 1 4 1 0 1 1 1", "dt", "", 1, "1\n0 1 3\n"},
      {"extra parameters of dt", "P2 1 2 1 0 1", "dt 1 2", "", 1, "1\n0 1 3\n"},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    const TemporaryFolder folder;
    folder.write("in.pgm", c.image);
    expectRun(folder, std::string("in.pgm out ") + c.option, 0, wasRead + c.out + savedRoots(c.n),
              "", c.roots);
  }
}

// The cells of small pictures: what is printed, the roots and the class image.
TEST(Tool, Cells) {
  const std::string begin = wasRead + "in cells roots\n\n";
  const std::string labelling = "in ifLabelImage\nin ifLabelImage\n";
  const std::string noise = "P2 8 6 9 7 9 5 4 2 2 0 5 8 7 9 1 5 8 9 0 6 2 7 6 2 2 3 0 1 2 8 9 1 6 "
                            "1 4 3 3 6 1 4 3 6 4 5 0 3 0 6 0 6 7";
  const struct {
    const char *what;
    std::string image;
    const char *steps;
    std::string out; // before the count
    int n;
    std::string roots;
    std::string classes;
  } cases[] = {
      {"two blobs: the first basin takes the middle column, and the line",
       "P2 7 3 9 0 0 0 0 0 0 0 "
       "0 9 0 0 0 9 0 0 0 0 0 0 0 0",
       "0", labelling + "ha 2 sementes\n", 5, "5\n3 0 1\n1 1 2\n3 1 1\n5 1 2\n3 2 1\n",
       "P2\n7 3\n2\n    0     0     0     1     0     0     0     0     2     0     1     0"
       "     2     0     0     0 \n    0     1     0     0     0 "},
      {"one blob has no lines", std::string("P5 3 2 255\n") + "\1\1\1\1\x90\x90", "-4",
       labelling + "ha 2 sementes\n", 2, "2\n1 1 2\n2 1 2\n",
       "P2\n3 2\n2\n    0     0     0     0     2     2 "},
      {"a filter of two steps levels single pixels", "P2 3 3 9 5 5 5 5 9 5 5 5 5", "2",
       "radius is 1\nradius is 2\n" + labelling + "ha 9 sementes\n", 9,
       "9\n0 0 2\n1 0 2\n2 0 2\n0 1 2\n1 1 2\n2 1 2\n0 2 2\n1 2 2\n2 2 2\n",
       "P2\n3 3\n2\n    2     2     2     2     2     2     2     2     2 "},
      {"two cells that touch, a valley of one column between",
       "P5 9 5 255\n"
       "000000000"
       "0kkkckkk0"
       "0kzkckzk0"
       "0kkkckkk0"
       "000000000",
       "0", labelling + "ha 2 sementes\n", 7,
       "7\n4 0 1\n4 1 1\n2 2 2\n4 2 1\n6 2 2\n4 3 1\n4 4 1\n",
       "P2\n9 5\n2\n    0     0     0     0     1     0     0     0     0     0     0     0     0  "
       "   1     0     0 \n    0     0     0     0     2     0     1     0     2     0     0     0 "
       "    0     0     0     1 \n    0     0     0     0     0     0     0     0     1     0     "
       "0     0     0 "},
      {"noise, checked with an independent program", noise, "3",
       "radius is 1\nradius is 2\nradius is 3\n" + labelling + "ha 8 sementes\n", 17,
       "17\n0 0 2\n1 0 2\n0 1 2\n1 1 2\n4 1 1\n5 1 1\n6 1 1\n7 1 1\n4 2 1\n7 2 1\n4 3 1\n4 4 1\n6 "
       "4 2\n7 4 2\n4 5 1\n6 5 2\n7 5 2\n",
       "P2\n8 6\n2\n    2     2     0     0     0     0     0     0     2     2     0     0     1  "
       "   1     1     1 \n    0     0     0     0     1     0     0     1     0     0     0     0 "
       "    1     0     0     0 \n    0     0     0     0     1     0     2     2     0     0     "
       "0     0     1     0     2     2 \n"},
      {"noise, checked with an independent program", noise, "4",
       "radius is 1\nradius is 2\nradius is 3\nradius is 4\n" + labelling + "ha 27 sementes\n", 27,
       "27\n0 0 2\n1 0 2\n2 0 2\n3 0 2\n4 0 2\n5 0 2\n6 0 2\n0 1 2\n1 1 2\n2 1 2\n3 1 2\n4 1 2\n5 "
       "1 2\n0 2 2\n1 2 2\n2 2 2\n3 2 2\n4 2 2\n0 3 2\n1 3 2\n2 3 2\n3 3 2\n0 4 2\n1 4 2\n2 4 2\n0 "
       "5 2\n1 5 2\n",
       "P2\n8 6\n2\n    2     2     2     2     2     2     2     0     2     2     2     2     2  "
       "   2     0     0 \n    2     2     2     2     2     0     0     0     2     2     2     2 "
       "    0     0     0     0 \n    2     2     2     0     0     0     0     0     2     2     "
       "0     0     0     0     0     0 \n"},
      {"an image of 0 has no markers", "P2 2 1 9 0 0", "1",
       "radius is 1\n" + labelling + "ha 0 sementes\n", 0, "0\n", "P2\n2 1\n0\n    0     0 "},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.what);
    const TemporaryFolder folder;
    folder.write("in.pgm", c.image);
    expectRun(folder, std::string("in.pgm out cells ") + c.steps, 0,
              begin + c.out + savedRoots(c.n), "", c.roots);
    EXPECT_EQ(contentsOf(folder.path("labeled.pgm")), c.classes);
  }
}

TEST(Tool, CellsThatCannotBe) {
  const TemporaryFolder folder;
  folder.write("in.pgm", "P2 2 1 9 0 5");
  folder.write("colour.ppm", "P6 1 1 255\nabc");
  for (const char *arguments : {"in.pgm out cells 1000001", "colour.ppm out cells 1"}) {
    const ToolRun run = runTool(folder, arguments);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out.find("in cells roots"), std::string::npos);
    EXPECT_EQ(run.err.substr(0, 14), "ifCellsRoots: ");
  }
  std::filesystem::create_directory(folder.path("labeled.pgm"));
  const ToolRun run = runTool(folder, "in.pgm out cells 0");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "could not open file labeled.pgm for writing\n");
  EXPECT_EQ(contentsOf(folder.path("out")), none);
}

TEST(Tool, FailuresLeaveAnExistingFileAlone) {
  const TemporaryFolder folder;
  folder.write("row.pgm", "P2 3 1 9 1 2 3");
  folder.write("out", "precious");
  const ToolRun run = runTool(folder, "row.pgm out frame 0");
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.err.find("ifFrameAsRoots"), std::string::npos);
  EXPECT_EQ(contentsOf(folder.path("out")), "precious");
}

TEST(Tool, FullDisksAreNoticed) {
  const TemporaryFolder folder;
  folder.write("in.pgm", sample);
  const ToolRun roots = runTool(folder, "in.pgm /dev/full labels");
  EXPECT_EQ(roots.status, 1);
  EXPECT_EQ(roots.out, wasRead);
  EXPECT_NE(roots.err.find("/dev/full"), std::string::npos);
  const ToolRun output = runTool(folder, "in.pgm out labels >/dev/full");
  EXPECT_EQ(output.status, 1);
}

TEST(Tool, ReadsFromAPipe) {
  const TemporaryFolder folder;
  folder.write("in.pgm", sample);
  const ToolRun run =
      runTool(folder, "/dev/stdin out labels <<EOF\n" + std::string(sample) + "EOF");
  EXPECT_EQ(contentsOf(folder.path("out")), sampleLabels);
  EXPECT_EQ(run.status, 0);
}

} // namespace
