// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Messages: progress on standard output, errors on standard error, and the one place that decides
// what an error does. The libraries report progress and errors only through here. In a scope of
// ThrowingErrors nothing is printed: see base/error.h.
#pragma once

#include <cstdint>
#include <string_view>

namespace seedforest::detail {

/// What an error is about: decides the type of the exception.
enum class About { call, file, memory };

/// Prints on standard output, printf style.
[[gnu::format(printf, 1, 2)]] void progress(const char *format, ...);

/// The same for text that needs no formatting.
void progressText(std::string_view text);

/// Prints a line after which the operation carries on, on standard error, printf style.
[[gnu::format(printf, 1, 2)]] void warn(const char *format, ...);

/// Prints a line on standard error, printf style; the operation then returns no result. In a scope
/// of ThrowingErrors, throws the line instead.
[[gnu::format(printf, 2, 3)]] void fail(About about, const char *format, ...);

/// Ends with an error: prints a line on standard error, printf style, and ends the process with
/// status 1; in a scope of ThrowingErrors, throws the line instead.
[[noreturn, gnu::format(printf, 1, 2)]] void fatal(const char *format, ...);
[[noreturn, gnu::format(printf, 2, 3)]] void fatal(About about, const char *format, ...);

/// Ends with an error whose line a fail() has printed already.
[[noreturn]] void endAfterFailure();

/// fatal() with "could not allocate memory!\n".
[[noreturn]] void outOfMemory();

/// Counts the work of a pass over `total` units and calls the scope's StepFn, if there is one,
/// after every 2^16 units or so (base/error.h).
class Meter {
public:
  explicit Meter(std::int64_t total);

  /// May throw Cancelled.
  void advance(std::int64_t units) {
    done_ += units;
    if (isWatched_)
      tell(units);
  }

private:
  void tell(std::int64_t units);

  std::int64_t total_;
  std::int64_t done_ = 0;
  bool isWatched_; // there is a StepFn
};

} // namespace seedforest::detail
