#include <sx/threads/sxFlushThread.h>
#include <sx/threads/sxSemaphore.h>

SX_DEFINE_CLASS(sxFlushThread)

// One waiter at a time: the count is 0 or 1.
sxFlushThread::sxFlushThread() : sxAction(), semaphore(new sxSemaphore(0, 1)) {}

sxFlushThread::sxFlushThread(const sxFlushThread& source)
    : sxAction(source), semaphore(new sxSemaphore(0, 1)) {}

sxFlushThread::~sxFlushThread() = default;

void sxFlushThread::preSyncApply(sxBase*) {}

bool sxFlushThread::postSyncApply(sxBase*) {
  return true;
}

bool sxFlushThread::apply(sxBase* target, sxEvent*) {
  preSyncApply(target);
  if (semaphore) semaphore->inc();
  return postSyncApply(target);
}

bool sxFlushThread::waitForSyncToFinish() {
  return semaphore ? semaphore->dec() : false;
}
