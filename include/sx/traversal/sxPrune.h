#pragma once

#include <sx/traversal/sxTravTrait.h>

/// Removes a sub-graph from traversals while enabled (the prune bit 0x0080
/// of the traversal flags).
class SX_API sxPrune : public sxTravTrait {
 public:
  SX_CLASS(sxPrune, sxTravTrait)
  sxPrune() = default;

  void apply(sxTravContext* context) const override;
  bool isEqual(const sxTrait* other) const override;
  /// A style whose traits leave the prune bit set is not entered.
  virtual void enable(bool value) { enabled = value; }
  bool isEnabled() const { return enabled; }

  /// The trait fields, then the value as an int.
  sxEntry* read(sxFile* file, sxEntry* entry) override;
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

 private:
  bool enabled = false;
};
