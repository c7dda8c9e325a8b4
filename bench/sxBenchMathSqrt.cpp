// The square root by each table size against the processor's instruction.
#include <sx/math/sxScalar.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

namespace {

void sqrtBy(benchmark::State& state, SXSQRT_METHOD method) {
  sxSetSqrtMethod(method);
  std::vector<float> inputs;
  for (int i = 0; i < 4096; ++i) inputs.push_back(std::ldexp(1.0f + i / 4096.0f, i % 40 - 20));
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(sxSqrt(inputs[i]));
    i = (i + 1) & 4095;
  }
}

}  // namespace

BENCHMARK_CAPTURE(sqrtBy, table_256, SXSQRT_TABLE_256);
BENCHMARK_CAPTURE(sqrtBy, table_1k, SXSQRT_TABLE_1K);
BENCHMARK_CAPTURE(sqrtBy, table_4k, SXSQRT_TABLE_4K);
BENCHMARK_CAPTURE(sqrtBy, table_16k, SXSQRT_TABLE_16K);
BENCHMARK_CAPTURE(sqrtBy, hardware, SXSQRT_HARDWARE);

BENCHMARK_MAIN();
