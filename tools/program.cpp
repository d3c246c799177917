// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "program.h"

#include "app/signals.h"
#include "seedforest/seedforest.hpp"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <getopt.h>
#include <optional>
#include <unistd.h>

namespace seedforest::tools {

namespace {

bool isQuiet = false;
bool isBarShown = false;

void clearBar() {
  if (isBarShown)
    std::fputs("\r\033[K", stderr);
  isBarShown = false;
}

// A bar on standard error, where that is a terminal, from the second second on.
class ProgressBar {
public:
  ProgressBar() {
    if (!isQuiet && isatty(STDERR_FILENO) != 0)
      scope_.emplace([this](double fraction) {
        show(fraction);
        return true;
      });
  }
  ~ProgressBar() { clearBar(); }
  ProgressBar(const ProgressBar &) = delete;
  ProgressBar &operator=(const ProgressBar &) = delete;

private:
  using Clock = std::chrono::steady_clock;

  void show(double fraction) {
    constexpr int width = 40;
    const auto now = Clock::now();
    if (now < next_)
      return;
    next_ = now + std::chrono::milliseconds(100);
    isBarShown = true;
    const int filled = static_cast<int>(width * std::clamp(fraction, 0.0, 1.0));
    const std::string bar = std::string(static_cast<std::size_t>(filled), '#');
    std::fprintf(stderr, "\r[%-*s] %3d %%", width, bar.c_str(), filled * 100 / width);
    std::fflush(stderr);
  }

  Clock::time_point next_ = Clock::now() + std::chrono::seconds(1);
  std::optional<WithProgress> scope_;
};

std::vector<Option> withCommonOptions(const Program &program) {
  std::vector<Option> options = program.options;
  options.push_back({"quiet", nullptr, "no notes and no progress bar",
                     [](const std::string &) { isQuiet = true; }});
  options.push_back({"help", nullptr, "this text", nullptr});
  options.push_back({"version", nullptr, "the version", nullptr});
  return options;
}

void printHelp(const Program &program) {
  std::printf("usage: %s [options] %s\n\n%s\n\noptions:\n", program.name, program.operands,
              program.help);
  for (const Option &option : withCommonOptions(program)) {
    std::string head = std::string("--") + option.name;
    if (option.argument != nullptr)
      head += std::string(" ") + option.argument;
    std::printf("  %-24s  %s\n", head.c_str(), option.help);
  }
}

// The number of the next option, -1 at their end.
int nextOption(int argc, char **argv, const std::vector<option> &table) {
  int found = 0;
  const int letter = getopt_long(argc, argv, "hVq", table.data(), &found);
  const auto named = [&](const char *name) {
    return static_cast<int>(
        std::ranges::find_if(
            table, [name](const option &entry) { return std::strcmp(entry.name, name) == 0; }) -
        table.begin());
  };
  switch (letter) {
  case -1:
    return -1;
  case 0:
    return found;
  case 'h':
    return named("help");
  case 'V':
    return named("version");
  case 'q':
    return named("quiet");
  default:
    throw UsageError(""); // getopt_long() has printed why
  }
}

// Operands; nothing where the answer was a text.
std::optional<Operands> parse(const Program &program, int argc, char **argv) {
  const std::vector<Option> options = withCommonOptions(program);
  std::vector<option> table;
  table.reserve(options.size() + 1);
  for (const Option &option : options)
    table.push_back(
        {option.name, option.argument == nullptr ? no_argument : required_argument, nullptr, 0});
  table.push_back({nullptr, 0, nullptr, 0});
  for (int i = 0; (i = nextOption(argc, argv, table)) >= 0;) {
    const Option &option = options[static_cast<std::size_t>(i)];
    if (option.take != nullptr) {
      option.take(optarg == nullptr ? "" : optarg);
      continue;
    }
    if (std::strcmp(option.name, "help") == 0)
      printHelp(program);
    else
      std::printf("%s %s\n", program.name, SEEDFOREST_VERSION);
    return std::nullopt;
  }
  Operands operands(argv + optind, argv + argc);
  if (operands.size() < program.leastOperands || operands.size() > program.mostOperands)
    throw UsageError(std::string("the operands are ") + program.operands);
  return operands;
}

int statusOf(const Program &program, int argc, char **argv,
             const std::function<void(const Operands &)> &work) {
  try {
    const std::optional<Operands> operands = parse(program, argc, argv);
    const ProgressBar bar;
    if (operands.has_value())
      work(*operands);
    return 0;
  } catch (const UsageError &error) {
    if (error.what()[0] != '\0')
      std::fprintf(stderr, "%s: %s\n", program.name, error.what());
    std::fprintf(stderr, "%s --help tells more\n", program.name);
    return 2;
  } catch (const Error &error) {
    std::fprintf(stderr, "%s: %s\n", program.name, error.what());
  } catch (const std::bad_alloc &) {
    std::fprintf(stderr, "%s: could not allocate memory!\n", program.name);
  } catch (const std::length_error &) {
    std::fprintf(stderr, "%s: could not allocate memory!\n", program.name);
  }
  return 1;
}

} // namespace

int runProgram(const Program &program, int argc, char **argv,
               const std::function<void(const Operands &)> &work) {
  removeUnfinishedFilesOnSignals();
  const int status = statusOf(program, argc, argv, work);
  // ferror() reports earlier writes that failed.
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0)
    return status;
  std::fprintf(stderr, "%s: could not write to standard output\n", program.name);
  return status == 0 ? 1 : status;
}

void note(const std::string &line) {
  if (isQuiet)
    return;
  clearBar();
  std::fprintf(stderr, "%s\n", line.c_str());
}

int numberIn(const std::string &text, const std::string &what, int least, int most) {
  int value = 0;
  const char *end = text.data() + text.size();
  const auto scanned = std::from_chars(text.data(), end, value);
  if (scanned.ec == std::errc::invalid_argument || scanned.ptr != end)
    throw UsageError(what + ": \"" + text + "\" is no whole number");
  if (scanned.ec != std::errc() || value < least || value > most)
    throw UsageError(what + ": " + text + " is not in " + std::to_string(least) + " .. " +
                     std::to_string(most));
  return value;
}

std::size_t wordIn(const std::string &text, const std::string &what,
                   const std::vector<std::string> &words) {
  const auto found = std::ranges::find(words, text);
  if (found != words.end())
    return static_cast<std::size_t>(found - words.begin());
  std::string all;
  for (const std::string &word : words)
    all += (all.empty() ? "" : ", ") + word;
  throw UsageError(what + ": \"" + text + "\" is none of " + all);
}

} // namespace seedforest::tools
