// How the system speaks: progress on standard output, errors on standard error, and the one place
// that decides what an error does. Every text of the system goes through here or through a Writer.
// In a scope of ThrowingErrors nothing is printed: see base/error.h.
#pragma once

#include <cstdint>
#include <string_view>

namespace seedforest::detail {

/// What an error is about, for those who catch it.
enum class About { call, file, memory };

/// Prints on standard output, printf style.
[[gnu::format(printf, 1, 2)]] void progress(const char *format, ...);

/// The same for text that is ready.
void progressText(std::string_view text);

/// Prints a line after which the operation carries on, on standard error, printf style.
[[gnu::format(printf, 1, 2)]] void warn(const char *format, ...);

/// Prints a line on standard error, printf style, after which the operation returns no result; or
/// throws it.
[[gnu::format(printf, 2, 3)]] void fail(About about, const char *format, ...);

/// Prints a line on standard error, printf style, and ends the process with status 1; or throws it.
[[noreturn, gnu::format(printf, 1, 2)]] void fatal(const char *format, ...);
[[noreturn, gnu::format(printf, 2, 3)]] void fatal(About about, const char *format, ...);

/// Ends the process with status 1 where the line has been printed already: after a fail().
[[noreturn]] void endAfterFailure();

/// fatal() with "could not allocate memory!\n".
[[noreturn]] void outOfMemory();

/// Counts the work of a pass over `total` units and tells of it, once in a while, whoever asked to
/// be told (see StepFn in base/error.h).
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
  bool isWatched_; // somebody asked to be told
};

} // namespace seedforest::detail
