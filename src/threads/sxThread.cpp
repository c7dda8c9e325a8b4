#include <sx/threads/sxThread.h>

#include <atomic>

#include "object/sxDeletion.h"
#include "platform/sxPlatform.h"

SX_IMPLEMENT_CLASS_NOCOPY(sxThread, sxBase, sxType)

namespace {
thread_local sxThread* currentThread = nullptr;
constinit std::atomic<int> totalDownstreamLinks{0};
}  // namespace

sxThread::sxThread(bool isAppThread)
    : threadId(0), mode(FREE_RUNNING), threadFlags(0), state(SUSPENDED) {
  if (isAppThread) {
    threadId = sxPlatform::currentThreadId();
    threadFlags |= appThreadFlag;
    state = RUNNING;
    currentThread = this;
  }
  initInstance();
}

sxThread::~sxThread() {
  if (currentThread == this) currentThread = nullptr;
}

sxThread* sxThread::getCurrentThread() {
  return currentThread;
}

bool sxThread::inCurrentThread() const {
  return threadId == sxPlatform::currentThreadId();
}

int sxThread::getTotalNumDownstreamThreads() {
  return totalDownstreamLinks.load();
}

void sxThread::deferDeletion(sxBase* obj) {
  sxiDeletion::destroy(obj);
}

// Threads are linked only by the pipeline; a thread without downstream
// links has nothing to flush.
void sxThread::flushDownstream() {}
