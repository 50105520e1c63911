// SPDX-License-Identifier: MIT
// Counts the program's allocations, for benchmarks that show what a step
// allocates. It replaces the global allocation functions: include it in one
// source file of a benchmark program only.
#pragma once

#include <atomic>
#include <cstdlib>
#include <new>

namespace kelvarin::bench {
inline std::atomic<long> g_allocations{0};
}  // namespace kelvarin::bench

// GCC cannot see that the replacements pair with each other.
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void* operator new(std::size_t size) {
    ++kelvarin::bench::g_allocations;
    if (void* p = std::malloc(size ? size : 1)) return p;
    throw std::bad_alloc();
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
