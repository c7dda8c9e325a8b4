#pragma once

// What a fuzzed read leaves behind: objects it made that are still alive
// once everything is released must be held by cycles only.

#include <sx/object/sxBase.h>
#include <sx/object/sxType.h>

#include <sanitizer/lsan_interface.h>

#include <cstdio>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace sxfuzz {

// Objects made from a file that are still alive once everything is
// released must be cycles: each held only by the others' attributes.
// Anything else is a leak. Cycles are left to the leak checker as in use.
// The objects alive now. The sxBase list is the union of the class lists,
// so a new object may come before old ones in it.
inline std::unordered_set<sxBase*> liveObjects() {
  sxType* base = sxBase::getClassType();
  std::unordered_set<sxBase*> live;
  for (int i = 0, n = base->getNum(false); i < n; ++i) live.insert(base->get(i, false));
  return live;
}

inline void checkLeftovers(const std::unordered_set<sxBase*>& before) {
  std::vector<sxBase*> made;
  for (sxBase* obj : liveObjects())
    if (!before.count(obj)) made.push_back(obj);
  std::unordered_map<const sxBase*, int> incoming;
  for (sxBase* obj : made)
    if (const sxTList<sxBase*>* list = obj->getAttribList())
      for (sxBase* a : *list) ++incoming[a];
  // What a cycle member owns (a scene its context, locks and events) is
  // alive with it and held by references no list shows: with a cycle, the
  // count check would blame them, so the leak checker alone judges.
  bool cycles = false;
  for (sxBase* obj : made) cycles |= incoming[obj] > 0 && obj->getRefCount() == incoming[obj];
  for (sxBase* obj : made) {
    if (!cycles && obj->getRefCount() != incoming[obj]) {
      std::fprintf(stderr, "%s %p kept by %d references, %d from cycles\n",
                   obj->getType() ? obj->getType()->getName() : "object", static_cast<void*>(obj),
                   obj->getRefCount(), incoming[obj]);
      __builtin_trap();
    }
    __lsan_ignore_object(obj);
  }
}

}  // namespace sxfuzz
