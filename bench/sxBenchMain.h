#pragma once

// The main function of the benchmarks that build and drop large graphs.
//
// The process keeps the heap memory it frees: otherwise the C library
// returns the hundreds of megabytes that one iteration frees and the next
// one faults them in again, and the figures measure the kernel zeroing pages
// (about 16 microseconds a page on the virtual machines we measure on)
// rather than the library. SXCORE_BENCH_DEFAULT_MALLOC=1 leaves the C
// library's defaults in place, to see the cold-heap cost.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdlib>

#define SX_BENCHMARK_MAIN_KEEPING_HEAP()                              \
  int main(int argc, char** argv) {                                   \
    if (!std::getenv("SXCORE_BENCH_DEFAULT_MALLOC")) {                \
      mallopt(M_TRIM_THRESHOLD, 1 << 30);                             \
      mallopt(M_MMAP_THRESHOLD, 32 << 20);                            \
      mallopt(M_TOP_PAD, 256 << 20);                                  \
    }                                                                 \
    benchmark::Initialize(&argc, argv);                               \
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1; \
    benchmark::RunSpecifiedBenchmarks();                              \
    benchmark::Shutdown();                                            \
    return 0;                                                         \
  }
