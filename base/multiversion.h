// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// AVX2 and AVX-512 code that runs only on machines which have them, without compiler flags.
#pragma once

/// In front of a function that is no template: compiles it with AVX-512, with AVX2 and with
/// neither, and the version for the machine is chosen when the program starts. Results are the
/// same. Empty where the compiler or the system lacks this, and with the sanitizers, because the
/// choice would run before they are set up. Templates called from the function must be inlined by
/// force, so that they are compiled with its instructions. A build may give it a meaning of its own.
#if defined(SEEDFOREST_MULTIVERSION)
#elif defined(__GNUC__) && __GNUC__ >= 12 && !defined(__clang__) && defined(__x86_64__) &&         \
    defined(__gnu_linux__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define SEEDFOREST_MULTIVERSION __attribute__((target_clones("arch=x86-64-v4", "avx2", "default")))
#else
#define SEEDFOREST_MULTIVERSION
#endif
