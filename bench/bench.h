// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Shared by the benchmarks. Most programs also measure a plain pass over the same memory in the
// same run: compare ratios to it, not seconds.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <random>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

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

/// While an object lives, standard output goes to /dev/null: progress lines then take little time
/// and do not mix with the benchmark's report.
class SilentProgress {
public:
  SilentProgress() : output_(dup(STDOUT_FILENO)) {
    const int nowhere = open("/dev/null", O_WRONLY);
    std::fflush(stdout);
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
  }
  ~SilentProgress() {
    std::fflush(stdout);
    dup2(output_, STDOUT_FILENO);
    close(output_);
  }
  SilentProgress(const SilentProgress &) = delete;
  SilentProgress &operator=(const SilentProgress &) = delete;

private:
  int output_;
};

/// The path of a temporary file, which the destructor removes.
class ScratchFile {
public:
  ScratchFile()
      : path_((std::filesystem::temp_directory_path() /
               ("seedforest-bench-" + std::to_string(std::random_device{}())))
                  .string()) {}
  ~ScratchFile() { std::remove(path_.c_str()); }
  ScratchFile(const ScratchFile &) = delete;
  ScratchFile &operator=(const ScratchFile &) = delete;

  const char *path() const { return path_.c_str(); }

private:
  std::string path_;
};
