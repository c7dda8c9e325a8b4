#pragma once

#include <atomic>

#include <sx/object/sxBase.h>

// A counting semaphore as a library object. Every semaphore of the library
// can be switched off at once (enableAll(false)) for single-threaded use;
// while they are off, inc does nothing and dec returns true at once.
class SX_API sxSemaphore : public sxBase {
 public:
  SX_CLASS(sxSemaphore, sxBase)

  static constexpr int maxCount = 0x7FFFFFFF;

  // The maximum is raised to at least 1 and the initial count kept within
  // 0..maximum. The timeout starts infinite (-1).
  explicit sxSemaphore(int initial = 0, int maximum = maxCount);
  // A new semaphore with the source's name, maximum, timeout and current
  // count.
  sxSemaphore(const sxSemaphore& source);
  ~sxSemaphore() override;

  // Releases n counts (one). False, and nothing released, when n < 1 or the
  // count would pass the maximum. The count field then holds the count from
  // before the release.
  virtual bool inc(int n);
  virtual bool inc();
  // Waits for one count, at most timeoutMs milliseconds (-1: for ever, 0:
  // only tries), and decrements the count field. A wait that merely times
  // out is not an error and also returns true; only a failing wait returns
  // false.
  virtual bool dec(int timeoutMs);
  // Waits with the semaphore's timeout.
  virtual bool dec();
  virtual void setTimeout(int timeoutMs);

  int getTimeout() const { return timeout; }
  // The count field: the count before the last inc, less the decs since.
  int getCount() const { return count.load(std::memory_order_relaxed); }
  int getMaximum() const;
  // Counts that a dec could take now without waiting.
  int getAvailable() const;

  static void enableAll(bool enable);
  static bool isEnabled();

 private:
  // Storage of the platform semaphore (opaque, so that this header needs no
  // platform header).
  alignas(8) unsigned char handle[8];
  int timeout;
  std::atomic<int> count;
};
