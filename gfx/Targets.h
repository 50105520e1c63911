// SPDX-License-Identifier: MIT
// Private to gfx/: the processor targets the vector kernels are compiled
// for. Each kernel carries its target as an attribute, so the rest of the
// file builds for the plain processor and the kernel runs only where the
// processor has it (see Simd.h).
#pragma once

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#define KELVARIN_X86 1
#define KELVARIN_SSSE3 __attribute__((target("ssse3")))
#define KELVARIN_AVX2 __attribute__((target("avx2")))
#define KELVARIN_AVX512 __attribute__((target("avx2,avx512f,avx512bw,avx512vbmi")))
#endif
