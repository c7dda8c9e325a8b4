// Links between threads. The link lists and the class-wide number of links
// are guarded by the base lock: deferred deletion reads them.

#include <sx/threads/sxThread.h>

#include "kernel/sxKernelLocks.h"
#include "threads/sxThreadInternals.h"

namespace {
constinit std::atomic<int> totalLinks{0};
}  // namespace

int sxThread::getTotalNumDownstreamThreads() {
  return totalLinks.load();
}

bool sxThread::addDownstreamThread(sxThread* thread) {
  if (!thread || thread == this) return false;
  sxiKernel::LockGuard guard(sxiKernel::baseLock);
  if (isDead() || thread->isDead() || downstreamThreads.contains(thread) || hasAncestor(thread))
    return false;
  if (thread->upstreamThreads.add(this) < 0) return false;
  if (downstreamThreads.add(thread) < 0) {
    thread->upstreamThreads.checkRemove(this);
    return false;
  }
  if (!thread->upstream) thread->upstream = this;
  totalLinks.fetch_add(1);
  return true;
}

bool sxThread::removeDownstreamThread(sxThread* thread) {
  if (!thread) return false;
  sxiKernel::LockGuard guard(sxiKernel::baseLock);
  if (!downstreamThreads.checkRemove(thread)) return false;
  thread->upstreamThreads.checkRemove(this);
  if (thread->upstream == this)
    thread->upstream = thread->upstreamThreads.getNum() > 0 ? thread->upstreamThreads[0] : nullptr;
  totalLinks.fetch_sub(1);
  return true;
}

void sxThread::unlinkAll() {
  sxiKernel::LockGuard guard(sxiKernel::baseLock);
  for (int n; (n = downstreamThreads.getNum()) > 0;)
    sxThread::removeDownstreamThread(downstreamThreads[n - 1]);
  for (int n; (n = upstreamThreads.getNum()) > 0;)
    upstreamThreads[n - 1]->sxThread::removeDownstreamThread(this);
}

int sxThread::getNumDownstreamThreads() const {
  sxiKernel::LockGuard guard(sxiKernel::baseLock);
  return downstreamThreads.getNum();
}

sxThread* sxThread::getDownstreamThread(int i) const {
  sxiKernel::LockGuard guard(sxiKernel::baseLock);
  return downstreamThreads.indexInRange(i) ? downstreamThreads[i] : nullptr;
}

sxThread* sxThread::getUpstreamThread() const {
  sxiKernel::LockGuard guard(sxiKernel::baseLock);
  return upstream;
}

int sxThread::getNumUpstreamThreads() const {
  sxiKernel::LockGuard guard(sxiKernel::baseLock);
  return upstreamThreads.getNum();
}

// Breadth first over the upstream lists; the links form no cycle, and each
// thread is listed once however many paths lead to it.
void sxThread::collectAncestors(sxTList<const sxThread*>& found) const {
  for (sxThread* u : upstreamThreads) found.addUnique(u);
  for (int i = 0; i < found.getNum(); ++i)
    for (sxThread* u : found[i]->upstreamThreads) found.addUnique(u);
}

bool sxThread::hasAncestor(const sxThread* thread) const {
  if (!thread) return false;
  sxiKernel::LockGuard guard(sxiKernel::baseLock);
  sxTList<const sxThread*> ancestors;
  collectAncestors(ancestors);
  return ancestors.contains(thread);
}

bool sxThread::shareCommonAncestor(const sxThread* thread) const {
  if (!thread) return false;
  sxiKernel::LockGuard guard(sxiKernel::baseLock);
  sxTList<const sxThread*> mine, theirs;
  collectAncestors(mine);
  thread->collectAncestors(theirs);
  for (const sxThread* t : theirs)
    if (mine.contains(t)) return true;
  return false;
}

void sxThread::pin() {
  internals->pins.fetch_add(1);
}

void sxThread::unpin() {
  internals->pins.fetch_sub(1);
}
