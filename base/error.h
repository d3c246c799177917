// What an error does. Unless it is told otherwise, a library operation that cannot do what it was
// called for prints a line on standard error and ends the process with status 1. A program that
// wants to go on asks for exceptions:
//
//   seedforest::ThrowingErrors throwing; // in this thread, as long as it lives
//   try {
//     imReadImage(path, &image);
//   } catch (const seedforest::Error &error) {
//     show(error.what()); // the same line, without its newline
//   }
//
// An operation that throws has released what it made; its arguments are as they were, or valid.
#pragma once

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string_view>

namespace seedforest {

namespace detail {
struct Scope;
}

/// What went wrong, as one line without a newline.
class Error : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// A file that cannot be opened, read or written, or that does not hold what it should.
class FileError : public Error {
public:
  using Error::Error;
};

/// Memory that cannot be had. Keeps its text without asking for more; a long one is cut.
class OutOfMemory : public Error {
public:
  explicit OutOfMemory(const char *line);
  const char *what() const noexcept override { return text_; }

private:
  char text_[128];
};

/// A piece of what an operation tells beside its result: progress, which goes to standard output by
/// default, or a warning, a line after which it carries on, which goes to standard error. Pieces
/// come in order, with their newlines; a line of progress may come in several.
enum class Notice { progress, warning };
using NoticeFn = std::function<void(Notice kind, std::string_view text)>;

/// An operation that was asked to stop did.
class Cancelled : public Error {
public:
  using Error::Error;
};

/// How far an operation that can take long has come: `done` of `total` units of work, such as
/// pixels, in its present pass. Returns whether to go on; where not, Cancelled is thrown. Called
/// after every 2^16 units or so, whatever the passes.
using StepFn = std::function<bool(std::int64_t done, std::int64_t total)>;

/// As long as one lives, errors in its thread are thrown, and notices and steps are handed to
/// its functions, or dropped where it has none. The last one made counts; they end in the reverse order. Where a
/// line would be printed and no result returned, that line is thrown too.
class ThrowingErrors {
public:
  explicit ThrowingErrors(NoticeFn notify = nullptr, StepFn step = nullptr);
  ~ThrowingErrors();
  ThrowingErrors(const ThrowingErrors &) = delete;
  ThrowingErrors &operator=(const ThrowingErrors &) = delete;

private:
  friend struct detail::Scope;
  NoticeFn notify_;
  StepFn step_;
  const ThrowingErrors *outer_;
};

} // namespace seedforest
