#include <chrono>

#include "platform/sxPlatform.h"

// A futex-style mutex (0 free, 1 held, 2 held with waiters) with an owner and
// a depth for recursion. Only the blocking step is platform-specific.

bool sxPlatform::RecursiveMutex::acquire(int timeoutMs) {
  const std::uint32_t self = currentThreadId();
  // The library nests its locks a lot (the type registry takes its lock
  // inside its own calls), so the owner test comes first: a nested acquire
  // is then a plain load instead of a failing atomic exchange.
  if (owner.load(std::memory_order_relaxed) == self) {
    ++depth;
    return true;
  }
  // A held lock sends the caller to sleep at once. Waiters do not spin:
  // where cores are far apart, a spinning waiter keeps pulling the lock's
  // cache line away from its holder, which costs more than the sleep (two
  // threads sharing a queue moved fewer items per second with spinning).
  int c = 0;
  if (!state.compare_exchange_strong(c, 1, std::memory_order_acquire, std::memory_order_relaxed) &&
      timeoutMs == 0)
    return false;
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
