#pragma once

#include <sx/traversal/sxTravTrait.h>

/// Selects how the drawing of a sub-graph is sorted: its mask replaces the
/// sort bits (0x300000) of the traversal flags.
class SX_API sxSort : public sxTravTrait {
 public:
  SX_CLASS(sxSort, sxTravTrait)
  sxSort() = default;

  void apply(sxTravContext* context) const override;
  SX_VALUE_TRAIT_OVERRIDES
  /// Keeps only the sort bits 0x300000.
  virtual void setMask(unsigned value) { mask = value & 0x300000u; }
  unsigned getMask() const { return mask; }

 private:
  unsigned mask = 0x100000u;
};
