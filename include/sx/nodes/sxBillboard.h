#pragma once

#include <sx/math/sxMatrix.h>
#include <sx/math/sxSphere.h>
#include <sx/math/sxVec3.h>
#include <sx/nodes/sxGroup.h>

class sxViewpoint;

/// A node that places its sub-graph at a position and turns it towards the
/// viewpoint every time a pass visits it.
///
/// The turned frame has its +Y axis along the mode's axis A and its +Z axis
/// leaning towards the viewer (exactly towards it in the modes 1 and 2,
/// where A is made perpendicular to the view direction). The scale of the
/// current matrix is kept; its rotation is replaced.
///
/// Every pass (traverser, camera, listener, collider) places the sub-graph
/// the same way: from the context's current matrix and its viewpoint, or
/// by the position alone when the context has none. The camera pass uses
/// the camera context's current matrix as it is: the kernel's camera keeps
/// no separate matrix of its own to multiply in (a rendering plug-in that
/// has one applies it in its own passes).
///
/// The fence pass caches the children's bounds and grows the parent's
/// volume by a sphere around the position that holds them in any turn.
class SX_API sxBillboard : public sxGroup {
 public:
  SX_CLASS(sxBillboard, sxGroup)

  /// How the node turns.
  enum MODE : int {
    MODE_AXIS = 0,       ///< about its own axis (transformed by the current matrix)
    MODE_VIEWER_UP = 1,  ///< the viewer's up, made perpendicular to the view direction
    MODE_WORLD_UP = 2,   ///< world +Z, made perpendicular to the view direction
    MODE_WORLD_AXIS = 3  ///< about world +Z (the default; any other value too)
  };

  sxBillboard() = default;

  sxEntry* read(sxFile* file, sxEntry* entry) override;
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

  /// The axis of MODE_AXIS, in the node's parent space.
  virtual void setAxis(const sxVec3& a);
  virtual void setMode(MODE m);
  /// Where the sub-graph is placed, in the parent's space.
  virtual void setXYZ(float x, float y, float z);
  virtual void setXYZ(const sxVec3& xyz);
  const sxVec3& getAxis() const { return axis; }
  MODE getMode() const { return mode; }
  const sxVec3& getXYZ() const { return position; }
  /// The cached bounds of the children in the turned space.
  const sxSphere& getVolume() const { return volume; }

  /// The placement for a pass: current is the context's matrix, viewpoint
  /// where the pass looks from (null: a translation by the position).
  void computeFullMatrix(const sxMatrix& current, sxMatrix& result,
                         const sxViewpoint* viewpoint) const;

  sxTraverser::TRAV_STATE apply(sxTraverser* traverser, bool skipPreApply) override;
  void apply(sxCollider* collider) const override;
  void apply(sxListener* listener) const override;
  void apply(sxCamera* camera) const override;
  void updateFences(sxTravContext* context) override;

 protected:
  SX_GROUP_COPIES

 private:
  sxSphere volume;
  MODE mode = MODE_WORLD_AXIS;
  sxVec3 axis{0.0f, 0.0f, 1.0f};
  sxVec3 position{0.0f, 0.0f, 0.0f};
};
