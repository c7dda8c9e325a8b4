#pragma once

#include <sx/traversal/sxTrait.h>
#include <sx/traversal/sxTraitType.h>

class sxTravContext;

/// The family of traits that change how a sub-graph is traversed.
class SX_API sxTravTrait : public sxTrait {
 public:
  SX_CLASS(sxTravTrait, sxTrait)
  sxTravTrait() = default;

  /// Sets the flags or masks of the traversal context. The base does nothing.
  virtual void apply(sxTravContext* target) const;
  /// The position of the trait's type in the family (its stack in every
  /// trait stack); -1 for the family class itself, which has no stack, and
  /// for a class registered without the family's record.
  int getTraitIndex() const { return sxTravTraitType::indexOf(getType()); }
};
