// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The tables of docs/errors.md.
#pragma once

#include <string>
#include <vector>

/// What a run of the tool prints where something is wrong.
struct ErrorRow {
  std::string section;
  std::string line; // or lines, with their ends; some words in capitals stand for any
  bool isOnError;   // on standard error, else on standard output
  int status;

  /// Runs do not meet these by their arguments and files.
  bool isAboutMemory() const { return section == "Memory and random numbers"; }

  /// Whether that is what was printed; behind and before other text on standard output.
  bool matches(const std::string &printed) const;
};

/// All rows; throws where one is malformed.
std::vector<ErrorRow> documentedErrors();
