#pragma once

#include <sx/containers/sxList.h>

// Helpers for objects that hold lists of references on other library
// objects (single references are sxRef members).

// Releases every element (last first) and frees the list's storage.
template <class T>
void sxiReleaseAll(sxTList<T*>& list) {
  for (int i = list.getNum() - 1; i >= 0; --i) list[i]->unRef();
  list.setSize(0);
}

// Appends item, referenced, while Scope holds lock. False (no change) for
// null and when the list cannot grow.
template <class Scope, class T, class Lock>
bool sxiAddReferenced(sxTList<T*>& list, T* item, Lock* lock) {
  if (!item) return false;
  item->ref();
  bool added;
  {
    Scope hold(lock);
    added = list.add(item) >= 0;
  }
  if (!added) item->unRef();
  return added;
}

// Removes one entry of item (the last one moves into the hole) while Scope
// holds lock, and releases it once the lock is free again.
template <class Scope, class T, class Lock>
bool sxiRemoveReferenced(sxTList<T*>& list, T* item, Lock* lock) {
  if (!item) return false;
  {
    Scope hold(lock);
    if (!list.checkRemove(item)) return false;
  }
  item->unRef();
  return true;
}
