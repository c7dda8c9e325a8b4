// Costs of the object model: reference counting, creating and destroying
// objects, and arena allocation, each beside its plain counterpart. Run
// with the heap kept between iterations (see sxBenchMain.h).

#include <benchmark/benchmark.h>

#include <sx/sxCore.h>
#include "sxBenchMain.h"

#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

// Resident bytes of the process, from /proc/self/statm.
double residentBytes() {
  long pages = 0, resident = 0;
  if (FILE* f = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(f, "%ld %ld", &pages, &resident) != 2) resident = 0;
    std::fclose(f);
  }
  return double(resident) * double(sysconf(_SC_PAGESIZE));
}

// What one named object costs in resident memory, its instance-list entry
// included. Registered first: it must run before the other benchmarks have
// left freed heap memory behind for it to reuse.
void BM_NamedGroupResidentBytes(benchmark::State& state) {
  const int n = int(state.range(0));
  std::vector<sxGroup*> objects(std::size_t(n), nullptr);
  for (auto _ : state) {
    const double before = residentBytes();
    for (int i = 0; i < n; ++i) {
      objects[std::size_t(i)] = new sxGroup;
      objects[std::size_t(i)]->setName("node");
    }
    const double after = residentBytes();
    for (int i = n - 1; i >= 0; --i) delete objects[std::size_t(i)];
    state.counters["bytes_per_object"] = (after - before) / n;
  }
  state.counters["sizeof_sxBase"] = double(sizeof(sxBase));
}
BENCHMARK(BM_NamedGroupResidentBytes)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);

void BM_AtomicIncDec(benchmark::State& state) {
  std::atomic<int> counter{1};
  for (auto _ : state) {
    counter.fetch_add(1, std::memory_order_relaxed);
    benchmark::DoNotOptimize(counter.fetch_sub(1, std::memory_order_acq_rel));
  }
}
BENCHMARK(BM_AtomicIncDec);

void BM_RefUnRef(benchmark::State& state) {
  sxBase* obj = new sxGroup;
  obj->ref();
  benchmark::DoNotOptimize(obj);
  for (auto _ : state) {
    obj->ref();
    obj->unRef();
  }
  obj->unRef();
}
BENCHMARK(BM_RefUnRef);

// Creates and destroys N groups; the time per object is reported.
template <class Make>
void createDestroy(benchmark::State& state, Make make) {
  const int n = int(state.range(0));
  std::vector<sxGroup*> objects(std::size_t(n), nullptr);
  for (auto _ : state) {
    for (int i = 0; i < n; ++i) objects[std::size_t(i)] = make();
    for (int i = n - 1; i >= 0; --i) delete objects[std::size_t(i)];
  }
  state.SetItemsProcessed(state.iterations() * n);
  state.counters["ns_per_object"] = benchmark::Counter(
      double(state.iterations()) * n, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_GroupByConstructor(benchmark::State& state) {
  createDestroy(state, [] { return new sxGroup; });
}
BENCHMARK(BM_GroupByConstructor)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_GroupByName(benchmark::State& state) {
  createDestroy(state, [] { return static_cast<sxGroup*>(sxType::createInstance("sxGroup")); });
}
BENCHMARK(BM_GroupByName)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

// With a short name, the common case of a scene graph's nodes.
void BM_NamedGroupByConstructor(benchmark::State& state) {
  createDestroy(state, [] {
    auto* g = new sxGroup;
    g->setName("node");
    return g;
  });
}
BENCHMARK(BM_NamedGroupByConstructor)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_NamedGroupByName(benchmark::State& state) {
  createDestroy(state, [] {
    auto* g = static_cast<sxGroup*>(sxType::createInstance("sxGroup"));
    g->setName("node");
    return g;
  });
}
BENCHMARK(BM_NamedGroupByName)->Arg(1000000)->Unit(benchmark::kMillisecond);

// Releasing in creation order exercises the unordered removal from the
// instance lists (every removal moves the last instance into the gap).
void BM_GroupReleaseInCreationOrder(benchmark::State& state) {
  const int n = int(state.range(0));
  std::vector<sxGroup*> objects(std::size_t(n), nullptr);
  for (auto _ : state) {
    for (int i = 0; i < n; ++i) objects[std::size_t(i)] = new sxGroup;
    for (int i = 0; i < n; ++i) objects[std::size_t(i)]->unRef();
  }
  state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_GroupReleaseInCreationOrder)->Arg(1000000)->Unit(benchmark::kMillisecond);

// Both allocators are measured the same way, in batches of 64 requests per
// iteration, so that the benchmark loop's own cost does not dominate; the
// figure to compare is the time per item.
constexpr int batch = 64;

void BM_MallocFree32(benchmark::State& state) {
  for (auto _ : state) {
    for (int i = 0; i < batch; ++i) {
      void* p = std::malloc(32);
      benchmark::DoNotOptimize(p);
      std::free(p);
    }
  }
  state.SetItemsProcessed(state.iterations() * batch);
}
BENCHMARK(BM_MallocFree32);

// A frame's worth of small copies, then the reset that drops them.
void BM_ArenaMalloc32(benchmark::State& state) {
  sxArena arena;
  int n = 0;
  for (auto _ : state) {
    for (int i = 0; i < batch; ++i) benchmark::DoNotOptimize(arena.malloc(32));
    if (++n == 64) {
      arena.reset();
      n = 0;
    }
  }
  state.SetItemsProcessed(state.iterations() * batch);
}
BENCHMARK(BM_ArenaMalloc32);

}  // namespace

SX_BENCHMARK_MAIN_KEEPING_HEAP()
