#pragma once

#include <sx/traversal/sxTravTrait.h>

/// Selects which colliders see a sub-graph: its mask becomes the traversal
/// context's collider mask.
class SX_API sxColliderMask : public sxTravTrait {
 public:
  SX_CLASS(sxColliderMask, sxTravTrait)
  sxColliderMask() = default;

  void apply(sxTravContext* context) const override;
  SX_VALUE_TRAIT_OVERRIDES
  /// Stored as given.
  virtual void setMask(unsigned value) { mask = value; }
  unsigned getMask() const { return mask; }

 private:
  unsigned mask = 0xFFFFFFFFu;
};
