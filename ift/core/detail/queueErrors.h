// What is said where a queue cannot be had.
#pragma once

namespace seedforest::detail {

/// Prints the line of initQueue() on standard error: `what` is 'Q' for buckets, 'A' for elements.
void complainOfQueue(char what);

/// The same, for a transform that cannot go on without: ends the process with status 1.
[[noreturn]] void queueUnavailable(char what);

} // namespace seedforest::detail
