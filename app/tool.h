// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The tool but for what belongs to the process: main() does that.
#pragma once

namespace seedforest::detail {

/// Does what the command line asks for; the arguments are those of main(). Returns the exit status,
/// or ends with an error as an operation of the library does.
int runTool(int argc, const char **argv);

} // namespace seedforest::detail
