#pragma once

#include <sx/traversal/sxTrait.h>
#include <sx/traversal/sxTraitType.h>

class sxCamera;

/// The family of traits that change how a sub-graph is drawn.
class SX_API sxVisualTrait : public sxTrait {
 public:
  SX_CLASS(sxVisualTrait, sxTrait)
  sxVisualTrait() = default;

  /// Puts the trait's state into effect on the camera's side. The base does nothing.
  virtual void apply(sxCamera* target) const;
  /// The position of the trait's type in the family (its stack in every
  /// trait stack); -1 for the family class itself, which has no stack, and
  /// for a class registered without the family's record.
  int getTraitIndex() const { return sxVisualTraitType::indexOf(getType()); }
};
