// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Memory that cannot be had, on demand.
#pragma once

/// From now on, lets the n-th allocation of this program's own code fail, n from 1; 0: none.
void failAllocation(int n);

/// Whether that allocation was asked for. No other will fail then.
bool allocationFailed();
