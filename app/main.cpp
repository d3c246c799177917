// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "app/signals.h"
#include "app/tool.h"
#include "base/report.h"

#include <cstdio>

using namespace seedforest::detail;

int main(int argc, const char **argv) {
  removeUnfinishedFilesOnSignals();
  const int status = runTool(argc, argv);
  // ferror() reports earlier writes that failed.
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
    fatal("%s: could not write to standard output\n", argc > 0 ? argv[0] : "seedforest");
  return status;
}
