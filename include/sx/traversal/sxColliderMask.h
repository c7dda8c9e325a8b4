#pragma once

#include <sx/traversal/sxTravTrait.h>

/// Selects which colliders see a sub-graph: its mask becomes the traversal
/// context's collider mask.
class SX_API sxColliderMask : public sxTravTrait {
 public:
  SX_CLASS(sxColliderMask, sxTravTrait)
  sxColliderMask() = default;

  void apply(sxTravContext* context) const override;
  bool isEqual(const sxTrait* other) const override;
  /// Stored as given.
  virtual void setMask(unsigned value) { mask = value; }
  unsigned getMask() const { return mask; }

  /// The trait fields, then the value as an int.
  sxEntry* read(sxFile* file, sxEntry* entry) override;
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

 private:
  unsigned mask = 0xFFFFFFFFu;
};
