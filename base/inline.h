// Inlining by force: code that must be compiled with its caller's vector instructions, the small
// functions of loops over all pixels, and prefetches, which a compiler drops where it only calls
// them.
#pragma once

/// In front of `inline` or of a member function; of a lambda, behind its parameters.
#if defined(__GNUC__)
#define SEEDFOREST_INLINE __attribute__((always_inline))
#else
#define SEEDFOREST_INLINE
#endif
