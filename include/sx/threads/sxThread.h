#pragma once

#include <atomic>
#include <cstdint>

#include <sx/containers/sxList.h>
#include <sx/object/sxBase.h>
#include <sx/object/sxRef.h>

class sxAction;
class sxFlushThread;
class sxQueue;
class sxRenderContext;
class sxSemaphore;
class sxTravContext;

// A thread of the runtime's pipeline: the application thread or a worker.
//
// A worker is created suspended and starts with run(). It then applies its
// init actions once and loops: in free-running mode it yields, in triggered
// mode it waits for a run() call; then it carries out its command queue and
// applies its actions to its target. Other threads post to the queue:
// actions, synchronous actions and flushes (the poster waits until the
// thread has reached them) and the requests of deferred deletion.
//
// Threads are linked upstream and downstream. A flush travels down the
// links, and while any link exists a released object is freed only after
// the application thread and the threads below it have passed it.
class SX_API sxThread : public sxBase {
 public:
  SX_CLASS_NOCOPY(sxThread, sxBase)

  enum MODE { FREE_RUNNING = 0, TRIGGERED = 1 };
  enum STATE { RUNNING = 1, SUSPENDED = 2, DEAD = 4 };
  // Kinds of command-queue items.
  enum ITEM_KIND { DELETE_NOW = 1, DELETE_REF = 2, RUN_ACTION = 3, SYNC_ACTION = 4, FLUSH = 5 };

  // With true, wraps the calling thread (the library does this once for the
  // thread that loads it). Otherwise starts a new thread, suspended; if the
  // platform cannot start one, the object is dead from the start.
  explicit sxThread(bool isAppThread = false);
  // Kills a worker (see kill), unlinks the thread, carries out what is left
  // in its queue and releases its actions.
  ~sxThread() override;

  // Applies every action in order to target (event null). False as soon as
  // an action fails; the remaining ones are then not applied.
  virtual bool apply(sxBase* target);
  // A thread waiting for a trigger keeps waiting for one after a switch to
  // free-running mode.
  virtual void setThreadMode(MODE mode);
  // Stores target, then run().
  virtual void run(sxBase* target);
  // Resumes a suspended worker and counts one trigger.
  virtual void run();
  // A running worker stops before its next iteration. The application
  // thread cannot be suspended.
  virtual void suspend();
  // A worker that is not dead is marked dead and ends at its next check. The
  // call returns when the thread has ended (a thread that kills itself ends
  // when its current step returns); an action that never returns keeps it
  // waiting. Does nothing for a dead thread and the application thread.
  virtual void kill();
  // 0..31, mapped to a priority class and a relative priority by a fixed
  // table. False for other values, for a dead thread and when the platform
  // refuses.
  virtual bool setPriority(int priority);
  // Runs the thread on the processors of mask that the process may use.
  // False when none remains or the platform refuses.
  virtual bool setProcessors(unsigned mask);
  // Action lists. The thread keeps a reference on each listed action; null
  // is ignored. Removal moves the last action into the hole.
  virtual void addInitAction(sxAction* action);
  virtual bool removeInitAction(sxAction* action);
  virtual void addAction(sxAction* action);
  virtual bool removeAction(sxAction* action);
  // Carries out queued items, oldest first: with untilEmpty false exactly
  // as many as were queued when the call began (items posted meanwhile wait
  // for the next call), with true until the queue is empty. Returns the
  // number carried out.
  virtual int processQueue(bool untilEmpty);
  // Posts a synchronous action and returns when the thread has applied it
  // (null is ignored). The action must stay alive until then.
  virtual void addActionToQueue(sxFlushThread* action);
  // Posts an action, which the thread applies with itself as the object.
  // The queue keeps no reference: the action must outlive its turn.
  virtual void addActionToQueue(sxAction* action);
  // Returns when this thread and, recursively, all its downstream threads
  // have carried out everything posted to them before. A thread flushing
  // itself, a dead thread and (during shutdown) a thread that does not loop
  // freely are carried out by the caller. Otherwise the caller waits for the
  // thread to get there: a suspended thread, or one waiting for a trigger,
  // keeps it waiting until run(). With semaphores switched off nothing
  // waits.
  virtual void flushQueue();
  virtual bool inCurrentThread() const;
  virtual int getNumDownstreamThreads() const;
  // Null outside 0..getNumDownstreamThreads()-1.
  virtual sxThread* getDownstreamThread(int i) const;
  // Links thread below this one. Refused (false) for null, this thread, a
  // dead thread, a thread already linked below this one and a thread that
  // is upstream of this one (the link would close a cycle).
  virtual bool addDownstreamThread(sxThread* thread);
  virtual bool removeDownstreamThread(sxThread* thread);
  // True when thread feeds this one, directly or through other threads.
  virtual bool hasAncestor(const sxThread* thread) const;
  // True when some thread feeds both this one and thread.
  virtual bool shareCommonAncestor(const sxThread* thread) const;

