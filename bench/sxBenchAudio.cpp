// The audio side of a frame: the listener pass over many playing emitters,
// and taking playing emitters out of a running scene (the play list keeps
// an index, so each removal should cost the same however long it is).

#include <benchmark/benchmark.h>

#include <sx/sxCore.h>

#include <vector>

namespace {

// A back end that keeps data for each emitter and takes its parameters.
struct QuietListener : sxListener {
  int data = 0;
  float sum = 0.0f;
  void outputEmitter(sxEmitter* e, const sxVec3& at) override {
    sum += at.x;
    setEmitterData(e, &data);
    hasBeenUpdated(e);
  }
};

// A scene of n playing emitters, 100 to a group, after its first frame.
sxScene* playingScene(long n, std::vector<sxGroup*>* holders = nullptr) {
  auto* scene = new sxScene;
  scene->ref();
  sxGroup* holder = nullptr;
  for (long i = 0; i < n; ++i) {
    if (i % 100 == 0) {
      holder = new sxGroup;
      scene->addChild(holder);
      if (holders) holders->push_back(holder);
    }
    auto* e = new sxEmitter;
    e->setXYZ(float(i), 0.0f, 0.0f);
    holder->addChild(e);
    e->play();
  }
  scene->update();
  return scene;
}

void perEmitter(benchmark::State& state, long n) {
  state.counters["ns_per_emitter"] =
      benchmark::Counter(double(state.iterations()) * double(n),
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_ListenerPass(benchmark::State& state) {
  const long n = state.range(0);
  sxScene* scene = playingScene(n);
  QuietListener listener;
  listener.traverse(scene);
  for (auto _ : state) listener.traverse(scene);
  benchmark::DoNotOptimize(listener.sum);
  perEmitter(state, n);
  scene->unRef();
}
BENCHMARK(BM_ListenerPass)->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond);

void BM_WithdrawPlayingEmitters(benchmark::State& state) {
  const long n = state.range(0);
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<sxGroup*> holders;
    sxScene* scene = playingScene(n, &holders);
    state.ResumeTiming();
    for (sxGroup* h : holders) scene->removeChild(h);
    state.PauseTiming();
    if (scene->getPlayList().getNum() != 0) state.SkipWithError("emitters left in the play list");
    scene->unRef();
    state.ResumeTiming();
  }
  perEmitter(state, n);
}
BENCHMARK(BM_WithdrawPlayingEmitters)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
