#include "documentedErrors.h"

#include <fstream>
#include <stdexcept>

namespace {

// The lines quoted in a cell, with their ends.
std::string linesIn(const std::string &cell) {
  static const std::regex quoted("`([^`]+)`");
  std::string lines;
  for (std::sregex_iterator at(cell.begin(), cell.end(), quoted), end; at != end; ++at)
    lines += (*at)[1].str() + "\n";
  return lines;
}

std::regex patternOf(const std::string &lines) {
  std::string pattern = std::regex_replace(lines, std::regex("[()\\[\\]?!.]"), "\\$&");
  pattern = std::regex_replace(pattern, std::regex("\\b(FILE|WORD|TOOL)\\b"), ".*");
  return std::regex(std::regex_replace(pattern, std::regex("\\bN\\b"), "-?[0-9]+"));
}

} // namespace

std::vector<ErrorRow> documentedErrors() {
  const std::regex cells("\\| [^|]+ \\| ([^|]+) \\| (output|error) \\| ([01]) \\| [^|]+ \\|");
  std::vector<ErrorRow> rows;
  std::ifstream document(SEEDFOREST_SOURCES "/docs/errors.md");
  std::string text, section;
  while (std::getline(document, text)) {
    std::smatch row;
    if (text.starts_with("## "))
      section = text.substr(3);
    if (!text.starts_with("| ") || text.starts_with("| situation "))
      continue;
    if (!std::regex_match(text, row, cells))
      throw std::runtime_error("no row of errors: " + text);
    const std::string lines = linesIn(row[1]);
    rows.push_back({section, lines, patternOf(lines), row[2] == "error", row[3] == "1"});
  }
  return rows;
}
