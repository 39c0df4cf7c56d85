#pragma once

/// How the loops over cells are compiled. Every such loop stands in a function marked
/// CELL_LOOP, which is built for plain x86-64 and for AVX2; the machine picks one when the program
/// starts. Neither build fuses multiplications with additions, so both give the same heights. What
/// the loop calls is CELL_INLINE, so that it is compiled with the loop; the function itself must
/// not be inlined, or it would be built for its caller's machine only.
#if defined(__x86_64__) && !defined(__clang__) && !defined(__SANITIZE_ADDRESS__)
#define CELL_LOOP __attribute__((noinline, target_clones("avx2", "default")))
#else
#define CELL_LOOP
#endif
#define CELL_INLINE __attribute__((always_inline))
