#pragma once

#include <sx/threads/sxLock.h>

// Holds an sxLock for a scope (nothing for null).
class sxiLockScope {
 public:
  explicit sxiLockScope(sxLock* l) : lock(l) {
    if (lock) lock->acquire();
  }
  ~sxiLockScope() {
    if (lock) lock->release();
  }
  sxiLockScope(const sxiLockScope&) = delete;
  sxiLockScope& operator=(const sxiLockScope&) = delete;

 private:
  sxLock* lock;
};

// The result of f, computed while lock is held.
template <class F>
auto sxiLocked(sxLock* lock, F&& f) {
  sxiLockScope guard(lock);
  return f();
}
