// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Shared by the benchmarks. Most programs also measure a plain pass over the same memory in the
// same run: compare ratios to it, not seconds.
#pragma once

#include "bench/scratch.h"

#include <benchmark/benchmark.h>

#include <sys/resource.h>

/// The side of the images measured, in pixels.
inline constexpr int benchSide = 4096;

/// Reports nanoseconds per item, for a benchmark in which one iteration works on `items` items.
inline void reportPerItem(benchmark::State &state, const char *name, double items) {
  using benchmark::Counter;
  state.counters[name] = Counter(items * 1e-9 * static_cast<double>(state.iterations()),
                                 Counter::kIsRate | Counter::kInvert);
}

/// Reports the peak memory of the process so far, in bytes per pixel. For one benchmark's own peak,
/// run it alone with --benchmark_filter.
inline void reportPeakMemory(benchmark::State &state, double pixels) {
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  state.counters["peak bytes/pixel"] = static_cast<double>(usage.ru_maxrss) * 1024 / pixels;
}
