// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "documentedErrors.h"

#include <fnmatch.h>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>

namespace {

// The lines quoted in a cell, with their ends.
std::string linesIn(const std::string &cell) {
  std::string lines, part;
  std::istringstream parts(cell);
  for (bool isQuoted = false; std::getline(parts, part, '`'); isQuoted = !isQuoted)
    lines += isQuoted ? part + "\n" : "";
  return lines;
}

// A row's cells; none where that is no row.
std::vector<std::string> cellsOf(const std::string &row) {
  std::vector<std::string> cells;
  std::size_t at = 2;
  for (std::size_t end; (end = row.find(" |", at)) != row.npos; at = end + 3)
    cells.push_back(row.substr(at, end - at));
  return cells;
}

} // namespace

bool ErrorRow::matches(const std::string &printed) const {
  std::string pattern, word;
  for (const char c : line + '\0') {
    if (c >= 'A' && c <= 'Z') {
      word += c;
      continue;
    }
    const bool isAny = std::set<std::string>{"FILE", "WORD", "TOOL", "N"}.contains(word);
    pattern += isAny ? "*" : word;
    pattern += std::string(c == '[' || c == '?' || c == '*' || c == '\\' ? "\\" : "") + c;
    word.clear();
  }
  pattern.pop_back();
  return fnmatch((isOnError ? pattern : "*" + pattern + "*").c_str(), printed.c_str(), 0) == 0;
}

std::vector<ErrorRow> documentedErrors() {
  std::vector<ErrorRow> rows;
  std::ifstream document(SEEDFOREST_SOURCES "/docs/errors.md");
  std::string text, section;
  while (std::getline(document, text)) {
    if (text.starts_with("## "))
      section = text.substr(3);
    if (!text.starts_with("| ") || text.starts_with("| situation "))
      continue;
    const std::vector<std::string> cells = cellsOf(text);
    if (cells.size() != 5 || (cells[2] != "output" && cells[2] != "error") ||
        linesIn(cells[1]).empty())
      throw std::runtime_error("no row of errors: " + text);
    rows.push_back({section, linesIn(cells[1]), cells[2] == "error", std::stoi(cells[3])});
  }
  return rows;
}
