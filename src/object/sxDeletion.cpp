#include <sx/object/sxBase.h>
#include <sx/threads/sxThread.h>

#include <atomic>

#include "object/sxDeletion.h"

namespace {
// Objects whose deletion has been deferred and not yet carried out.
constinit std::atomic<int> numRemainingDels{0};
}  // namespace

void sxiDeletion::release(sxBase* obj) {
  if (sxThread::getTotalNumDownstreamThreads() == 0) {
    delete obj;
    return;
  }
  sxThread::deferDeletion(obj);
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
