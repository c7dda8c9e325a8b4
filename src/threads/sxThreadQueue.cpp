// The command queue of a thread: posting, carrying out, flushing, and the
// thread side of deferred deletion.

#include <sx/containers/sxQueue.h>
#include <sx/kernel/sxKernel.h>
#include <sx/nodes/sxAction.h>
#include <sx/threads/sxFlushThread.h>
#include <sx/threads/sxLock.h>
#include <sx/threads/sxThread.h>

#include "kernel/sxKernelLocks.h"
#include "object/sxDeletion.h"
#include "platform/sxPlatform.h"
#include "threads/sxThreadHooks.h"
#include "threads/sxThreadInternals.h"

namespace {
constinit std::atomic<bool> appThreadDeletion{false};
// Non-zero while flushDownstream runs (at shutdown).
constinit std::atomic<int> shutdownFlushes{0};
// Rounds of flushDownstream before it gives up on threads that keep
// releasing objects.
constexpr int maxShutdownRounds = 100;

// The threads whose queues the calling thread is carrying out, innermost
// last, and thread objects released meanwhile whose destruction waits until
// that is over: destroying a thread joins it and frees its queue, neither
// of which may happen under a call that is still reading that queue.
struct CarryState {
  static constexpr int maxDepth = 16;
  const sxBase* carrying[maxDepth];
  int depth = 0;
  sxBase* doomed[maxDepth];
  int numDoomed = 0;

  bool isCarrying(const sxBase* t) const {
    for (int i = 0; i < depth && i < maxDepth; ++i)
      if (carrying[i] == t) return true;
    return false;
  }
  int findDoomed(const sxBase* t) const {
    for (int i = 0; i < numDoomed; ++i)
      if (doomed[i] == t) return i;
    return -1;
  }
  void removeDoomedAt(int i) { doomed[i] = doomed[--numDoomed]; }
};
thread_local CarryState carry;
}  // namespace

bool sxThread::destroysItselfLater(sxBase* obj) {
  sxThread* self = getCurrentThread();
  const bool ownWorker = self && obj == self && !self->isAppThread();
  if (!ownWorker && !carry.isCarrying(obj)) return false;
  if (carry.findDoomed(obj) >= 0) return true;
  if (carry.numDoomed >= CarryState::maxDepth) return false;
  carry.doomed[carry.numDoomed++] = obj;
  return true;
}

bool sxThread::isDoomed(const sxThread* t) {
  return carry.findDoomed(t) >= 0;
}

bool sxThread::releaseDoomed(const sxThread* t) {
  int i = carry.findDoomed(t);
  if (i < 0) return false;
  carry.removeDoomedAt(i);
  return true;
}

// Destroys the doomed objects that nothing on this thread uses any more; a
// worker's own object waits for the worker's loop.
void sxThread::destroyDoomed() {
  const sxThread* self = getCurrentThread();
  for (int i = carry.numDoomed - 1; i >= 0; --i) {
    sxBase* obj = carry.doomed[i];
    if (carry.isCarrying(obj) || (obj == self && !self->isAppThread())) continue;
    carry.removeDoomedAt(i);
    delete obj;
    i = carry.numDoomed;  // the destructor may have changed the list
  }
}

void sxThread::enableAppThreadDeletion(bool enable) {
  appThreadDeletion.store(enable);
}

bool sxThread::isAppThreadDeletionEnabled() {
  return appThreadDeletion.load();
}

// --- posting

bool sxThread::post(int kind, sxBase* object) {
  if (!queue) return false;
  const Item item{kind, object};
  if (!queue->put(&item)) return false;
  // A thread that has died no longer reaches its queue (it drains it once on
  // its way out): what arrives later is carried out here.
  if (isDead()) processQueue(true);
  return true;
}

void sxThread::addActionToQueue(sxAction* action) {
  if (action) post(RUN_ACTION, action);
}

void sxThread::addDeleteRefToQueue(sxBase* object) {
  if (object) post(DELETE_REF, object);
}

void sxThread::addDeleteNowToQueue(sxBase* object) {
  if (object) post(DELETE_NOW, object);
}

// A thread that posted to itself and waited would wait for ever, a dead
// thread never reaches its queue, and during shutdown a thread that does not
// loop freely may not reach it soon: their queues are carried out by the
// caller instead.
bool sxThread::carriesOutHere() const {
  const int s = state.load();
  if (s == DEAD || getCurrentThread() == this) return true;
  return shutdownFlushes.load() > 0 && !(s == RUNNING && mode.load() == FREE_RUNNING);
}

void sxThread::addActionToQueue(sxFlushThread* action) {
  if (!action) return;
  if (carriesOutHere()) {
    processQueue(false);
    action->apply(this, nullptr);
    action->waitForSyncToFinish();
    return;
  }
  if (!post(SYNC_ACTION, action)) return;
  action->waitForSyncToFinish();
  // The action releases its waiter before its postSyncApply; the caller may
  // destroy it on return, so wait until the thread no longer touches it.
  while (internals->syncApplying.load() == action) sxPlatform::yieldThread();
}

void sxThread::flushQueue() {
  if (carriesOutHere()) {
    flushHere();
    return;
  }
  if (!flushAction) return;
  sxiHold oneAtATime(&internals->flushLock);
  if (post(FLUSH, flushAction.get())) flushAction->waitForSyncToFinish();
}

void sxThread::flushHere() {
  processQueue(false);
  flushDownstreamThreads(true);
}

