#pragma once

#include <sx/traversal/sxTravTrait.h>

/// Selects what a sub-graph offers to colliders: its targets replace the
/// collider-target bits (0x70000) of the traversal flags.
class SX_API sxColliderTarget : public sxTravTrait {
 public:
  SX_CLASS(sxColliderTarget, sxTravTrait)
  sxColliderTarget() = default;

  void apply(sxTravContext* context) const override;
  SX_VALUE_TRAIT_OVERRIDES
  /// Keeps only the target bits 0x70000.
  virtual void setTargets(unsigned value) { targets = value & 0x70000u; }
  unsigned getTargets() const { return targets; }

 private:
  unsigned targets = 0x70000u;
};
