#include <sx/threads/sxFlushThread.h>
#include <sx/threads/sxSemaphore.h>

#include "object/sxReferenced.h"

SX_DEFINE_CLASS(sxFlushThread)

namespace {
// One waiter at a time: the count is 0 or 1.
sxSemaphore* newSyncSemaphore() {
  return sxiReferenced(new sxSemaphore(0, 1));
}
}  // namespace

sxFlushThread::sxFlushThread() : sxAction(), semaphore(newSyncSemaphore()) {}

sxFlushThread::sxFlushThread(const sxFlushThread& source)
    : sxAction(source), semaphore(newSyncSemaphore()) {}

sxFlushThread::~sxFlushThread() {
  sxiRelease(semaphore);
}

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
