#include <sx/object/sxBase.h>

#include <atomic>
#include <functional>
#include <unordered_map>

#include "kernel/sxHooks.h"
#include "kernel/sxKernelLocks.h"
#include "object/sxDeletion.h"
#include "platform/sxPlatform.h"

namespace {
// Objects whose deletion has been deferred and not yet carried out.
constinit std::atomic<int> numRemainingDels{0};
// Objects in the table, read without the lock by the fast path of release.
constinit std::atomic<int> numTracked{0};

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
struct Objects {
  sxBase** items;
  std::size_t count;
  std::size_t capacity;

  void push(sxBase* obj) {
    if (count == capacity) {
      std::size_t grown = capacity ? 2 * capacity : 64;
      auto* p = static_cast<sxBase**>(sxMemory::realloc(items, grown * sizeof(sxBase*)));
      if (!p) sxMemory::outOfMemory();
      items = p;
      capacity = grown;
    }
    items[count++] = obj;
  }
  void release() {
    sxMemory::free(items);
    *this = Objects{};
  }
};

struct WorkList {
  static constexpr int maxNesting = 256;
  int nesting;
  Objects waiting;
  // Holds (see sxiDeletion::Hold) and the objects parked meanwhile.
  int holds;
  Objects parked;
};
SX_TLS_FAST constinit thread_local WorkList destructions{};
}  // namespace

void sxiDeletion::release(sxBase* obj) {
  // Without a pipeline and with nothing in flight the decision needs no
  // lock: the object dies at once unless it was referenced again.
  if (numTracked.load(std::memory_order_acquire) == 0 &&
      !(sxiHooks::pipelineRunning && sxiHooks::pipelineRunning())) {
    if (obj->refCount.load() <= 0) destroy(obj);
    return;
  }
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
  // A plain last release (count 0) while a hold lasts: the object is kept
  // with a reference of the hold's own, given back when the hold ends. So it
  // can be taken again and released again meanwhile, and one parked object
  // may release another at the end, without any being looked at after it
  // is gone.
  if (work.holds > 0 && obj->getRefCount() == 0) {
    obj->ref();
    work.parked.push(obj);
    return;
  }
  if (work.nesting >= WorkList::maxNesting) {
    work.waiting.push(obj);
    return;
  }
  ++work.nesting;
  delete obj;
  if (work.nesting == 1) {
    // Newest first: each waiting object may add more, which it nests.
    while (work.waiting.count > 0) delete work.waiting.items[--work.waiting.count];
    work.waiting.release();
  }
  --work.nesting;
}

sxiDeletion::Hold::Hold() {
  ++destructions.holds;
}

sxiDeletion::Hold::~Hold() {
  WorkList& work = destructions;
  if (--work.holds > 0) return;
  Objects parked = work.parked;
  work.parked = Objects{};
  // An object taken again meanwhile lives on with the references taken.
  for (std::size_t i = 0; i < parked.count; ++i) parked.items[i]->unRef();
  parked.release();
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
  if (inFlight->insert_or_assign(obj, items).second) numTracked.fetch_add(1);
}

int sxiDeletion::settle(sxBase* obj, int delta) {
  if (!inFlight) return 0;
  auto it = inFlight->find(obj);
  if (it == inFlight->end()) return 0;
  return it->second += delta;
}

void sxiDeletion::untrack(sxBase* obj) {
  if (inFlight && inFlight->erase(obj)) numTracked.fetch_sub(1);
}

void sxiDeletion::cleanUp() {
  sxDelete(inFlight);
  inFlight = nullptr;
}
