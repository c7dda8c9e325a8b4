#pragma once

#include <sx/traversal/sxTrait.h>
#include <sx/traversal/sxTraitType.h>

class sxListener;

/// The family of traits that change how a sub-graph is heard.
class SX_API sxAudioTrait : public sxTrait {
 public:
  SX_CLASS(sxAudioTrait, sxTrait)
  sxAudioTrait() = default;

  /// Hands the trait's value to the listener. The base does nothing.
  virtual void apply(sxListener* target) const;
  /// The position of the trait's type in the family (its stack in every
  /// trait stack); -1 for the family class itself, which has no stack, and
  /// for a class registered without the family's record.
  int getTraitIndex() const { return sxAudioTraitType::indexOf(getType()); }
};
