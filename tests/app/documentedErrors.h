// The tables of docs/errors.md.
#pragma once

#include <regex>
#include <string>
#include <vector>

/// What a run of the tool prints where something is wrong.
struct ErrorRow {
  std::string section;
  std::string line;    // or lines, with their ends; some words in capitals stand for any
  std::regex expected; // what `line` stands for
  bool isOnError;      // on standard error, else on standard output
  int status;

  /// Runs do not meet these by their arguments and files.
  bool isAboutMemory() const { return section == "Memory and random numbers"; }
};

/// All rows; throws where one is malformed.
std::vector<ErrorRow> documentedErrors();
