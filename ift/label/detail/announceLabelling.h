// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The progress line of labelling.
#pragma once

namespace seedforest::detail {

/// Prints the progress line of ifLabelImage().
void announceLabelling();

} // namespace seedforest::detail
