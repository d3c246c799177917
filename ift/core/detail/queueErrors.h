// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The errors of a queue that cannot be allocated.
#pragma once

namespace seedforest::detail {

/// Prints the line of initQueue() on standard error, or throws it in a scope of ThrowingErrors:
/// `what` is 'Q' for buckets, 'A' for elements.
void complainOfQueue(char what);

/// Ends with an error, with the same line.
[[noreturn]] void queueUnavailable(char what);

} // namespace seedforest::detail
