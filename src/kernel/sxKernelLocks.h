#pragma once

#include <atomic>

#include "kernel/sxHooks.h"

class sxBase;

// The five kernel locks. Each is skipped while it does not exist (before the
// library's initialiser creates it and after sxShutdown releases it). Where
// nested, the order is base, then type, then plug-in.
namespace sxiKernel {

enum LockId { memoryLock, baseLock, typeLock, plugInLock, groupLock, numLocks };

extern std::atomic<sxBase*> locks[numLocks];

inline sxBase* getLock(LockId id) {
  return locks[id].load(std::memory_order_acquire);
}

inline void acquireLock(sxBase* lock) {
  if (lock && sxiHooks::acquireLock) sxiHooks::acquireLock(lock);
}
inline void releaseLock(sxBase* lock) {
  if (lock && sxiHooks::releaseLock) sxiHooks::releaseLock(lock);
}

// Holds a lock for a scope, when it exists.
class LockGuard {
 public:
  explicit LockGuard(sxBase* lock) : lock(lock) { acquireLock(lock); }
  explicit LockGuard(LockId id) : LockGuard(getLock(id)) {}
  ~LockGuard() { releaseLock(lock); }
  LockGuard(const LockGuard&) = delete;
  LockGuard& operator=(const LockGuard&) = delete;

 private:
  sxBase* lock;
};

}  // namespace sxiKernel
