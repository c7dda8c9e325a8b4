#include <sx/threads/sxLock.h>

#include <atomic>
#include <new>

#include "platform/sxPlatform.h"

SX_DEFINE_CLASS(sxLock)

namespace {
constinit std::atomic<bool> locksEnabled{true};

using Mutex = sxPlatform::RecursiveMutex;
static_assert(sizeof(Mutex) <= 16 && alignof(Mutex) <= 8, "platform mutex must fit its storage");

inline Mutex& mutexOf(unsigned char* storage) {
  return *std::launder(reinterpret_cast<Mutex*>(storage));
}
inline const Mutex& mutexOf(const unsigned char* storage) {
  return *std::launder(reinterpret_cast<const Mutex*>(storage));
}
}  // namespace

sxLock::sxLock() : timeout(-1) {
  ::new (mutex) Mutex();
}

sxLock::sxLock(const sxLock& source) : sxBase(source), timeout(source.timeout) {
  ::new (mutex) Mutex();
}

sxLock::~sxLock() {
  mutexOf(mutex).~Mutex();
}

bool sxLock::acquire(int timeoutMs) {
  if (!locksEnabled.load(std::memory_order_relaxed)) return true;
  return mutexOf(mutex).acquire(timeoutMs);
}

bool sxLock::acquire() {
  return acquire(timeout);
}

void sxLock::release() {
  if (!locksEnabled.load(std::memory_order_relaxed)) return;
  mutexOf(mutex).release();
}

bool sxLock::available() {
  if (!locksEnabled.load(std::memory_order_relaxed)) return true;
  return mutexOf(mutex).acquire(0);
}

bool sxLock::isHeldByCurrentThread() const {
  return mutexOf(mutex).heldByCurrentThread();
}

void sxLock::enableAll(bool enable) {
  if (!enable && locksEnabled.load()) {
    if (sxType* t = getClassType()) {
      t->lockInstanceList();
      for (int i = 0, n = t->getNum(false); i < n; ++i)
        static_cast<sxLock*>(t->get(i, false))->release();
      t->unlockInstanceList();
    }
  }
  locksEnabled.store(enable);
}

bool sxLock::isEnabled() {
  return locksEnabled.load();
}
