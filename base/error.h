// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// What an error does. By default, a library operation that cannot do its work prints a line on
// standard error and ends the process with status 1. A program that wants to go on asks for
// exceptions:
//
//   seedforest::ThrowingErrors throwing; // in this thread, as long as it lives
//   try {
//     imReadImage(path, &image);
//   } catch (const seedforest::Error &error) {
//     show(error.what()); // the same line, without its newline
//   }
//
// An operation that throws has released what it allocated; its arguments are unchanged or valid.
#pragma once

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string_view>

#pragma GCC visibility push(default)

namespace seedforest {

namespace detail {
struct Scope;
}

/// What went wrong, as one line without a newline.
class Error : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// A file that cannot be opened, read or written, or whose content is not what was expected.
class FileError : public Error {
public:
  using Error::Error;
};

/// Memory that cannot be allocated. The text is kept in the object, cut to 127 characters.
class OutOfMemory : public Error {
public:
  explicit OutOfMemory(const char *line);
  const char *what() const noexcept override { return text_; }

private:
  char text_[128];
};

/// The kinds of messages beside a result: progress, on standard output by default, and warnings,
/// after which the operation carries on, on standard error. Messages come in order, with their
/// newlines; a line of progress may come in several pieces.
enum class Notice { progress, warning };
using NoticeFn = std::function<void(Notice kind, std::string_view text)>;

/// An operation stopped because a StepFn returned false.
class Cancelled : public Error {
public:
  using Error::Error;
};

/// Told how far a long operation has come: `done` of `total` units of work, such as pixels, in its
/// present pass. Returns whether to go on; on false, Cancelled is thrown. Called after every 2^16
/// units or so, counted over all passes.
using StepFn = std::function<bool(std::int64_t done, std::int64_t total)>;

/// While an object of this class lives, errors in its thread are thrown, and notices and steps go
/// to its functions, or are dropped where it has none. Of nested objects the innermost counts;
/// destroy them in reverse order. An error line after which an operation would return no result is
/// thrown too.
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

#pragma GCC visibility pop
