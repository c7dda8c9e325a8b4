// Thread objects: construction, the worker loop, run, suspend and kill,
// scheduling and the action lists. The command queue is in
// sxThreadQueue.cpp, the links between threads in sxThreadLinks.cpp.

#include <sx/containers/sxQueue.h>
#include <sx/kernel/sxKernel.h>
#include <sx/nodes/sxAction.h>
#include <sx/threads/sxFlushThread.h>
#include <sx/threads/sxSemaphore.h>
#include <sx/threads/sxThread.h>
#include <sx/traversal/sxTraitStack.h>
#include <sx/traversal/sxTravContext.h>

#include "kernel/sxKernelLocks.h"
#include "object/sxReferenced.h"
#include "platform/sxPlatform.h"
#include "threads/sxThreadInternals.h"
#include "threads/sxThreadPriority.h"

SX_DEFINE_CLASS(sxThread)

namespace {

SX_TLS_FAST constinit thread_local sxThread* currentThread = nullptr;

// Triggers beyond this many uncounted run() calls are dropped.
constexpr int maxTriggers = 512;
constexpr int queueCapacity = 250;

std::uint64_t processAffinity() {
  static const std::uint64_t mask = sxPlatform::processAffinityMask();
  return mask;
}

}  // namespace

sxThread::sxThread(bool isAppThread)
    : flushAction(new sxFlushThread),
      upstream(nullptr),
      queue(new sxQueue(int(sizeof(Item)), queueCapacity)),
      handle(0),
      threadId(0),
      mode(FREE_RUNNING),
      threadFlags(0),
      state(SUSPENDED),
      target(nullptr),
      trigger(new sxSemaphore(0, maxTriggers)),
      // Each thread keeps a traversal context of its own for the short
      // computations that need one (bounding volumes, for example).
      travContext(new sxTravContext),
      renderContext(nullptr),
      internals(sxNew<Internals>()) {
  if (!internals) sxMemory::outOfMemory();
  // Its traits are only traversal traits (stack types 4).
  if (travContext) travContext->setTraitStack(new sxTraitStack(sxTraitStack::STACK_TRAV));
  if (queue) queue->setMode(sxQueue::GROWING);
  if (isAppThread) {
    threadId.store(sxPlatform::currentThreadId());
    threadFlags |= appThreadFlag;
    state.store(RUNNING);
    currentThread = this;
    processAffinity();
    return;
  }
  sxPlatform::ThreadHandle h = 0;
  if (!flushAction || !queue || !trigger ||
      !sxPlatform::startThread(h, &sxThread::threadMain, this)) {
    state.store(DEAD);
    return;
  }
  handle.store(h);
  // The new thread publishes its id before it waits to be run, so that the
  // id is known as soon as the object exists.
  while (internals->started.load() == 0) sxPlatform::waitOnWord(&internals->started, 0, -1);
}

sxThread::~sxThread() {
  if (!isAppThread()) {
    markDead();
    endThread();
  }
  unlinkAll();
  drain();
  {
    sxiHold lists(&internals->listLock);
    sxiReleaseAll(initActions);
    sxiReleaseAll(actions);
  }
  flushAction.reset();
  queue.reset();
  trigger.reset();
  travContext.reset();
  if (currentThread == this) currentThread = nullptr;
  sxDelete(internals);
  internals = nullptr;
}

// --- the worker loop

// A worker whose own object is released while it runs destroys the object
// only once its loop has unwound (see destroysItselfLater).
void sxThread::threadMain(void* arg) {
  sxThread* self = static_cast<sxThread*>(arg);
  currentThread = self;
  self->threadId.store(sxPlatform::currentThreadId());
  self->internals->started.store(1);
  sxPlatform::wakeAllOnWord(&self->internals->started);

  if (self->waitAtGate()) {
    self->applyList(self->initActions, self);
    while (!isDoomed(self) && self->waitAtGate()) {
      if (self->mode.load() == TRIGGERED)
        self->trigger->dec();
      else
        sxPlatform::yieldThread();
      if (self->isDead()) break;
      self->processQueue(false);
      if (isDoomed(self) || self->isDead()) break;
      const bool result = self->apply(self->target.load());
      if (isDoomed(self)) break;
      if (!result) {
        const char* name = self->getName();
        sxMessage("Thread: %s died.  Error: %d\n", name ? name : "", int(result));
        self->markDead();
        break;
      }
    }
  }
  // A dead thread still honours deletions, syncs and flushes already queued.
  // (Flushes that reach it later are carried out by their callers.)
  if (!isDoomed(self)) self->processQueue(true);
  if (releaseDoomed(self)) delete self;
  currentThread = nullptr;
}

