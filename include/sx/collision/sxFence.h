#pragma once

#include <sx/nodes/sxGroup.h>

class sxMatrix;
class sxVolume;

/// A node whose bounds colliders and cameras meet: the base of the fence
/// kinds.
///
/// A fence carries the content bit CONTENT_FENCE from its construction on
/// and keeps it whatever happens below it, so the camera and collider
/// passes (whose pass mask holds it) reach every fence, and transforms
/// above mark it when the world placement changes. In the fence pass a
/// fence grows the volume on top of the context's volume stack by its own
/// bounds, placed by the top of the matrix stack, then runs the group fence
/// pass for its children. The base kind has no bounds of its own: it only
/// carries the bit (and its children's bounds).
class SX_API sxFence : public sxGroup {
 public:
  SX_CLASS(sxFence, sxGroup)

  /// The content bit of fences: one of the kinds that depend on world
  /// placement.
  static constexpr unsigned CONTENT_FENCE = 0x1000;

  sxFence();
  sxFence(const sxFence& source);

  sxEntry* read(sxFile* file, sxEntry* entry) override;
  void updateFences(sxTravContext* context) override;

 protected:
  SX_GROUP_COPIES
  void cleanUp(unsigned bits) override;
  /// Grows outer by this fence's bounds placed by top; nothing for the base.
  virtual void growVolume(sxVolume& outer, const sxMatrix& top) const;
};
