// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Tables of measures.
#pragma once

#include "measures.h"

#include <functional>
#include <string>
#include <vector>

namespace seedforest::tools {

/// A column: its heading, and a region's entry.
struct Column {
  std::string name;
  std::function<std::string(const Measures &)> text;
};

/// The columns of a table; those of brightness or of each colour where there is an image.
std::vector<Column> columnsFor(const Image &image);

/// The table as comma-separated values, a line of headings first.
std::string csvOf(const std::vector<Column> &columns, const std::vector<Measures> &regions);

} // namespace seedforest::tools
