// The .sxt text format on the benchmark tree (bench/sxBenchTree.h): export
// and import through the loader module, beside the binary scene file of the
// same tree for comparison. Depth 6 gives 1,111,111 nodes, depth 5 111,111.
//
// Counter nodesPerSecond: tree nodes written or read per second (the aim is
// at least 2 million each way); textMB: the size of the text.
//
// Run with the heap kept between iterations (see sxBenchMain.h).

#include <benchmark/benchmark.h>

#include <sx/sxCore.h>
#include "sxBenchMain.h"
#include "sxBenchTree.h"

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>

namespace {

struct Tree {
  sxGroup* root = nullptr;
  long nodes = 0;
  std::string base;
};

// One tree per depth, made once, with its files written.
Tree& tree(int depth) {
  static Tree trees[7];
  Tree& t = trees[depth];
  if (!t.root) {
    static const bool started = [] {
      sxInit(nullptr);
      return true;
    }();
    (void)started;
    t.root = sxbench::buildGroupTree(depth);
    t.root->ref();
    t.nodes = sxbench::treeSize(depth);
    t.base = "/tmp/sxBenchTextFormat-" + std::to_string(getpid()) + "-" + std::to_string(depth);
    sxLoader::exportFile(t.root, (t.base + ".sxt").c_str());
    sxLoader::exportFile(t.root, (t.base + ".sx").c_str());
  }
  return t;
}

void exportAs(benchmark::State& state, const char* ext) {
  Tree& t = tree(int(state.range(0)));
  const std::string path = t.base + ext;
  for (auto _ : state) {
    if (!sxLoader::exportFile(t.root, path.c_str())) {
      state.SkipWithError(sxLoader::getErrorMessage());
      break;
    }
  }
  state.counters["nodesPerSecond"] =
      benchmark::Counter(double(t.nodes), benchmark::Counter::kIsIterationInvariantRate);
  state.counters["fileMB"] = double(std::filesystem::file_size(path)) / 1e6;
}

void importAs(benchmark::State& state, const char* ext) {
  Tree& t = tree(int(state.range(0)));
  const std::string path = t.base + ext;
  for (auto _ : state) {
    sxBase* root = sxLoader::importFile(path.c_str());
    if (!root) {
      state.SkipWithError(sxLoader::getErrorMessage());
      break;
    }
    // Taking the tree down is not part of reading it.
    state.PauseTiming();
    root->ref();
    root->unRef();
    state.ResumeTiming();
  }
  state.counters["nodesPerSecond"] =
      benchmark::Counter(double(t.nodes), benchmark::Counter::kIsIterationInvariantRate);
}

void BM_TextExport(benchmark::State& state) {
  exportAs(state, ".sxt");
}
void BM_TextImport(benchmark::State& state) {
  importAs(state, ".sxt");
}
void BM_BinaryExport(benchmark::State& state) {
  exportAs(state, ".sx");
}
void BM_BinaryImport(benchmark::State& state) {
  importAs(state, ".sx");
}

BENCHMARK(BM_TextExport)->Arg(5)->Arg(6)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_TextImport)->Arg(5)->Arg(6)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_BinaryExport)->Arg(6)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_BinaryImport)->Arg(6)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

SX_BENCHMARK_MAIN_KEEPING_HEAP()
