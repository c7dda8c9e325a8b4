#pragma once

#include <sx/object/sxIndexedType.h>

/// The type records of the three trait families. A trait's number within its
/// family (its trait index) selects its stack inside every trait stack.
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
  /// The trait index of a record of this family; -1 for null and for a
  /// record of another class (a trait class registered without its
  /// family's record is never pushed).
  static int indexOf(const sxType* type) {
    const Derived* t = dynamic_cast<const Derived*>(type);
    return t ? t->getTraitIndex() : -1;
  }
};

/// Type record of the visual traits.
class SX_API sxVisualTraitType
    : public sxTraitTypeOf<sxIndexedType::visualTraitFamily, sxVisualTraitType> {
 public:
  using sxTraitTypeOf::sxTraitTypeOf;
};

/// Type record of the audio traits.
class SX_API sxAudioTraitType
    : public sxTraitTypeOf<sxIndexedType::audioTraitFamily, sxAudioTraitType> {
 public:
  using sxTraitTypeOf::sxTraitTypeOf;
};

/// Type record of the traversal traits.
class SX_API sxTravTraitType
    : public sxTraitTypeOf<sxIndexedType::travTraitFamily, sxTravTraitType> {
 public:
  using sxTraitTypeOf::sxTraitTypeOf;
};