// Suspension is a gate before every iteration: a suspended worker sleeps on
// its state word until run() or kill() changes it.
bool sxThread::waitAtGate() {
  for (;;) {
    int s = state.load();
    if (s == RUNNING) return true;
    if (s == DEAD) return false;
    sxPlatform::waitOnWord(&state, s, -1);
  }
}

bool sxThread::markDead() {
  // Under the base lock, so that deletion requests are never forwarded to a
  // thread after it has stopped reading its queue.
  sxiKernel::LockGuard guard(sxiKernel::baseLock);
  return state.exchange(DEAD) != DEAD;
}

void sxThread::wake() {
  sxPlatform::wakeAllOnWord(&state);
  if (trigger) trigger->inc();
}

// Wakes a dead worker wherever it waits and waits for it to end. On the
// worker itself (its object destroyed as its loop unwinds) the thread is
// let go instead: it ends right after.
void sxThread::endThread() {
  wake();
  if (std::uintptr_t h = handle.exchange(0))
    currentThread == this ? sxPlatform::detachThread(h) : sxPlatform::joinThread(h);
}

// --- run, suspend, kill

void sxThread::setThreadMode(MODE m) {
  mode.store(m);
}

void sxThread::run(sxBase* newTarget) {
  target.store(newTarget);
  run();
}

void sxThread::run() {
  if (handle.load() != 0) {
    int s = SUSPENDED;
    if (state.compare_exchange_strong(s, RUNNING)) sxPlatform::wakeAllOnWord(&state);
  }
  if (trigger) trigger->inc();
}

void sxThread::suspend() {
  if (isAppThread()) return;
  int s = RUNNING;
  state.compare_exchange_strong(s, SUSPENDED);
}

void sxThread::kill() {
  if (isAppThread() || !markDead()) return;
  // A thread that kills itself ends when its current step returns; the
  // handle stays for whoever destroys the object.
  if (currentThread == this)
    wake();
  else
    endThread();
  threadId.store(0);
}

void sxThread::stopAllWorkers() {
  sxType* type = getClassType();
  if (!type) return;
  sxTList<sxThread*> workers;
  type->lockInstanceList();
  for (int i = 0, n = type->getNum(false); i < n; ++i) {
    auto* t = static_cast<sxThread*>(type->get(i, false));
    if (t->isAppThread()) continue;
    t->pin();
    workers.add(t);
  }
  type->unlockInstanceList();
  // Dead ones too: a thread that died on its own may still be finishing.
  for (sxThread* t : workers) {
    t->markDead();
    if (currentThread != t) t->endThread();
    t->unpin();
  }
}

// --- identity and scheduling

sxThread* sxThread::getCurrentThread() {
  return currentThread;
}

bool sxThread::inCurrentThread() const {
  return threadId.load() == sxPlatform::currentThreadId();
}

bool sxThread::setPriority(int priority) {
  const sxiThreadPriority* p = sxiThreadPriority::lookup(priority);
  if (!p || isDead()) return false;
  return sxPlatform::setThreadPriority(threadId.load(), p->priorityClass, p->relative);
}

bool sxThread::setProcessors(unsigned mask) {
  if (isDead()) return false;
  return sxPlatform::setThreadAffinity(threadId.load(), std::uint64_t(mask) & processAffinity());
}

// --- actions

void sxThread::addInitAction(sxAction* action) {
  sxiAddReferenced<sxiHold>(initActions, action, &internals->listLock);
}

bool sxThread::removeInitAction(sxAction* action) {
  return sxiRemoveReferenced<sxiHold>(initActions, action, &internals->listLock);
}

void sxThread::addAction(sxAction* action) {
  sxiAddReferenced<sxiHold>(actions, action, &internals->listLock);
}

bool sxThread::removeAction(sxAction* action) {
  return sxiRemoveReferenced<sxiHold>(actions, action, &internals->listLock);
}

void sxThread::setTravContext(sxTravContext* context) {
  travContext = context;
}

int sxThread::getNumActions() const {
  sxiHold hold(&internals->listLock);
  return actions.getNum();
}

int sxThread::getNumInitActions() const {
  sxiHold hold(&internals->listLock);
  return initActions.getNum();
}

bool sxThread::apply(sxBase* object) {
  return applyList(actions, object);
}

// The list lock is not held while an action runs: an action may change the
// lists, and another thread that does so must not wait for a slow action.
// The action is referenced for the duration of its call.
bool sxThread::applyList(const sxTList<sxAction*>& list, sxBase* object) {
  for (int i = 0;; ++i) {
    sxRef<sxAction> action;
    {
      sxiHold hold(&internals->listLock);
      if (i >= list.getNum()) return true;
      action = list[i];
    }
    if (!action->apply(object, nullptr)) return false;
  }
}
