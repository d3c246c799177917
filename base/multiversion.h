// Vector instructions beyond those that every machine of the target has, without asking for flags.
#pragma once

/// In front of a plain function: it is compiled several times, with AVX-512, with AVX2 and with
/// neither, and the machine's own version is chosen when the program starts; nothing happens where
/// that is not to be had, nor with the sanitizers, whose start it would precede. Templates called
/// from it must be inlined by force, so that they are compiled with its instructions. Results are
/// the same.
#if defined(__GNUC__) && __GNUC__ >= 12 && !defined(__clang__) && defined(__x86_64__) &&           \
    defined(__gnu_linux__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define SEEDFOREST_MULTIVERSION __attribute__((target_clones("arch=x86-64-v4", "avx2", "default")))
#else
#define SEEDFOREST_MULTIVERSION
#endif
