#pragma once

#include <sx/collision/sxFence.h>
#include <sx/math/sxSphere.h>

/// A fence bounded by a sphere in its own space.
///
/// The sphere is saved after the group's record. One that is not a sphere (a
/// value that is not finite, a negative radius) is taken as
/// empty, from the setter and from a file alike: an empty fence bounds
/// nothing.
class SX_API sxSphereFence : public sxFence {
 public:
  SX_CLASS(sxSphereFence, sxFence)
  sxSphereFence() = default;

  sxEntry* read(sxFile* file, sxEntry* entry) override;
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

  /// Marks the bounds above for recomputing (TRAV_FLAG_FENCES).
  virtual void setSphere(const sxSphere& sphere);
  const sxSphere& getSphere() const { return sphere; }

 protected:
  SX_GROUP_COPIES
  void growVolume(sxVolume& outer, const sxMatrix& top) const override;

 private:
  sxSphere sphere;
};
