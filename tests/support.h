// What the tests share: images from matrices that a person can read, random images, scratch files,
// and whole runs of the tool.
#pragma once

#include "base/arith.h"
#include "base/error.h"
#include "base/scan.h"
#include "ift/core/ifRoots.h"
#include "image/imImage.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>
#include <string_view>
#include <vector>

using seedforest::detail::maxInt;
using seedforest::detail::minInt;

using Matrix = std::vector<std::vector<int>>;

/// An image of one band with these rows; its maxValue is its largest value.
imImagePtr makeImage(const Matrix &rows, char type = imTypeAscii);

/// The same for several bands; maxValue is the largest value of band 0.
imImagePtr makeBands(const std::vector<Matrix> &bands, char type);

/// An image of zeros, of one band in type 2 where nothing else is said.
imImagePtr blank(int ncols, int nrows, int nbands = 1, char type = imTypeAscii);
imImagePtr blankLike(const imImagePtr &image, int nbands = 1, char type = imTypeAscii);

/// A band as rows.
Matrix bandOf(const imImage *image, int b = 0);
Matrix bandOf(const imImagePtr &image, int b = 0);

/// Takes an image over, which has this type, maxValue and bands.
void expectImage(const char *what, imImage *image, char type, int maxValue,
                 const std::vector<Matrix> &bands);

/// A uniformly random value lo .. hi.
int pick(std::mt19937 &random, int lo, int hi);

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

/// The call ends the process with status 1 and a message that matches.
#define EXPECT_FATAL(call, message)                                                                \
  EXPECT_EXIT(static_cast<void>(call), testing::ExitedWithCode(1), message)

/// What some work prints on standard output and on standard error.
template <class Work>
std::string printedBy(Work work) {
  testing::internal::CaptureStdout();
  work();
  return testing::internal::GetCapturedStdout();
}
template <class Work>
std::string errorsOf(Work work) {
  testing::internal::CaptureStderr();
  work();
  return testing::internal::GetCapturedStderr();
}

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

  /// The names of what is in it, sorted.
  std::vector<std::string> names() const;

private:
  std::filesystem::path folder_;
};

/// Text that comes in pieces of some bytes, and whose end may be an error.
class Pieces : public seedforest::detail::Text {
public:
  explicit Pieces(std::string_view whole, std::size_t size, bool endsInError = false)
      : Text(whole.substr(0, 0)), whole_(whole), size_(size), endsInError_(endsInError) {}

  bool refill() override;
  bool hasFailed() const override { return endsInError_ && asked_ > whole_.size(); }

  /// How many bytes somebody has asked for; more than there are where the end has been met.
  std::size_t asked() const { return asked_; }

private:
  std::string_view whole_;
  std::size_t size_;
  bool endsInError_;
  std::size_t asked_ = 0;
};

/// All bytes of a file; "(no such file)" where it cannot be opened.
std::string contentsOf(const std::string &path);
