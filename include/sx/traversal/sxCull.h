#pragma once

#include <sx/traversal/sxTravTrait.h>

/// Selects how a sub-graph is culled against the view: its mask replaces the
/// cull bits (0x5500) of the traversal flags.
class SX_API sxCull : public sxTravTrait {
 public:
  SX_CLASS(sxCull, sxTravTrait)
  sxCull() = default;

  void apply(sxTravContext* context) const override;
  SX_VALUE_TRAIT_OVERRIDES
  /// Stored as given: bits outside 0x5500 are set in the flags too and no
  /// other cull trait clears them.
  virtual void setMask(unsigned value) { mask = value; }
  unsigned getMask() const { return mask; }

 private:
  unsigned mask = 0x1500u;
};
