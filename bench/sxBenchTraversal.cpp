// Costs of traversal: a full walk of a tree of 1,111,111 named groups
// (branching 10, depth 6) with a counting traverser, the context's paths and
// a statistics object, in time per group and heap allocations per walk
// (which must be 0: the context's stacks are preallocated and only grow);
// and the bounding-volume and update passes on trees of 111,111 and
// 1,111,111 groups, whose costs must grow linearly.
//
// Allocations are counted by interposing the C library's allocator (the
// library's sxMemory and the C++ operators all end there).

#include <benchmark/benchmark.h>

#include <sx/sxCore.h>
#include "sxBenchMain.h"

#include <vector>

#include "sxBenchAllocations.h"

namespace {

// Depth first, so that a walk meets the groups in the order they were made.
void grow(sxGroup* parent, int depth) {
  if (depth == 0) return;
  for (int i = 0; i < 10; ++i) {
    auto* g = new sxGroup;
    g->setName("g");
    parent->addChild(g);
    grow(g, depth - 1);
  }
}

// A tree of depth levels below its root (1 + 10 + ... + 10^depth groups),
// under a holder, made once per depth.
sxGroup* tree(int depth) {
  static sxGroup* trees[8] = {};
  if (!trees[depth]) {
    auto* holder = new sxGroup;
    holder->ref();
    auto* root = new sxGroup;
    root->setName("root");
    holder->addChild(root);
    grow(root, depth);
    trees[depth] = holder;
  }
  return trees[depth]->getChild(0);
}

long numGroups(int depth) {
  long n = 0, level = 1;
  for (int d = 0; d <= depth; ++d, level *= 10) n += level;
  return n;
}

class CountingTraverser : public sxTraverser {
 public:
  TRAV_STATE apply(sxGroup*) override {
    ++count;
    return TRAV_CONTINUE;
  }
  long count = 0;
};

void BM_Traverse(benchmark::State& state) {
  const int depth = int(state.range(0));
  sxGroup* root = tree(depth);
  sxRef<CountingTraverser> t(new CountingTraverser);
  sxRef<sxTravContext> ctx(new sxTravContext);
  ctx->setStats(new sxStats);
  ctx->setTraitStack(new sxTraitStack);
  t->setTravContext(ctx.get());
  t->traverse(root);  // the stacks reach the depth of the tree
  long allocated = 0;
  for (auto _ : state) {
    t->count = 0;
    const long before = allocations;
    t->traverse(root);
    allocated += allocations - before;
  }
  if (t->count != numGroups(depth)) state.SkipWithError("not every group was visited");
  const long n = numGroups(depth);
  // Seconds per group.
  state.counters["per_group"] = benchmark::Counter(
      double(n), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
  state.counters["allocs"] = double(allocated);
}
BENCHMARK(BM_Traverse)->Arg(5)->Arg(6)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_BoundingVolume(benchmark::State& state) {
  sxGroup* root = tree(int(state.range(0)));
  sxSphere sphere;
  root->getBoundingVolume(sphere);
  for (auto _ : state) {
    root->getBoundingVolume(sphere);
    benchmark::DoNotOptimize(sphere);
  }
  state.SetItemsProcessed(state.iterations() * numGroups(int(state.range(0))));
}
BENCHMARK(BM_BoundingVolume)->Arg(5)->Arg(6)->Unit(benchmark::kMillisecond);

// Detaching and attaching the tree again (not timed) marks every group for
// the update pass.
void BM_Update(benchmark::State& state) {
  sxGroup* root = tree(int(state.range(0)));
  sxGroup* holder = root->getParent(0);
  sxRef<sxTravContext> ctx(new sxTravContext);
  sxRef<sxGroup> keep(root);
  for (auto _ : state) {
    state.PauseTiming();
    holder->removeChild(root);
    holder->addChild(root);
    state.ResumeTiming();
    holder->update(ctx.get());
  }
  state.SetItemsProcessed(state.iterations() * numGroups(int(state.range(0))));
}
BENCHMARK(BM_Update)->Arg(5)->Arg(6)->Unit(benchmark::kMillisecond);

}  // namespace

SX_BENCHMARK_MAIN_KEEPING_HEAP()
