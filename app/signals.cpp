// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

#include "app/signals.h"

#include "base/outputFile.h"

#include <csignal>

#if __has_include(<unistd.h>)

namespace {

void removeAndEnd(int signal) {
  seedforest::detail::removeUnfinishedFiles();
  raise(signal); // takes its default action (SA_RESETHAND) as soon as this function returns
}

} // namespace

void removeUnfinishedFilesOnSignals() {
  for (const int signal :
       {SIGHUP, SIGINT, SIGQUIT, SIGILL, SIGABRT, SIGFPE, SIGBUS, SIGSEGV, SIGPIPE, SIGALRM,
        SIGTERM, SIGUSR1, SIGUSR2, SIGXCPU, SIGXFSZ, SIGVTALRM, SIGPROF}) {
    struct sigaction before = {};
    struct sigaction action = {};
    action.sa_handler = removeAndEnd;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigfillset(&action.sa_mask);
    if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler == SIG_DFL)
      sigaction(signal, &action, nullptr);
  }
}

#else

void removeUnfinishedFilesOnSignals() {}

#endif