  // The calling thread's object; null for threads the library did not start
  // or wrap.
  static sxThread* getCurrentThread();
  int getState() const { return state.load(); }
  MODE getThreadMode() const { return mode.load(); }
  sxBase* getTarget() const { return target.load(); }
  std::uint32_t getThreadId() const { return threadId.load(); }
  bool isAppThread() const { return (threadFlags & appThreadFlag) != 0; }
  // The first thread that linked this one below it.
  sxThread* getUpstreamThread() const;
  int getNumUpstreamThreads() const;
  /// The thread's own context for short computations (bounding volumes).
  sxTravContext* getTravContext() const { return travContext.get(); }
  /// Referenced; the old context is released. Only the thread itself may
  /// change it.
  void setTravContext(sxTravContext* context);
  void setRenderContext(sxRenderContext* context) { renderContext.store(context); }
  sxRenderContext* getRenderContext() const { return renderContext.load(); }
  int getNumActions() const;
  int getNumInitActions() const;

  // Number of downstream links over all threads. While it is 0 a released
  // object is destroyed at once.
  static int getTotalNumDownstreamThreads();
  // When on, the last thread to pass a released object hands it back to the
  // application thread, which destroys it while carrying out its queue.
  static void enableAppThreadDeletion(bool enable);
  static bool isAppThreadDeletionEnabled();
  // Carries out the application thread's queue and flushes its downstream
  // threads (first to last, re-reading their number), so that all queued
  // work and every deferred deletion is done; sxShutdown calls it. Threads
  // that would not reach their queue by themselves are carried out by the
  // caller meanwhile.
  void flushDownstream();
  // Stops every worker thread (the library's unload clean-up).
  static void stopAllWorkers();

 protected:
  // Post delete-reference and delete-now requests; null is not posted.
  void addDeleteRefToQueue(sxBase* object);
  void addDeleteNowToQueue(sxBase* object);
  // One delete-reference request reaching this thread.
  void processDeleteRef(sxBase* object);

 private:
  friend struct sxiThreadHooks;
  struct Internals;
  struct Item;
  static constexpr unsigned short appThreadFlag = 0x0001;

  // Starts the deferred deletion of obj if any downstream link exists;
  // false when it must be destroyed at once. Called under the base lock.
  static bool deferDeletion(sxBase* obj);
  // True when obj is the calling worker's own object, or a thread whose
  // queue the caller is carrying out: it is then destroyed once that is
  // over, not in the middle of it.
  static bool destroysItselfLater(sxBase* obj);
  static bool isDoomed(const sxThread* thread);
  static bool releaseDoomed(const sxThread* thread);
  static void destroyDoomed();
  static void threadMain(void* self);
  bool applyList(const sxTList<sxAction*>& list, sxBase* object);

  bool post(int kind, sxBase* object);
  void carryOut(const Item& item);
  bool carriesOutHere() const;
  void flushHere();
  void flushDownstreamThreads(bool lastFirst);
  bool markDead();
  void wake();
  void endThread();
  bool waitAtGate();
  void drain();
  void unlinkAll();
  void collectAncestors(sxTList<const sxThread*>& found) const;
  bool isDead() const { return state.load() == DEAD; }
  void pin();
  void unpin();

  sxRef<sxFlushThread> flushAction;
  sxThread* upstream;
  sxTList<sxThread*> upstreamThreads;
  sxTList<sxThread*> downstreamThreads;
  sxRef<sxQueue> queue;
  std::atomic<std::uintptr_t> handle;
  std::atomic<std::uint32_t> threadId;
  std::atomic<MODE> mode;
  unsigned short threadFlags;
  // The state word is also what a suspended worker sleeps on.
  std::atomic<int> state;
  std::atomic<sxBase*> target;
  sxRef<sxSemaphore> trigger;
  sxRef<sxTravContext> travContext;
  std::atomic<sxRenderContext*> renderContext;
  sxTList<sxAction*> initActions;
  sxTList<sxAction*> actions;
  // Locks and counters private to the implementation.
  Internals* internals;
};
