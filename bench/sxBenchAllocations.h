#pragma once

// Heap allocations of the benchmark's thread, counted by interposing the C
// library's allocator (the library's sxMemory and the C++ operators all end
// there). Include in one source file of a benchmark program only.

// The C library's own declarations come first: the definitions below follow
// them.
#include <malloc.h>

#include <cstddef>

extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
}

namespace {
// Only the benchmark's thread allocates while a walk is measured.
thread_local long allocations = 0;
}  // namespace

extern "C" void* malloc(std::size_t n) {
  ++allocations;
  return __libc_malloc(n);
}
extern "C" void* calloc(std::size_t k, std::size_t n) {
  ++allocations;
  return __libc_calloc(k, n);
}
extern "C" void* realloc(void* p, std::size_t n) {
  ++allocations;
  return __libc_realloc(p, n);
}
extern "C" void* memalign(std::size_t a, std::size_t n) {
  ++allocations;
  return __libc_memalign(a, n);
}
