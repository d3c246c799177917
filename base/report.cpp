// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "base/report.h"

#include "base/buffer.h"
#include "base/error.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace seedforest {

namespace {

thread_local const ThrowingErrors *scope = nullptr;

} // namespace

OutOfMemory::OutOfMemory(const char *line) : Error(""), text_{} {
  std::strncpy(text_, line, sizeof text_ - 1);
}

ThrowingErrors::ThrowingErrors(NoticeFn notify, StepFn step)
    : notify_(std::move(notify)), step_(std::move(step)), outer_(scope) {
  scope = this;
}

ThrowingErrors::~ThrowingErrors() {
  scope = outer_;
}

namespace detail {

/// Passes notices and steps to the functions of this thread's innermost ThrowingErrors.
struct Scope {
  static void notify(Notice kind, std::string_view text) {
    if (scope->notify_ != nullptr)
      scope->notify_(kind, text);
  }
  static bool wantsSteps() { return scope != nullptr && scope->step_ != nullptr; }
  static bool step(std::int64_t done, std::int64_t total) { return scope->step_(done, total); }
};

namespace {

// A text from printf's arguments. A short one allocates nothing, so that the lack of memory can be
// reported.
class Line {
public:
  Line(const char *format, std::va_list arguments) {
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(short_.data(), short_.size(), format, arguments);
    length_ = static_cast<std::size_t>(std::max(length, 0));
    if (length_ >= short_.size()) {
      long_.resize(length_ + 1);
      std::vsnprintf(long_.data(), long_.size(), format, again);
    }
    va_end(again);
  }

  std::string_view text() const { return {start(), length_}; }

  /// Without the newlines that end it.
  const char *withoutEnd() {
    char *text = const_cast<char *>(start());
    while (length_ > 0 && text[length_ - 1] == '\n')
      text[--length_] = '\0';
    return text;
  }

private:
  const char *start() const { return long_.empty() ? short_.data() : long_.data(); }

  std::array<char, 512> short_;
  Vector<char> long_;
  std::size_t length_ = 0;
};

void printOnStandardError(const Line &line) {
  std::fflush(stdout); // on a terminal the error then follows the progress that led to it
  std::fwrite(line.text().data(), 1, line.text().size(), stderr);
}

[[noreturn]] void raise(About about, Line &line) {
  switch (about) {
  case About::file:
    throw FileError(line.withoutEnd());
  case About::memory:
    throw OutOfMemory(line.withoutEnd());
  case About::call:
    break;
  }
  throw Error(line.withoutEnd());
}

// Prints or throws the line of an operation that failed.
void vfail(About about, const char *format, std::va_list arguments) {
  if (scope == nullptr)
    return printOnStandardError(Line(format, arguments));
  try {
    Line line(format, arguments);
    raise(about, line);
  } catch (const std::bad_alloc &) {
    throw OutOfMemory("could not allocate memory!");
  }
}

} // namespace

void progress(const char *format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  if (scope == nullptr)
    std::vprintf(format, arguments);
  else
    Scope::notify(Notice::progress, Line(format, arguments).text());
  va_end(arguments);
}

void progressText(std::string_view text) {
  if (scope == nullptr)
    std::fwrite(text.data(), 1, text.size(), stdout);
  else
    Scope::notify(Notice::progress, text);
}

void warn(const char *format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const Line line(format, arguments);
  va_end(arguments);
  if (scope == nullptr)
    printOnStandardError(line);
  else
    Scope::notify(Notice::warning, line.text());
}

void fail(About about, const char *format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  vfail(about, format, arguments);
  va_end(arguments);
}

void fatal(const char *format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  vfail(About::call, format, arguments);
  va_end(arguments);
  endAfterFailure();
}

void fatal(About about, const char *format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  vfail(about, format, arguments);
  va_end(arguments);
  endAfterFailure();
}

void endAfterFailure() {
  if (scope != nullptr)
    throw Error("an operation made no result");
  std::exit(EXIT_FAILURE);
}

void outOfMemory() {
  fatal(About::memory, "could not allocate memory!\n");
}

Meter::Meter(std::int64_t total) : total_(total), isWatched_(Scope::wantsSteps()) {}

// Units add up from pass to pass, so that many short passes are reported too.
void Meter::tell(std::int64_t units) {
  constexpr std::int64_t unitsPerStep = 1 << 16;
  static thread_local std::int64_t untold = 0;
  untold += units;
  if (untold < unitsPerStep)
    return;
  untold = 0;
  if (!Scope::step(done_, total_))
    throw Cancelled("cancelled");
}

} // namespace detail

} // namespace seedforest
