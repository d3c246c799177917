// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// What the tests share: images from matrices that a person can read, random images, scratch files,
// and whole runs of the tool.
#pragma once

#include "base/arith.h"
#include "base/error.h"
#include "base/scan.h"
#include "ift/core/ifRoots.h"
#include "image/imImage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

using seedforest::detail::maxInt;
using seedforest::detail::minInt;

using Matrix = std::vector<std::vector<int>>;

/// An image with these bands as rows; its maxValue is the largest value of band 0.
imImagePtr makeBands(const std::vector<Matrix> &bands, char type);
inline imImagePtr makeImage(const Matrix &rows, char type = imTypeAscii) {
  return makeBands({rows}, type);
}

/// An image of zeros, of one band in type 2 where nothing else is said.
inline imImagePtr blank(int ncols, int nrows, int nbands = 1, char type = imTypeAscii) {
  return imImagePtr(imCreateImage(nbands, type, ncols, nrows));
}
inline imImagePtr blankLike(const imImagePtr &image, int nbands = 1, char type = imTypeAscii) {
  return blank(image->ncols, image->nrows, nbands, type);
}

/// A band as rows.
Matrix bandOf(const imImage *image, int b = 0);
inline Matrix bandOf(const imImagePtr &image, int b = 0) {
  return bandOf(image.get(), b);
}

/// Takes an image over, which has this type, maxValue and bands.
void expectImage(const char *what, imImage *image, char type, int maxValue,
                 const std::vector<Matrix> &bands);

/// A uniformly random value lo .. hi.
inline int pick(std::mt19937 &random, int lo, int hi) {
  return std::uniform_int_distribution(lo, hi)(random);
}

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
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "seedforest-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr)
      throw std::runtime_error("no temporary folder");
    folder_ = name;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  TemporaryFolder(const TemporaryFolder &) = delete;
  TemporaryFolder &operator=(const TemporaryFolder &) = delete;

  std::string path(std::string_view name) const { return (folder_ / name).string(); }

  /// Writes a file and returns its path.
  std::string write(std::string_view name, std::string_view bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
    return path(name);
  }

  /// The names of what is in it.
  std::set<std::string> names() const {
    std::set<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(folder_))
      names.insert(entry.path().filename().string());
    return names;
  }

private:
  std::filesystem::path folder_;
};

/// Text that comes in pieces of some bytes, and whose end may be an error.
class Pieces : public seedforest::detail::Text {
public:
  explicit Pieces(std::string_view whole, std::size_t size, bool endsInError = false)
      : Text(whole.substr(0, 0)), whole_(whole), size_(size), endsInError_(endsInError) {}

  bool refill() override {
    const std::string_view piece = whole_.substr(std::min(asked_, whole_.size()), size_);
    at = piece.data();
    end = at + piece.size();
    asked_ += piece.empty() ? 1 : piece.size();
    return !piece.empty();
  }
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
