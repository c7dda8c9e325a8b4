#pragma once

#include <sx/traversal/sxTravTrait.h>

/// Removes a sub-graph from traversals while enabled (the prune bit 0x0080
/// of the traversal flags).
class SX_API sxPrune : public sxTravTrait {
 public:
  SX_CLASS(sxPrune, sxTravTrait)
  sxPrune() = default;

  void apply(sxTravContext* context) const override;
  SX_VALUE_TRAIT_OVERRIDES
  /// A style whose traits leave the prune bit set is not entered.
  virtual void enable(bool value) { enabled = value; }
  bool isEnabled() const { return enabled; }

 private:
  bool enabled = false;
};
