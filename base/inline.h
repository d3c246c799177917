// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Forced inlining: for code that must be compiled with its caller's vector instructions, for small
// functions in loops over all pixels, and for prefetches, which compilers drop from functions that
// they do not inline.
#pragma once

/// In front of `inline` or of a member function; of a lambda, behind its parameters.
#if defined(__GNUC__)
#define SEEDFOREST_INLINE __attribute__((always_inline))
#else
#define SEEDFOREST_INLINE
#endif
