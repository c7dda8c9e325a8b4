// The loader-module scan that sxInit runs: every directory of the module
// search, each module found loaded once and unloaded again. Measured with
// ten small loader modules in SXCORE_PLUGIN_DIR, and with that folder empty
// (the rest of the search, and the project's own modules, are in both): the
// difference is what ten modules add to the library's start-up.

#include <benchmark/benchmark.h>
#include <sx/sxCore.h>

#include <cstdlib>

namespace {

void scan(benchmark::State& state, const char* dir) {
  setenv("SXCORE_PLUGIN_DIR", dir, 1);
  setenv("SXCORE_MESSAGES", "off", 1);
  sxSetMessageStream(SX_MESSAGES_OFF);
  for (auto _ : state) sxLoader::initLoaders();
  state.counters["loaders"] = sxLoader::getNumLoaders();
}

void BM_DiscoveryTenModules(benchmark::State& state) {
  scan(state, SXCORE_BENCH_MODULE_DIR "/found");
}
void BM_DiscoveryNoModules(benchmark::State& state) {
  scan(state, SXCORE_BENCH_MODULE_DIR "/none");
}

}  // namespace

BENCHMARK(BM_DiscoveryNoModules)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DiscoveryTenModules)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
