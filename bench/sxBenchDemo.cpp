// One frame of the sample scene of `sxtool demo` with 10,000 moving objects,
// a tenth of which change every frame: the scene's update (animation, the
// fence and update passes, switch and emitter bookkeeping) plus the culling
// camera pass from the moving viewpoint. The listener pass is measured on
// its own. Target: at most 1 ms for update plus camera pass.

#include <benchmark/benchmark.h>

#include <sx/sxCore.h>

#include "sxDemoRun.h"
#include "sxDemoScene.h"

namespace {

void frame(benchmark::State& state) {
  sxInit(nullptr);
  sxDemoConfig config;
  config.objects = int(state.range(0));
  sxRef<sxScene> scene = sxBuildDemoScene(config);
  sxDemoParts parts;
  parts.find(scene.get());
  sxDemoRunner runner(parts, config);
  // The first frames attach, register and measure everything once.
  for (int i = 0; i < 20; ++i) runner.step();
  double update = 0, camera = 0, listener = 0, visited = 0;
  for (auto _ : state) {
    const sxDemoFrame f = runner.step();
    update += f.updateMs;
    camera += f.cameraMs;
    listener += f.listenerMs;
    visited += double(f.visited);
    state.SetIterationTime((f.updateMs + f.cameraMs) / 1000.0);
  }
  const double n = double(state.iterations());
  state.counters["update_ms"] = update / n;
  state.counters["camera_ms"] = camera / n;
  state.counters["listener_ms"] = listener / n;
  state.counters["visited"] = visited / n;
  state.counters["nodes"] = parts.nodes;
}

}  // namespace

BENCHMARK(frame)->Arg(10000)->UseManualTime()->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
