#pragma once

#include <sx/object/sxIndexedType.h>

// The type records of the three trait families. A trait's number within its
// family selects its stack inside every trait stack.
template <sxIndexedType::Family F, class Derived>
class sxTraitTypeOf : public sxIndexedTypeOf<F> {
 public:
  using sxIndexedTypeOf<F>::sxIndexedTypeOf;
  int getTraitIndex() const { return this->getFamilyIndex(); }
  static int getNumTraitTypes() { return sxIndexedType::getNumInFamily(F); }
  // Null outside 0..getNumTraitTypes()-1.
  static Derived* getTraitType(int i) {
    return static_cast<Derived*>(sxIndexedType::getInFamily(F, i));
  }
};

class SX_API sxVisualTraitType
    : public sxTraitTypeOf<sxIndexedType::visualTraitFamily, sxVisualTraitType> {
 public:
  using sxTraitTypeOf::sxTraitTypeOf;
};

class SX_API sxAudioTraitType
    : public sxTraitTypeOf<sxIndexedType::audioTraitFamily, sxAudioTraitType> {
 public:
  using sxTraitTypeOf::sxTraitTypeOf;
};

class SX_API sxTravTraitType
    : public sxTraitTypeOf<sxIndexedType::travTraitFamily, sxTravTraitType> {
 public:
  using sxTraitTypeOf::sxTraitTypeOf;
};
