// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Whether an operation looks for the largest or the smallest value.
#pragma once

namespace seedforest::detail {

enum class Extremum { largest, smallest };

} // namespace seedforest::detail
