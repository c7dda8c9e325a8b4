// Building, destroying and measuring the scene graph: the 1,111,111-node
// tree of named groups, built bottom-up, released from the root.

#include <benchmark/benchmark.h>

#include <sx/sxCore.h>
#include "sxBenchMain.h"
#include "sxBenchTree.h"

#include <cstdio>

namespace {

void perNode(benchmark::State& state, long nodes) {
  state.counters["ns_per_node"] =
      benchmark::Counter(double(state.iterations()) * double(nodes),
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// Runs first, in a fresh heap: the growth of resident memory while the tree
// is built, per node, with the names and the child and parent links.
void BM_TreeMemory(benchmark::State& state) {
  const int depth = int(state.range(0));
  for (auto _ : state) {
    const long before = sxbench::residentBytes();
    sxGroup* root = sxbench::buildGroupTree(depth);
    const long after = sxbench::residentBytes();
    state.counters["bytes_per_node"] = double(after - before) / double(sxbench::treeSize(depth));
    state.PauseTiming();
    root->ref();
    root->unRef();
    state.ResumeTiming();
  }
}
BENCHMARK(BM_TreeMemory)->Arg(6)->Iterations(1)->Unit(benchmark::kMillisecond);

void BM_TreeBuild(benchmark::State& state) {
  const int depth = int(state.range(0));
  for (auto _ : state) {
    sxGroup* root = sxbench::buildGroupTree(depth);
    state.PauseTiming();
    root->ref();
    root->unRef();
    state.ResumeTiming();
  }
  perNode(state, sxbench::treeSize(depth));
}
BENCHMARK(BM_TreeBuild)->Arg(5)->Arg(6)->Unit(benchmark::kMillisecond);

void BM_TreeDestroy(benchmark::State& state) {
  const int depth = int(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    sxGroup* root = sxbench::buildGroupTree(depth);
    root->ref();
    state.ResumeTiming();
    root->unRef();
  }
  perNode(state, sxbench::treeSize(depth));
}
BENCHMARK(BM_TreeDestroy)->Arg(5)->Arg(6)->Unit(benchmark::kMillisecond);

// Linear passes: the big tree should cost about 10x the small one.
void BM_TreeUpdateSharedInstances(benchmark::State& state) {
  const int depth = int(state.range(0));
  sxGroup* root = sxbench::buildGroupTree(depth);
  root->ref();
  for (auto _ : state) root->updateSharedInstances();
  root->unRef();
  perNode(state, sxbench::treeSize(depth));
}
BENCHMARK(BM_TreeUpdateSharedInstances)->Arg(5)->Arg(6)->Unit(benchmark::kMillisecond);

void BM_TreeCopy(benchmark::State& state) {
  const int depth = int(state.range(0));
  sxGroup* root = sxbench::buildGroupTree(depth);
  root->ref();
  for (auto _ : state) {
    sxGroup* copy = root->makeCopy();
    state.PauseTiming();
    copy->ref();
    copy->unRef();
    state.ResumeTiming();
  }
  root->unRef();
  perNode(state, sxbench::treeSize(depth));
}
BENCHMARK(BM_TreeCopy)->Arg(5)->Arg(6)->Unit(benchmark::kMillisecond);

// The whole tree through a scene file and back.
void BM_TreeFile(benchmark::State& state) {
  const bool exporting = state.range(0) == 0;
  const char* path = "sxBenchGraph.sx";
  sxGroup* root = sxbench::buildGroupTree(6);
  root->ref();
  if (!sxLoader::exportFile(root, path)) state.SkipWithError("export failed");
  for (auto _ : state) {
    if (exporting) {
      sxLoader::exportFile(root, path);
    } else {
      sxBase* loaded = sxLoader::importFile(path);
      state.PauseTiming();
      if (!loaded) state.SkipWithError("import failed");
      sxRef<sxBase> drop(loaded);
      drop.reset();
      state.ResumeTiming();
    }
  }
  root->unRef();
  std::remove(path);
}
BENCHMARK(BM_TreeFile)->Arg(0)->Arg(1)->Iterations(3)->Unit(benchmark::kMillisecond);

// N new groups each take the same shared child (three shared levels of
// detail under every object of a field, say), then all go: the cost per
// parent must not grow with N.
void BM_SharedChildManyParents(benchmark::State& state) {
  const int n = int(state.range(0));
  for (auto _ : state) {
    sxRef<sxGroup> shared(new sxGroup), root(new sxGroup);
    for (int i = 0; i < n; ++i) {
      sxRef<sxGroup> parent(new sxGroup);
      parent->addChild(shared.get());
      root->addChild(parent.get());
    }
  }
  state.counters["nsPerParent"] =
      benchmark::Counter(double(n) * double(state.iterations()),
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_SharedChildManyParents)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace

SX_BENCHMARK_MAIN_KEEPING_HEAP()
