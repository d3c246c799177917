// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The progress of an operation, and how to stop it.
#pragma once

#include <functional>

#pragma GCC visibility push(default)

namespace seedforest {

/// While an object lives, functions of its thread that can take long report how far they have come:
///
///   const seedforest::WithProgress progress([&](double done) { return !window.isClosed(); });
///
/// `report` is called after every 2^16 pixels or so with the fraction of the present pass that is
/// done; an operation has one pass or several. Where it returns false the operation stops and
/// throws Cancelled. Of nested objects the innermost counts; destroy them in reverse order.
class WithProgress {
public:
  using Report = std::function<bool(double fraction)>;

  explicit WithProgress(Report report);
  ~WithProgress();
  WithProgress(const WithProgress &) = delete;
  WithProgress &operator=(const WithProgress &) = delete;

  /// The report function of the thread's innermost object, or null.
  static const Report *current();

private:
  Report report_;
  const WithProgress *outer_;
};

} // namespace seedforest

#pragma GCC visibility pop
