#include <sx/object/sxBase.h>

#include <atomic>
#include <functional>
#include <unordered_map>

#include "kernel/sxHooks.h"
#include "kernel/sxKernelLocks.h"
#include "object/sxDeletion.h"

namespace {
// Objects whose deletion has been deferred and not yet carried out.
constinit std::atomic<int> numRemainingDels{0};

using Table =
    std::unordered_map<const sxBase*, int, std::hash<const sxBase*>, std::equal_to<const sxBase*>,
                       sxAllocator<std::pair<const sxBase* const, int>>>;
// Made on the first deferred deletion, freed at module unload.
constinit Table* inFlight = nullptr;
}  // namespace

void sxiDeletion::release(sxBase* obj) {
  {
    sxiKernel::LockGuard guard(sxiKernel::baseLock);
    if (obj->refCount.load() > 0 || isTracked(obj)) return;
    if (sxiHooks::deferDeletion && sxiHooks::deferDeletion(obj)) return;
  }
  destroy(obj);
}

int sxiDeletion::refAndGet(sxBase* obj) {
  return obj->refCount.fetch_add(1, std::memory_order_acq_rel) + 1;
}

void sxiDeletion::setRefCount(sxBase* obj, int count) {
  obj->refCount.store(count, std::memory_order_release);
}

void sxiDeletion::addPending(int delta) {
  numRemainingDels.fetch_add(delta);
}

int sxiDeletion::pending() {
  return numRemainingDels.load();
}

void sxiDeletion::destroy(sxBase* obj) {
  if (sxiHooks::destroysItselfLater && sxiHooks::destroysItselfLater(obj)) return;
  delete obj;
}

void sxiDeletion::deleteNow(sxBase* obj) {
  {
    sxiKernel::LockGuard guard(sxiKernel::baseLock);
    untrack(obj);
  }
  obj->markDeleted(obj);
  destroy(obj);
}

bool sxiDeletion::isTracked(const sxBase* obj) {
  return inFlight && !inFlight->empty() && inFlight->count(obj) != 0;
}

void sxiDeletion::track(sxBase* obj, int items) {
  if (!inFlight) inFlight = sxNew<Table>();
  if (!inFlight) sxMemory::outOfMemory();
  (*inFlight)[obj] = items;
}

int sxiDeletion::settle(sxBase* obj, int delta) {
  if (!inFlight) return 0;
  auto it = inFlight->find(obj);
  if (it == inFlight->end()) return 0;
  return it->second += delta;
}

void sxiDeletion::untrack(sxBase* obj) {
  if (inFlight) inFlight->erase(obj);
}

void sxiDeletion::cleanUp() {
  sxDelete(inFlight);
  inFlight = nullptr;
}
