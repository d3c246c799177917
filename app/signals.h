// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Removal of unfinished files when a signal ends the tool.
#pragma once

/// From now on a signal that ends the process first removes the temporary files of outputs. Signals
/// that the process was started to ignore stay ignored.
void removeUnfinishedFilesOnSignals();
