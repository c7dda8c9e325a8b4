// Export and import of a large scene: a tree of named objects (branching
// 10) linked through attributes, whose leaves all refer to one shared array.
// Depth 6 gives 1,111,111 objects, depth 5 gives 111,111, so that the two
// sizes show how the cost scales.
//
// Counters: objects; graphMB, the accounted heap that the imported graph
// occupies; peakMB, the highest accounted heap seen during an import above
// what was in use before it (sampled by a second thread every 100 us);
// peakRatio = peakMB / graphMB.
//
// Run with the heap kept between iterations (see sxBenchMain.h).

#include <benchmark/benchmark.h>

#include <sx/containers/sxArray.h>
#include <sx/nodes/sxGroup.h>
#include <sx/object/sxBase.h>
#include <sx/object/sxMemory.h>
#include <sx/object/sxPlugIn.h>
#include <sx/persist/sxEntry.h>
#include <sx/persist/sxFile.h>
#include <sx/persist/sxLoader.h>
#include "sxBenchMain.h"

#include <malloc.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

// A leaf that refers to a shared array, supplied the way a plug-in module
// supplies its classes.
class sxBenchLeaf : public sxBase {
 public:
  SX_DECLARE_CLASS(sxBenchLeaf)
  sxBenchLeaf() { initInstance(); }
  sxBenchLeaf(const sxBenchLeaf& source) : sxBase(source) {
    setArray(source.array);
    initInstance();
  }
  ~sxBenchLeaf() override { setArray(nullptr); }

  void setArray(sxArray* a) {
    if (a) a->ref();
    if (array) array->unRef();
    array = a;
  }

  sxEntry* write(sxFile* file, sxEntry* entry) const override {
    sxEntry* created = sxBase::write(file, entry);
    sxEntry* e = entry ? entry : created;
    if (e) array->writeRef(file, e);
    return created;
  }
  sxEntry* read(sxFile* file, sxEntry* entry) override {
    sxEntry* e = sxBase::read(file, entry);
    if (e) setArray(sxArray::readRef(file, e));
    return e;
  }

 private:
  sxArray* array = nullptr;
};
SX_IMPLEMENT_CLASS(sxBenchLeaf, sxBase, sxType)

namespace {

sxPlugIn& benchPlugIn() {
  static sxPlugIn record("sxBenchSceneFile.dll");
  return record;
}

sxBase* build(int depth, sxArray* shared, long& counter) {
  char name[24];
  std::snprintf(name, sizeof name, "n%ld", counter++);
  if (depth == 0) {
    auto* leaf = new sxBenchLeaf;
    leaf->setName(name);
    leaf->setArray(shared);
    return leaf;
  }
  // The root is a group, which exports as a scene without a file type.
  sxBase* node = counter == 1 ? new sxGroup : new sxBase;
  node->setName(name);
  for (int i = 0; i < 10; ++i) node->addAttribute(build(depth - 1, shared, counter));
  return node;
}

struct Scene {
  sxBase* root = nullptr;
  long objects = 0;
  std::string path;
};

// One graph and one file per depth, made once.
Scene& scene(int depth) {
  static Scene scenes[7];
  Scene& s = scenes[depth];
  if (!s.root) {
    sxBenchLeaf::registerClass(&benchPlugIn());
    auto* shared = new sxArray(64, sxArray::TYPE_VEC3);
    s.root = build(depth, shared, s.objects);
    s.root->ref();
    s.path =
        "/tmp/sxBenchSceneFile-" + std::to_string(getpid()) + "-" + std::to_string(depth) + ".sx";
    sxLoader::exportFile(s.root, s.path.c_str());
  }
  return s;
}

void BM_Export(benchmark::State& state) {
  Scene& s = scene(int(state.range(0)));
  for (auto _ : state) {
    if (!sxLoader::exportFile(s.root, s.path.c_str())) {
      state.SkipWithError("export failed");
      break;
    }
  }
  state.counters["objects"] = double(s.objects);
}

// Samples the accounted heap while an import runs.
class PeakSampler {
 public:
  PeakSampler() : peak(sxMemory::getSize()), thread([this] { run(); }) {}
  ~PeakSampler() { stop(); }
  std::size_t stop() {
    if (thread.joinable()) {
      done = true;
      thread.join();
    }
    return peak;
  }

 private:
  void run() {
    while (!done) {
      std::size_t now = sxMemory::getSize();
      if (now > peak) peak = now;
      std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
  }
  std::atomic<bool> done{false};
  std::size_t peak;
  std::thread thread;
};

void BM_Import(benchmark::State& state) {
  Scene& s = scene(int(state.range(0)));
  double graph = 0, peak = 0;
  for (auto _ : state) {
    std::size_t before = sxMemory::getSize();
    PeakSampler sampler;
    sxBase* root = sxLoader::importFile(s.path.c_str());
    state.PauseTiming();
    std::size_t highest = sampler.stop();
    if (!root) {
      state.SkipWithError("import failed");
      break;
    }
    root->ref();
    graph = double(sxMemory::getSize() - before);
    peak = double(highest - before);
    root->unRef();
    state.ResumeTiming();
  }
  state.counters["objects"] = double(s.objects);
  state.counters["graphMB"] = graph / 1e6;
  state.counters["peakMB"] = peak / 1e6;
  state.counters["peakRatio"] = graph > 0 ? peak / graph : 0;
}

BENCHMARK(BM_Export)->Arg(5)->Arg(6)->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(BM_Import)->Arg(5)->Arg(6)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace

SX_BENCHMARK_MAIN_KEEPING_HEAP()
