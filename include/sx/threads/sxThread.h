#pragma once

#include <cstdint>

#include <sx/object/sxBase.h>

// A thread of the runtime's pipeline: the application thread or a worker
// that loops over its command queue and its actions.
class SX_API sxThread : public sxBase {
 public:
  SX_DECLARE_CLASS_NOCOPY(sxThread)

  enum MODE { FREE_RUNNING = 0, TRIGGERED = 1 };
  enum STATE { RUNNING = 1, SUSPENDED = 2, DEAD = 4 };

  // With true, wraps the calling thread (the library does this once for the
  // thread that loads it).
  explicit sxThread(bool isAppThread = false);
  ~sxThread() override;

  static sxThread* getCurrentThread();
  bool inCurrentThread() const;
  int getState() const { return state; }
  std::uint32_t getThreadId() const { return threadId; }
  bool isAppThread() const { return (threadFlags & appThreadFlag) != 0; }

  // Number of downstream links over all threads. While it is 0 a released
  // object is destroyed at once.
  static int getTotalNumDownstreamThreads();
  // Flushes the queues of this thread's downstream threads, so that the work
  // queued for them (deferred deletions included) is carried out.
  void flushDownstream();

 private:
  friend struct sxiDeletion;
  static constexpr unsigned short appThreadFlag = 0x0001;
  // Hands a released object to the pipeline's deferred deletion.
  static void deferDeletion(sxBase* obj);

  std::uint32_t threadId;
  MODE mode;
  unsigned short threadFlags;
  unsigned short state;
};
