// What the tool does when it is ended from outside.
#pragma once

/// From now on a signal that ends the process removes first what is being written, unless whoever
/// started the tool has it ignored.
void removeUnfinishedFilesOnSignals();
