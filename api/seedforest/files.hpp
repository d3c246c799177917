// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Files as a whole: what programs need around the images and roots that the interface reads and
// writes itself.
#pragma once

#include <string>
#include <string_view>

#pragma GCC visibility push(default)

namespace seedforest {

/// The bytes of a file, which need not be seekable ("/dev/stdin", a pipe). A directory is empty.
/// Throws FileError: a file that cannot be opened or read.
std::string readFile(const std::string &path);

/// Writes a file as a whole, as write() and writeRoots() do: readers find the old file or the new
/// one, never a part, and an error leaves the old one. Devices, pipes and paths like "/dev/stdout",
/// which appends to standard output, are written in place.
/// Throws FileError: the file cannot be written.
void writeFile(std::string_view bytes, const std::string &path);

} // namespace seedforest

#pragma GCC visibility pop
