#pragma once

class sxBase;

// What happens to an object whose last reference is released. With no
// downstream threads it is destroyed at once; otherwise its deletion is
// deferred until every thread of the pipeline has passed it.
struct sxiDeletion {
  static void release(sxBase* obj);
  // The count after one more reference (used by the deferred path).
  static int refAndGet(sxBase* obj);
  static void setRefCount(sxBase* obj, int count);
  static void addPending(int delta);
  static int pending();
  static void destroy(sxBase* obj) { delete obj; }
};
