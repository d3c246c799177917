// Inlining by force: for the small functions of loops over all pixels, which compilers would call
// where they are used in several places; for templates called from functions that are compiled for
// several machines; and for what has no effect but to ask for memory, calls to which are dropped.
#pragma once

#if defined(__GNUC__)
/// In front of a function or member function.
#define SEEDFOREST_INLINE [[gnu::always_inline]] inline
/// Behind the parameters of a lambda.
#define SEEDFOREST_INLINE_LAMBDA __attribute__((always_inline))
#else
#define SEEDFOREST_INLINE inline
#define SEEDFOREST_INLINE_LAMBDA
#endif
