// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// What the tests of the C++ interface share.
#pragma once

#include "seedforest/seedforest.hpp"
#include "support.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace sf = seedforest;

inline sf::Image image(const Matrix &rows) {
  return sf::Image(makeImage(rows));
}

inline sf::Image random(int seed, int ncols, int nrows, int lo, int hi, int nbands = 1,
                        char type = imTypeAscii) {
  std::mt19937 numbers(static_cast<unsigned>(seed));
  return sf::Image(randomImage(numbers, nbands, type, ncols, nrows, lo, hi));
}

/// Works in a new folder.
class InTemporaryFolder : public testing::Test {
protected:
  InTemporaryFolder() { std::filesystem::current_path(folder.path("")); }
  ~InTemporaryFolder() override { std::filesystem::current_path(before_); }
  bool isEmpty() const { return std::filesystem::is_empty(folder.path("")); }

  TemporaryFolder folder;

private:
  std::filesystem::path before_ = std::filesystem::current_path();
};