// Each downstream thread is pinned while it is flushed, so that its
// destructor waits for the flush instead of freeing the thread under it.
void sxThread::flushDownstreamThreads(bool lastFirst) {
  for (int k = 0;; ++k) {
    sxThread* t;
    {
      sxiKernel::LockGuard guard(sxiKernel::baseLock);
      const int n = downstreamThreads.getNum();
      if (k >= n) return;
      t = downstreamThreads[lastFirst ? n - 1 - k : k];
      t->pin();
    }
    t->flushQueue();
    t->unpin();
  }
}

void sxThread::flushDownstream() {
  shutdownFlushes.fetch_add(1);
  // Our own queue first: it holds the deletion requests that have not
  // reached the downstream threads yet. Objects handed back for deletion
  // here, or released by the downstream threads meanwhile, need another
  // round.
  for (int round = 0; round < maxShutdownRounds; ++round) {
    processQueue(true);
    flushDownstreamThreads(false);
    if (!queue || queue->getCount() == 0) break;
  }
  shutdownFlushes.fetch_sub(1);
}

// --- carrying out

int sxThread::processQueue(bool untilEmpty) {
  if (!queue) return 0;
  int done = 0;
  {
    sxiHold oneAgent(&internals->processLock);
    if (carry.depth < CarryState::maxDepth) carry.carrying[carry.depth] = this;
    ++carry.depth;
    const int queued = queue->getCount();
    Item item;
    while ((untilEmpty || done < queued) && queue->get(&item)) {
      ++done;
      carryOut(item);
    }
    --carry.depth;
  }
  // This thread may be among them: nothing of it is touched afterwards.
  if (carry.numDoomed > 0) destroyDoomed();
  return done;
}

void sxThread::carryOut(const Item& item) {
  sxBase* object = item.object;
  if (!object) return;
  switch (item.kind) {
    case DELETE_NOW:
      sxiDeletion::deleteNow(object);
      break;
    case DELETE_REF:
      processDeleteRef(object);
      break;
    case RUN_ACTION:
      // A dead thread runs no actions.
      if (!isDead()) static_cast<sxAction*>(object)->apply(this, nullptr);
      break;
    case SYNC_ACTION:
      internals->syncApplying.store(object);
      static_cast<sxFlushThread*>(object)->apply(this, nullptr);
      internals->syncApplying.store(nullptr);
      break;
    case FLUSH:
      flushDownstreamThreads(true);
      static_cast<sxFlushThread*>(object)->apply(this, nullptr);
      break;
    default:
      break;
  }
}

// The destructor's last look at the queue: carried out until it is empty
// and no caller that reached the thread through a link still flushes it.
void sxThread::drain() {
  for (;;) {
    processQueue(true);
    const bool idle = internals->pins.load() == 0;
    if (idle && (!queue || queue->getCount() == 0)) return;
    sxPlatform::yieldThread();
  }
}

// --- deferred deletion

// The count becomes -1 - N for N downstream links, and a request starts at
// the application thread. The deletion table counts the requests actually
// in flight, so that the object dies exactly when the last of them has
// been carried out, whatever the links look like by then.
bool sxThread::deferDeletion(sxBase* obj) {
  const int links = getTotalNumDownstreamThreads();
  sxThread* app = sxGetAppThread();
  if (links == 0 || !app) return false;
  sxiDeletion::setRefCount(obj, -1 - links);
  sxiDeletion::addPending(1);
  sxiDeletion::track(obj, 1);
  if (app->post(DELETE_REF, obj)) return true;
  sxiDeletion::untrack(obj);
  sxiDeletion::addPending(-1);
  return false;
}

void sxThread::processDeleteRef(sxBase* obj) {
  if (!obj) return;
  {
    sxiKernel::LockGuard guard(sxiKernel::baseLock);
    sxiDeletion::refAndGet(obj);
    // Passed on to the threads this one feeds first (from the last to the
    // first); a dead thread uses nothing any more and is skipped.
    int posted = 0;
    for (int i = downstreamThreads.getNum() - 1; i >= 0; --i) {
      sxThread* t = downstreamThreads[i];
      if (t->upstream == this && !t->isDead() && t->post(DELETE_REF, obj)) ++posted;
    }
    if (sxiDeletion::settle(obj, posted - 1) > 0) return;
    // The last thread has seen the request. Another thread's object goes
    // back to the application thread in any case: destroying it joins that
    // thread, which may be waiting for this one (flushing it).
    sxThread* app = sxGetAppThread();
    const bool handBack =
        appThreadDeletion.load() || (obj != this && this != app && obj->isOfType(getClassType()));
    if (handBack && app && app->post(DELETE_NOW, obj)) {
      sxiDeletion::settle(obj, 1);
      return;
    }
    sxiDeletion::untrack(obj);
    sxiDeletion::addPending(-1);
  }
  sxiDeletion::destroy(obj);
}

void sxiThreadHooks::install() {
  sxiHooks::makeLock = []() -> sxBase* { return new sxLock; };
  sxiHooks::acquireLock = [](sxBase* lock) { static_cast<sxLock*>(lock)->acquire(); };
  sxiHooks::releaseLock = [](sxBase* lock) { static_cast<sxLock*>(lock)->release(); };
  sxiHooks::deferDeletion = &sxThread::deferDeletion;
  sxiHooks::destroysItselfLater = &sxThread::destroysItselfLater;
  sxiHooks::pipelineRunning = [] { return sxThread::getTotalNumDownstreamThreads() != 0; };
}
