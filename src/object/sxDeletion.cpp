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

// A destruction may cause others (an object releasing its attributes, a
// group its children), which nest inside it. Past maxNesting levels they
// wait here instead and are carried out by the outermost destruction, one
// after the other: destroying a chain of a million objects then nests no
// deeper than destroying a chain of maxNesting, while shallow graphs are
// taken down as before, each object after what it released.
//
// Trivially destructible: destructions still happen while the library is
// unloaded, after the thread's own variables are gone. The storage lives
// only while a cascade runs.
struct WorkList {
  static constexpr int maxNesting = 256;
  int nesting;
  sxBase** waiting;
  std::size_t count;
  std::size_t capacity;

  void push(sxBase* obj) {
    if (count == capacity) {
      std::size_t grown = capacity ? 2 * capacity : 64;
      auto* p = static_cast<sxBase**>(sxMemory::realloc(waiting, grown * sizeof(sxBase*)));
      if (!p) sxMemory::outOfMemory();
      waiting = p;
      capacity = grown;
    }
    waiting[count++] = obj;
  }
};
constinit thread_local WorkList destructions{};
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
  WorkList& work = destructions;
  if (work.nesting >= WorkList::maxNesting) {
    work.push(obj);
    return;
  }
  ++work.nesting;
  delete obj;
  if (work.nesting == 1) {
    // Newest first: each waiting object may add more, which it nests.
    while (work.count > 0) delete work.waiting[--work.count];
    sxMemory::free(work.waiting);
    work = WorkList{};
  } else {
    --work.nesting;
  }
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
