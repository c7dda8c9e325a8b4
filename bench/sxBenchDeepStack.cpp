// Cost of the deep-recursion guard: the stack check every guarded call
// makes, one round trip to a (cached) stack segment, and a guarded recursion
// deep enough to span many segments, per level.

#include <benchmark/benchmark.h>

#include <cstdint>

#include "platform/sxDeepStack.h"

namespace {

void BM_IsLow(benchmark::State& state) {
  for (auto _ : state) {
    bool low = sxiStack::isLow();
    benchmark::DoNotOptimize(low);
  }
}
BENCHMARK(BM_IsLow);

// Switching to a segment and back; after the first iteration the segment
// comes from the thread's cache.
void BM_SegmentSwitch(benchmark::State& state) {
  int calls = 0;
  for (auto _ : state)
    sxiStack::runOnNewStack([](void* p) noexcept { ++*static_cast<int*>(p); }, &calls);
  benchmark::DoNotOptimize(calls);
}
BENCHMARK(BM_SegmentSwitch);

std::uint64_t guardedDepth(int n) {
  volatile unsigned char frame[256];
  frame[0] = static_cast<unsigned char>(n);
  if (n == 0) return frame[0];
  return sxiDeepCall([n] { return guardedDepth(n - 1); }) + frame[0];
}

std::uint64_t plainDepth(int n) {
  volatile unsigned char frame[256];
  frame[0] = static_cast<unsigned char>(n);
  if (n == 0) return frame[0];
  return plainDepth(n - 1) + frame[0];
}

// The same recursion without the guard, as far as the stack allows.
void BM_PlainRecursion(benchmark::State& state) {
  int levels = int(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(plainDepth(levels));
  state.SetItemsProcessed(state.iterations() * levels);
}
BENCHMARK(BM_PlainRecursion)->Arg(1000)->Unit(benchmark::kMicrosecond);

// Per level, with a 256-byte frame: about one switch per 30,000 levels.
void BM_GuardedRecursion(benchmark::State& state) {
  int levels = int(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(guardedDepth(levels));
  state.SetItemsProcessed(state.iterations() * levels);
}
BENCHMARK(BM_GuardedRecursion)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
