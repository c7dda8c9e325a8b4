#pragma once

class sxBase;

// What happens to an object whose last reference is released. With no
// downstream threads it is destroyed at once; otherwise its deletion is
// deferred until every thread of the pipeline has passed it.
//
// Objects on their way through the pipeline are kept in a table with the
// number of queue items that still carry them; the table and the decisions
// are guarded by the base lock. Destruction itself happens outside the
// lock: destructors may block (a thread's joins its worker).
struct sxiDeletion {
  // Called when an unRef leaves the count at 0 or below. Does nothing for an
  // object that was referenced again meanwhile or is already on its way.
  static void release(sxBase* obj);
  // The count after one more reference (a thread passing the object).
  static int refAndGet(sxBase* obj);
  static void setRefCount(sxBase* obj, int count);
  static void addPending(int delta);
  static int pending();
  // Destroys obj, or leaves that to the thread that is still using it (a
  // worker's own object, a thread whose queue is being carried out).
  static void destroy(sxBase* obj);
  // A delete-now request: the object leaves the table and is destroyed.
  static void deleteNow(sxBase* obj);

  // The table (under the base lock).
  static bool isTracked(const sxBase* obj);
  static void track(sxBase* obj, int items);
  // Adds delta to obj's items and returns the result (0 when untracked).
  static int settle(sxBase* obj, int delta);
  static void untrack(sxBase* obj);
  // Frees the table (module unload).
  static void cleanUp();

  // While a Hold lives, objects whose last reference goes on this thread are
  // kept with a reference of the hold's, which the last Hold to go gives
  // back (destroying those that nobody took again meanwhile): a traversal whose traverser edits the
  // graph keeps every node it may still be standing on.
  class Hold {
   public:
    Hold();
    ~Hold();
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;
  };
};
