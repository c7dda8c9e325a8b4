#pragma once

#include <sx/object/sxIndexedType.h>

// The type record of every group class; numbers the node kinds.
class SX_API sxGroupType : public sxIndexedTypeOf<sxIndexedType::groupFamily> {
 public:
  using sxIndexedTypeOf::sxIndexedTypeOf;
  int getGroupIndex() const { return getFamilyIndex(); }
  static int getNumGroupTypes() { return getNumInFamily(groupFamily); }
  static sxGroupType* getGroupType(int i) {
    return static_cast<sxGroupType*>(getInFamily(groupFamily, i));
  }
};
