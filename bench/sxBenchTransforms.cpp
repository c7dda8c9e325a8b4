// Costs of placed sub-graphs, on a tree of 1,111,111 nodes (branching 10,
// depth 6) whose odd levels are transforms, even levels groups and leaves
// sphere fences:
// - the culling camera pass, with a view that sees part of the tree, in time
//   per node visited (culled sub-graphs are not visited) and allocations
//   per pass (which must be 0);
// - the fence pass after one transform changed, against a full fence pass:
//   only the changed branch is recomputed, every other transform reuses its
//   cached sphere.

#include <benchmark/benchmark.h>

#include <sx/sxCore.h>
#include "sxBenchAllocations.h"
#include "sxBenchMain.h"
#include "sxBenchTree.h"

#include <vector>

namespace {

constexpr int depth = 6;

struct Tree {
  sxRef<sxGroup> holder;
  sxGroup* root = nullptr;
  std::vector<sxTransform*> deepest;  // the transforms of level 5
};

// Each transform spreads its ten children along one axis, by a spacing that
// shrinks with the level, so that a narrow view sees part of the tree.
sxGroup* build(int level, int index, Tree& tree, long& counter) {
  sxGroup* node;
  if (level == depth) {
    auto* fence = new sxSphereFence;
    fence->setSphere(sxSphere(sxVec3(0, 0, 0), 0.5f));
    node = fence;
  } else if (level % 2 == 1) {
    const float spacing = level == 1 ? 300.0f : level == 3 ? 30.0f : 3.0f;
    sxMatrix m;
    const float offset = (float(index) - 4.5f) * spacing;
    m.makeXYZ(level == 3 ? 0.0f : offset, 0.0f, level == 3 ? offset : 0.0f);
    auto* t = new sxTransform(m);
    if (level == 5) tree.deepest.push_back(t);
    node = t;
  } else {
    node = new sxGroup;
  }
  node->setName(sxbench::nodeName(counter++).data());
  if (level < depth)
    for (int i = 0; i < sxbench::branching; ++i) node->addChild(build(level + 1, i, tree, counter));
  return node;
}

Tree& tree() {
  static Tree t;
  if (!t.root) {
    long counter = 0;
    t.holder = new sxGroup;
    t.root = build(0, 0, t, counter);
    t.holder->addChild(t.root);
  }
  return t;
}

// A fence pass from the root, as a scene runs it.
void fencePass(sxTravContext* ctx, sxSphere& bounds) {
  ctx->reset();
  bounds.makeEmpty();
  ctx->pushVolume(&bounds);
  tree().root->updateFences(ctx);
  ctx->popVolume();
}

// Every transform marked for recomputing, as after loading the tree.
void markAll() {
  Tree& t = tree();
  sxRef<sxGroup> keep(t.root);
  t.holder->removeChild(t.root);
  t.holder->addChild(t.root);
}

// Arg 1: with a statistics object on the camera's context (which counts
// every group by type); arg 0: without, the visits counted in one pass
// beforehand.
void BM_CullingCameraPass(benchmark::State& state) {
  Tree& t = tree();
  sxRef<sxTravContext> fences(new sxTravContext);
  sxSphere bounds;
  markAll();
  fencePass(fences.get(), bounds);

  sxRef<sxCamera> camera(new sxCamera);
  sxMatrix eye;
  eye.makeXYZ(0.0f, -2000.0f, 0.0f);
  camera->setMatrix(eye);
  sxFrustum view;
  view.makeFOV(40.0f, 40.0f, 1.0f, 10000.0f);
  camera->setFrustum(view);
  sxTravContext* ctx = camera->getTravContext();
  sxRef<sxStats> stats(new sxStats);
  ctx->setStats(stats.get());
  camera->traverse(t.root);  // the stacks reach the depth of the tree
  const long long visited = stats->getNumGroups(), culled = stats->getNumCulled();
  if (!state.range(0)) ctx->setStats(nullptr);

  long allocated = 0;
  for (auto _ : state) {
    stats->reset();
    const long before = allocations;
    camera->traverse(t.root);
    allocated += allocations - before;
  }
  if (state.range(0) && stats->getNumGroups() != visited) state.SkipWithError("visits differ");
  state.counters["visited"] = double(visited);
  state.counters["culled"] = double(culled);
  state.counters["allocs"] = double(allocated);
  // Seconds per node visited.
  state.counters["per_visit"] = benchmark::Counter(
      double(visited), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_CullingCameraPass)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_FullFencePass(benchmark::State& state) {
  sxRef<sxTravContext> ctx(new sxTravContext);
  sxSphere bounds;
  for (auto _ : state) {
    state.PauseTiming();
    markAll();
    state.ResumeTiming();
    fencePass(ctx.get(), bounds);
    benchmark::DoNotOptimize(bounds);
  }
  state.SetItemsProcessed(state.iterations() * sxbench::treeSize(depth));
}
BENCHMARK(BM_FullFencePass)->Unit(benchmark::kMillisecond);

// One deep transform moved, then the fence pass; the transforms are taken in
// turn.
void BM_FencePassAfterOneChange(benchmark::State& state) {
  Tree& t = tree();
  sxRef<sxTravContext> ctx(new sxTravContext);
  sxSphere bounds;
  markAll();
  fencePass(ctx.get(), bounds);
  std::size_t next = 0;
  long allocated = 0;
  for (auto _ : state) {
    sxTransform* moved = t.deepest[next];
    next = (next + 7919) % t.deepest.size();
    float x, y, z;
    moved->getXYZ(x, y, z);
    const long before = allocations;
    moved->setXYZ(x, y, z + (z > 0.0f ? -1.0f : 1.0f));
    fencePass(ctx.get(), bounds);
    allocated += allocations - before;
    benchmark::DoNotOptimize(bounds);
  }
  state.counters["allocs"] = double(allocated);
}
BENCHMARK(BM_FencePassAfterOneChange)->Unit(benchmark::kMicrosecond);

}  // namespace

SX_BENCHMARK_MAIN_KEEPING_HEAP()
