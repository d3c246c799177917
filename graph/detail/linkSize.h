// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The size of the data that a merge callback works on.
#pragma once

namespace seedforest::detail {

/// The dataSize of the union-find whose merge callback is running in this thread; -1 where none is.
int dataSizeOfLink();

} // namespace seedforest::detail
