#pragma once

#include <sx/threads/sxThread.h>

#include <atomic>

#include "platform/sxPlatform.h"

// One command-queue item: a kind and an object (16 bytes on 64-bit builds).
struct sxThread::Item {
  int kind;
  sxBase* object;
};

// Bookkeeping of a thread that its public fields do not show.
struct sxThread::Internals {
  static_assert(sizeof(Item) == 2 * sizeof(void*), "a queue item is a kind and a pointer");

  // Guards initActions and actions.
  sxPlatform::RecursiveMutex listLock;
  // One agent carries out the queue at a time: the thread itself, or a
  // caller that carries it out for a dead or (at shutdown) idle thread.
  sxPlatform::RecursiveMutex processLock;
  // One flush in flight per thread: the flush action's semaphore counts to
  // one, so concurrent flushes take turns.
  sxPlatform::RecursiveMutex flushLock;
  // Callers that reached this thread through a link and flush it; the
  // destructor waits for them.
  std::atomic<int> pins{0};
  // Set by a new thread once it has published its id.
  std::atomic<int> started{0};
  // The synchronous action being applied, so that its poster can wait until
  // the thread no longer touches it.
  std::atomic<const sxBase*> syncApplying{nullptr};
};

// Holds a platform mutex for a scope (nothing when there is none).
class sxiHold {
 public:
  explicit sxiHold(sxPlatform::RecursiveMutex* m) : mutex(m) {
    if (mutex) mutex->acquire(-1);
  }
  ~sxiHold() {
    if (mutex) mutex->release();
  }
  sxiHold(const sxiHold&) = delete;
  sxiHold& operator=(const sxiHold&) = delete;

 private:
  sxPlatform::RecursiveMutex* mutex;
};
