#include "base/report.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace seedforest::detail {

namespace {

void vcomplain(const char *format, std::va_list arguments) {
  std::fflush(stdout); // on a terminal the error then follows the progress that led to it
  std::vfprintf(stderr, format, arguments);
}

} // namespace

void progress(const char *format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::vprintf(format, arguments);
  va_end(arguments);
}

void complain(const char *format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  vcomplain(format, arguments);
  va_end(arguments);
}

void fatal(const char *format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  vcomplain(format, arguments);
  va_end(arguments);
  std::exit(EXIT_FAILURE);
}

void outOfMemory() {
  fatal("could not allocate memory!\n");
}

} // namespace seedforest::detail
