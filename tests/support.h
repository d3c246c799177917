// What the tests share: images from matrices that a person can read, random images, scratch files,
// and whole runs of the tool.
#pragma once

#include "ift/core/ifRoots.h"
#include "image/imImage.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>
#include <string_view>
#include <vector>

using Matrix = std::vector<std::vector<int>>;

/// An image of one band with these rows; its maxValue is its largest value.
imImagePtr makeImage(const Matrix &rows, char type = imTypeAscii);

/// A band as rows.
Matrix bandOf(const imImage *image, int b = 0);

/// An image of uniformly random values lo .. hi, maxValue hi.
imImagePtr randomImage(std::mt19937 &random, int nbands, char type, int ncols, int nrows, int lo,
                       int hi);

struct Root {
  int pixel;
  int label;
  int value = 0;
  bool operator==(const Root &) const = default;
};

ifRootsPtr makeRoots(const std::vector<Root> &roots);
std::vector<Root> listOf(const ifRoots *roots);

/// A new empty folder, removed with all that is in it.
class TemporaryFolder {
public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder &) = delete;
  TemporaryFolder &operator=(const TemporaryFolder &) = delete;

  std::string path(std::string_view name) const { return (folder_ / name).string(); }

  /// Writes a file and returns its path.
  std::string write(std::string_view name, std::string_view bytes) const;

private:
  std::filesystem::path folder_;
};

/// All bytes of a file; "(no such file)" where it cannot be opened.
std::string contentsOf(const std::string &path);

/// What a run of the tool left behind.
struct ToolRun {
  int status;
  std::string out;
  std::string err;
};

/// Runs the tool in a folder, `arguments` as the shell takes them.
ToolRun runTool(const TemporaryFolder &folder, const std::string &arguments);
