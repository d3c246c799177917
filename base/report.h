// How the process speaks: progress lines on standard output, error lines on standard error, and the
// two ways of ending with status 1. Every text of the system goes through here or through a Writer.
#pragma once

namespace seedforest::detail {

/// Prints on standard output, printf style.
[[gnu::format(printf, 1, 2)]] void progress(const char *format, ...);

/// Prints on standard error, printf style, after what is pending on standard output.
[[gnu::format(printf, 1, 2)]] void complain(const char *format, ...);

/// As complain(), then ends the process with status 1.
[[noreturn, gnu::format(printf, 1, 2)]] void fatal(const char *format, ...);

/// Ends the process with status 1 after "could not allocate memory!\n" on standard error.
[[noreturn]] void outOfMemory();

} // namespace seedforest::detail
