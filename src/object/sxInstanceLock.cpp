#include <sx/object/sxInstanceLock.h>

#include <chrono>
#include <thread>

namespace {

// The calling thread's identity: the address of a variable of its own.
std::uintptr_t self() {
  static thread_local char marker;
  return reinterpret_cast<std::uintptr_t>(&marker);
}

}  // namespace

bool sxiInstanceLock::enterContended() {
  // Only the thread that holds the lock across calls sets the holder, and
  // it clears it before it lets go: a match means this thread holds it.
  if (holder.load(std::memory_order_relaxed) == self()) return false;
  acquire();
  return true;
}

void sxiInstanceLock::acquire() {
  // Other threads hold it for a few instructions; a list held across calls
  // may stay held for long, so waiting turns from spinning to yielding to
  // sleeping.
  for (unsigned attempt = 0;; ++attempt) {
    std::uint32_t expected = 0;
    if (word.load(std::memory_order_relaxed) == 0 &&
        word.compare_exchange_weak(expected, 1, std::memory_order_acquire))
      return;
    if (attempt < 64) continue;
    if (attempt < 128)
      std::this_thread::yield();
    else
      std::this_thread::sleep_for(std::chrono::microseconds(50));
  }
}

void sxiInstanceLock::hold() {
  const std::uintptr_t me = self();
  if (holder.load(std::memory_order_relaxed) == me) {
    ++depth;
    return;
  }
  acquire();
  holder.store(me, std::memory_order_relaxed);
  depth = 1;
}

void sxiInstanceLock::unhold() {
  if (holder.load(std::memory_order_relaxed) != self()) return;
  if (--depth > 0) return;
  holder.store(0, std::memory_order_relaxed);
  leave();
}

unsigned sxiInstanceLock::holdsHere() const {
  return holder.load(std::memory_order_relaxed) == self() ? depth : 0;
}
