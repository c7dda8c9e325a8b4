#pragma once

#include <sx/nodes/sxAction.h>
#include <sx/object/sxRef.h>

class sxSemaphore;

// The action with which a poster waits until a thread has reached it in its
// queue (sxThread::addActionToQueue, sxThread::flushQueue). Applying it
// releases the waiter.
class SX_API sxFlushThread : public sxAction {
 public:
  SX_CLASS(sxFlushThread, sxAction)

  sxFlushThread();
  sxFlushThread(const sxFlushThread& source);
  ~sxFlushThread() override;

  // Runs on the applying thread before the waiter is released; does nothing
  // by default.
  virtual void preSyncApply(sxBase* target);
  // Runs on the applying thread once the waiter has been released.
  virtual bool postSyncApply(sxBase* target);
  // preSyncApply, release the waiter, postSyncApply.
  bool apply(sxBase* target, sxEvent* event) override;

  // Waits until the action has been applied.
  bool waitForSyncToFinish();

 private:
  sxRef<sxSemaphore> semaphore;
};
