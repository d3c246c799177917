// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Work without the interpreter's lock.
#pragma once

#include "seedforest/progress.hpp"

#include <pybind11/pybind11.h>

#include <chrono>

namespace seedforest::python {

/// While an object lives, other threads of the interpreter run, and Ctrl-C stops the libraries' work:
/// from time to time it is asked whether a signal came whose handler raises an exception. The
/// exception then stands in the interpreter, and the work ends with Cancelled.
class Unlocked {
public:
  Unlocked() : progress_([this](double) { return !isInterrupted(); }) {}

private:
  using Clock = std::chrono::steady_clock;

  bool isInterrupted();

  pybind11::gil_scoped_release release_; // first, so that it is given back last
  Clock::time_point next_ = Clock::now() + std::chrono::milliseconds(50);
  WithProgress progress_;
};

} // namespace seedforest::python
