// Speed of the thread machinery: a queue shared by two threads, a flush
// through a chain of three threads, and an uncontended lock against the
// standard library's recursive mutex.

#include <benchmark/benchmark.h>
#include <sx/sxCore.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

// One thread puts, another gets; items per second over both. The queue
// grows as a thread's command queue does.
void BM_QueuePutGetBetweenTwoThreads(benchmark::State& state) {
  constexpr int batch = 100000;
  sxQueue queue(int(sizeof(std::int64_t)), 250);
  queue.setMode(sxQueue::GROWING);
  std::atomic<std::int64_t> received{0};
  std::atomic<bool> stop{false};
  // The consumer gives the processor up when it finds the queue empty, as a
  // free-running thread does.
  std::thread consumer([&] {
    std::int64_t value = 0;
    while (!stop.load(std::memory_order_relaxed)) {
      if (queue.get(&value))
        received.fetch_add(1, std::memory_order_release);
      else
        std::this_thread::yield();
    }
  });
  std::int64_t sent = 0;
  for (auto _ : state) {
    for (int i = 0; i < batch; ++i) {
      ++sent;
      queue.put(&sent);
    }
    while (received.load(std::memory_order_acquire) < sent) std::this_thread::yield();
  }
  stop.store(true);
  consumer.join();
  state.SetItemsProcessed(state.iterations() * batch);
}
BENCHMARK(BM_QueuePutGetBetweenTwoThreads)->UseRealTime()->Unit(benchmark::kMillisecond);

// flushQueue on the first of three free-running threads linked in a chain:
// returns once all three have reached the flush.
void BM_FlushThroughChainOfThree(benchmark::State& state) {
  sxThread* chain[3];
  for (auto*& t : chain) {
    t = new sxThread;
    t->ref();
  }
  chain[0]->addDownstreamThread(chain[1]);
  chain[1]->addDownstreamThread(chain[2]);
  for (auto* t : chain) t->run();
  std::vector<double> micros;
  micros.reserve(1 << 16);
  for (auto _ : state) {
    auto start = Clock::now();
    chain[0]->flushQueue();
    micros.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
  }
  std::sort(micros.begin(), micros.end());
  if (!micros.empty()) {
    state.counters["median_us"] = micros[micros.size() / 2];
    state.counters["p90_us"] = micros[micros.size() * 9 / 10];
  }
  for (auto* t : chain) t->kill();
  chain[0]->removeDownstreamThread(chain[1]);
  chain[1]->removeDownstreamThread(chain[2]);
  for (auto* t : chain) t->unRef();
}
BENCHMARK(BM_FlushThroughChainOfThree)->UseRealTime()->Unit(benchmark::kMicrosecond);

void BM_LockAcquireRelease(benchmark::State& state) {
  sxLock lock;
  for (auto _ : state) {
    lock.acquire();
    lock.release();
  }
}
BENCHMARK(BM_LockAcquireRelease);

void BM_StdRecursiveMutexLockUnlock(benchmark::State& state) {
  std::recursive_mutex mutex;
  for (auto _ : state) {
    mutex.lock();
    mutex.unlock();
  }
}
BENCHMARK(BM_StdRecursiveMutexLockUnlock);

// Both in one run, alternating batches so that both see the same machine
// state; reports the time of an sxLock pair over that of a mutex pair.
void BM_LockOverStdRecursiveMutex(benchmark::State& state) {
  constexpr int batch = 10000;
  sxLock lock;
  std::recursive_mutex mutex;
  // Called through a pointer, as the library's callers do.
  sxLock* volatile viaPointer = &lock;
  Clock::duration ours{}, theirs{};
  for (auto _ : state) {
    auto t0 = Clock::now();
    for (int i = 0; i < batch; ++i) {
      viaPointer->acquire();
      viaPointer->release();
    }
    auto t1 = Clock::now();
    for (int i = 0; i < batch; ++i) {
      mutex.lock();
      mutex.unlock();
    }
    auto t2 = Clock::now();
    ours += t1 - t0;
    theirs += t2 - t1;
  }
  state.counters["ratio"] = double(ours.count()) / double(theirs.count());
}
BENCHMARK(BM_LockOverStdRecursiveMutex);

}  // namespace

BENCHMARK_MAIN();
