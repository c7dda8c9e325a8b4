#pragma once

#include <sx/collision/sxFence.h>
#include <sx/math/sxBox.h>

/// A fence bounded by a box in its own space.
///
/// The box is saved after the group's record. One that is not a box (a
/// value that is not finite, a minimum above the maximum) is taken as
/// empty, from the setter and from a file alike: an empty fence bounds
/// nothing.
class SX_API sxBoxFence : public sxFence {
 public:
  SX_CLASS(sxBoxFence, sxFence)
  sxBoxFence() = default;

  sxEntry* read(sxFile* file, sxEntry* entry) override;
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

  /// Marks the bounds above for recomputing (TRAV_FLAG_FENCES).
  virtual void setBox(const sxBox& box);
  const sxBox& getBox() const { return box; }

 protected:
  SX_GROUP_COPIES
  void growVolume(sxVolume& outer, const sxMatrix& top) const override;

 private:
  sxBox box;
};
