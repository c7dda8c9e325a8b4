#pragma once

#include <sx/containers/sxList.h>

class sxBase;

// The attribute lists of objects, kept aside since few objects have one:
// an object without attributes then carries no pointer for them. The
// object marks that it has an entry; the table is thread-safe, each list
// is its object's alone.
namespace sxiAttributeTable {

sxTList<sxBase*>* find(const sxBase* obj);
// Null when the heap is exhausted.
sxTList<sxBase*>* findOrMake(const sxBase* obj);
// Removes obj's entry and hands its list to the caller (null: none).
sxTList<sxBase*>* take(const sxBase* obj);

}  // namespace sxiAttributeTable
