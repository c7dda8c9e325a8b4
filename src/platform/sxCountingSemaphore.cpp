#include <chrono>

#include "platform/sxPlatform.h"

// The word holds the count in its low 31 bits and, on top, a bit that says
// sleepers may be waiting in the kernel. Only the blocking step is
// platform-specific.

namespace {
constexpr int countMask = 0x7FFFFFFF;
// A short spin before sleeping: a flush or a hand-over between two threads
// usually completes within it, which saves both sides a system call.
constexpr int spinRounds = 128;
}  // namespace

sxPlatform::CountingSemaphore::CountingSemaphore(int initial, int max)
    : maximum(max < 1 ? 1 : max) {
  if (initial < 0) initial = 0;
  if (initial > maximum) initial = maximum;
  word.store(initial, std::memory_order_relaxed);
}

bool sxPlatform::CountingSemaphore::post(int n, std::atomic<int>* previous) {
  if (n < 1) return false;
  int w = word.load(std::memory_order_relaxed);
  for (;;) {
    int c = w & countMask;
    if (n > maximum - c) return false;
    if (previous) previous->store(c, std::memory_order_relaxed);
    // The new value drops the sleepers bit: every sleeper is woken below and
    // sets it again if it has to go back to sleep.
    if (word.compare_exchange_weak(w, c + n, std::memory_order_seq_cst, std::memory_order_relaxed))
      break;
  }
  // From here on the semaphore may already be gone; only its address is used.
  if (w & sleepersBit) wakeAllOnWord(&word);
  return true;
}

bool sxPlatform::CountingSemaphore::tryTake() {
  int w = word.load(std::memory_order_relaxed);
  while ((w & countMask) > 0)
    if (word.compare_exchange_weak(w, w - 1, std::memory_order_acquire, std::memory_order_relaxed))
      return true;
  return false;
}

sxPlatform::CountingSemaphore::WaitResult sxPlatform::CountingSemaphore::wait(int timeoutMs) {
  if (tryTake()) return WaitResult::signalled;
  if (timeoutMs == 0) return WaitResult::timedOut;
  for (int i = 0; i < spinRounds; ++i) {
    cpuRelax();
    if ((word.load(std::memory_order_relaxed) & countMask) && tryTake())
      return WaitResult::signalled;
  }
  using clock = std::chrono::steady_clock;
  const auto deadline = clock::now() + std::chrono::milliseconds(timeoutMs < 0 ? 0 : timeoutMs);
  for (;;) {
    if (tryTake()) return WaitResult::signalled;
    int limit = -1;
    if (timeoutMs > 0) {
      auto left =
          std::chrono::duration_cast<std::chrono::milliseconds>(deadline - clock::now()).count();
      if (left <= 0) return WaitResult::timedOut;
      limit = int(left);
    }
    int w = word.load(std::memory_order_relaxed);
    if (w & countMask) continue;
    if (!(w & sleepersBit)) {
      if (!word.compare_exchange_weak(w, w | sleepersBit, std::memory_order_seq_cst,
                                      std::memory_order_relaxed))
        continue;
      w |= sleepersBit;
    }
    waitOnWord(&word, w, limit);
  }
}

int sxPlatform::CountingSemaphore::getCount() const {
  return word.load(std::memory_order_relaxed) & countMask;
}
