#pragma once

#include <atomic>

class sxLock;

// The five kernel locks. Each is skipped while it does not exist (before the
// library's initialiser creates it and after sxShutdown releases it). Where
// nested, the order is base, then type, then plug-in.
namespace sxiKernel {

enum LockId { memoryLock, baseLock, typeLock, plugInLock, groupLock, numLocks };

extern std::atomic<sxLock*> locks[numLocks];

inline sxLock* getLock(LockId id) {
  return locks[id].load(std::memory_order_acquire);
}

void acquireLock(sxLock* lock);
void releaseLock(sxLock* lock);

// Holds one kernel lock for a scope, when it exists.
class LockGuard {
 public:
  explicit LockGuard(LockId id) : lock(getLock(id)) {
    if (lock) acquireLock(lock);
  }
  ~LockGuard() {
    if (lock) releaseLock(lock);
  }
  LockGuard(const LockGuard&) = delete;
  LockGuard& operator=(const LockGuard&) = delete;

 private:
  sxLock* lock;
};

}  // namespace sxiKernel
