#include <chrono>

#include "platform/sxPlatform.h"

// A futex-style mutex (0 free, 1 held, 2 held with waiters) with an owner and
// a depth for recursion. Only the blocking step is platform-specific.

namespace {
constexpr int spinRounds = 40;
constexpr int maxPause = 16;
}  // namespace

bool sxPlatform::RecursiveMutex::acquire(int timeoutMs) {
  const std::uint32_t self = currentThreadId();
  // The library nests its locks a lot (the type registry takes its lock
  // inside its own calls), so the owner test comes first: a nested acquire
  // is then a plain load instead of a failing atomic exchange.
  if (owner.load(std::memory_order_relaxed) == self) {
    ++depth;
    return true;
  }
  int c = 0;
  if (!state.compare_exchange_strong(c, 1, std::memory_order_acquire, std::memory_order_relaxed)) {
    if (timeoutMs == 0) return false;
    // Critical sections of the library are short: spinning a little before
    // sleeping keeps two threads that share a queue out of the kernel.
    // The pause between looks grows, so that a spinner does not keep
    // pulling the lock's cache line away from the thread that holds it.
    for (int i = 0, pause = 1; i < spinRounds && c != 0; ++i) {
      for (int k = 0; k < pause; ++k) cpuRelax();
      if (pause < maxPause) pause *= 2;
      if (state.load(std::memory_order_relaxed) != 0) continue;
      c = 0;
      if (state.compare_exchange_strong(c, 1, std::memory_order_acquire, std::memory_order_relaxed))
        break;
    }
  }
  if (c != 0) {
    using clock = std::chrono::steady_clock;
    const auto deadline = clock::now() + std::chrono::milliseconds(timeoutMs < 0 ? 0 : timeoutMs);
    if (c != 2) c = state.exchange(2, std::memory_order_acquire);
    while (c != 0) {
      int wait = -1;
      if (timeoutMs > 0) {
        auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - clock::now()).count();
        if (left <= 0) return false;
        wait = int(left);
      }
      if (!waitOnWord(&state, 2, wait) && timeoutMs > 0 && clock::now() >= deadline) {
        // One last attempt so that a release racing the timeout is not lost.
        c = 0;
        if (state.compare_exchange_strong(c, 2, std::memory_order_acquire)) break;
        return false;
      }
      c = state.exchange(2, std::memory_order_acquire);
    }
  }
  owner.store(self, std::memory_order_relaxed);
  depth = 1;
  return true;
}

bool sxPlatform::RecursiveMutex::release() {
  if (owner.load(std::memory_order_relaxed) != currentThreadId()) return false;
  if (--depth > 0) return true;
  owner.store(0, std::memory_order_relaxed);
  if (state.exchange(0, std::memory_order_release) == 2) wakeOneOnWord(&state);
  return true;
}

bool sxPlatform::RecursiveMutex::heldByCurrentThread() const {
  return owner.load(std::memory_order_relaxed) == currentThreadId();
}
