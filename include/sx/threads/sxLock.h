#pragma once

#include <cstdint>

#include <sx/object/sxBase.h>

// A recursive mutex as a library object. Every lock of the library can be
// switched off at once (enableAll(false)) for single-threaded use; while
// locks are off, acquiring and releasing do nothing.
class SX_API sxLock : public sxBase {
 public:
  SX_CLASS(sxLock, sxBase)

  sxLock();
  // A new, unowned lock with the source's name and timeout.
  sxLock(const sxLock& source);
  ~sxLock() override;

  // Waits at most timeoutMs milliseconds (-1: for ever, 0: only tries).
  // True when the calling thread now holds the lock (or locks are off).
  virtual bool acquire(int timeoutMs);
  // Waits with the default timeout.
  virtual bool acquire();
  // Releases one level held by the calling thread.
  virtual void release();

  // True while locks are off. Otherwise tries to take the lock without
  // waiting; on success the caller now holds it and must release it.
  bool available();
  bool isHeldByCurrentThread() const;
  void setTimeout(int timeoutMs) { timeout = timeoutMs; }
  int getTimeout() const { return timeout; }

  // Turning locks off releases every lock once (as the calling thread).
  static void enableAll(bool enable);
  static bool isEnabled();

 private:
  // Storage of the platform mutex (kept opaque so that this header needs no
  // platform header).
  alignas(8) unsigned char mutex[16];
  int timeout;
};
