// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "unlocked.h"

namespace seedforest::python {

// Taking the lock can mean a wait for another thread's turn, of 5 ms, so it is not taken often.
bool Unlocked::isInterrupted() {
  const Clock::time_point now = Clock::now();
  if (now < next_)
    return false;
  next_ = now + std::chrono::milliseconds(100);
  const pybind11::gil_scoped_acquire lock;
  return PyErr_CheckSignals() != 0;
}

} // namespace seedforest::python
