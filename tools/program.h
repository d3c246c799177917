// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// What the programs have in common: the command line, messages, exit statuses and a progress bar.
#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace seedforest::tools {

/// A command line that makes no sense: exit status 2.
class UsageError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

struct Option {
  const char *name;
  const char *argument; // what stands for it in the help; null where there is none
  const char *help;
  std::function<void(const std::string &argument)> take;
};

struct Program {
  const char *name;
  const char *operands;
  const char *help; // what it does, in lines
  std::size_t leastOperands;
  std::size_t mostOperands;
  std::vector<Option> options; // beside --help, --version and --quiet
};

using Operands = std::vector<std::string>;

/// Reads the command line by the rules of getopt_long and calls work(operands). Answers --help and
/// --version, and returns the exit status: 0, 1 after an error, 2 after a UsageError, with a line
/// on standard error. Unfinished outputs are removed when a signal ends the process.
int runProgram(const Program &program, int argc, char **argv,
               const std::function<void(const Operands &)> &work);

/// Prints a line on standard error, unless --quiet was given.
void note(const std::string &line);

/// A whole number within bounds, or one of some words, its place in the list.
/// Throws UsageError, which names the option or operand.
int numberIn(const std::string &text, const std::string &what,
             int least = std::numeric_limits<int>::min(),
             int most = std::numeric_limits<int>::max());
std::size_t wordIn(const std::string &text, const std::string &what,
                   const std::vector<std::string> &words);

} // namespace seedforest::tools
