#pragma once

#include <sx/traversal/sxTravTrait.h>

/// Selects what a sub-graph offers to colliders: its targets replace the
/// collider-target bits (0x70000) of the traversal flags.
class SX_API sxColliderTarget : public sxTravTrait {
 public:
  SX_CLASS(sxColliderTarget, sxTravTrait)
  sxColliderTarget() = default;

  void apply(sxTravContext* context) const override;
  bool isEqual(const sxTrait* other) const override;
  /// Keeps only the target bits 0x70000.
  virtual void setTargets(unsigned value) { targets = value & 0x70000u; }
  unsigned getTargets() const { return targets; }

  /// The trait fields, then the value as an int.
  sxEntry* read(sxFile* file, sxEntry* entry) override;
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

 private:
  unsigned targets = 0x70000u;
};
