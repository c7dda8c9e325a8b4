#pragma once

#include <sx/math/sxMatrix.h>
#include <sx/math/sxQuat.h>
#include <sx/math/sxSphere.h>
#include <sx/math/sxVec3.h>
#include <sx/nodes/sxGroup.h>

/// A group that places its sub-graph by a matrix (local to parent space).
///
/// The passes wrap the group descent with the matrix: the context's matrix
/// stack gets the matrix applied before the current top (children in the
/// transform's space, then the parent's), and the traverser pass also keeps
/// the inverse stack. An identity matrix pushes nothing.
///
/// The transform caches the bounds of its children in its own space. The
/// fence pass recomputes them only when the sub-graph changed
/// (TRAV_FLAG_FENCES set); otherwise it reuses them, transformed into the
/// parent's volume. The camera pass culls the sub-graph against the view
/// volume with the cached sphere.
///
/// Changing the matrix marks the transform and its ancestors with
/// TRAV_FLAG_MATRIX and TRAV_FLAG_FENCES, and the content nodes below that
/// depend on world placement (content bits 0x3000) with TRAV_FLAG_MATRIX.
class SX_API sxTransform : public sxGroup {
 public:
  SX_CLASS(sxTransform, sxGroup)

  /// Content bits of node kinds whose state depends on their world placement.
  static constexpr unsigned PLACED_CONTENT = 0x3000;
  /// The context flag that has the camera pass cull against the view volume.
  static constexpr unsigned CULL_CAMERA = 0x1000;

  sxTransform() = default;
  explicit sxTransform(const sxMatrix& m) : matrix(m) {}

  sxEntry* read(sxFile* file, sxEntry* entry) override;
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

  // --- the matrix; each setter marks the change (see the class comment)

  virtual void setMatrix(const sxMatrix& m);
  /// Marks a change made otherwise (TRAV_FLAG_MATRIX up the ancestors).
  virtual void changed();
  /// Replaces the translation only.
  virtual void setXYZ(float x, float y, float z);
  virtual void setXYZ(const sxVec3& xyz);
  /// Replaces the rotation (degrees) and keeps the translation.
  virtual void setHPR(float h, float p, float r);
  virtual void setHPR(const sxVec3& hpr);
  /// Replaces the rotation and keeps the translation.
  virtual void setQuat(const sxQuat& q);

  const sxMatrix& getMatrix() const { return matrix; }
  /// The matrix's own identity flag: an identity matrix built from raw
  /// values without identifying its type does not count.
  bool isIdentity() const { return matrix.getType() == sxMatrix::IDENTITY; }
  void getXYZ(float& x, float& y, float& z) const { matrix.getXYZ(x, y, z); }
  void getXYZ(sxVec3& xyz) const { matrix.getXYZ(xyz); }
  void getHPR(float& h, float& p, float& r) const { matrix.getHPR(h, p, r); }
  void getHPR(sxVec3& hpr) const { matrix.getHPR(hpr); }
  void getQuat(sxQuat& q) const { matrix.getQuat(q); }
  /// The cached bounds of the children in this node's space (empty until a
  /// fence pass has run).
  const sxSphere& getVolume() const { return volume; }

  // --- passes

  sxTraverser::TRAV_STATE apply(sxTraverser* traverser, bool skipPreApply) override;
  void apply(sxCollider* collider) const override;
  void apply(sxListener* listener) const override;
  void apply(sxCamera* camera) const override;
  void update(sxTravContext* context) override;
  void updateFences(sxTravContext* context) override;

 protected:
  sxGroup* copyGroup() const override;
  sxGroup* cloneGroup() const override;
  void addedTo(sxGroup* parent) override;
  void removedFrom(sxGroup* parent) override;
  /// The marking of a matrix change: the placed content below and this
  /// node with its ancestors.
  void dirtyUpFlags();

 private:
  /// For each child of node that carries a bit of test: the child gets set,
  /// and so does its sub-graph the same way.
  static void dirtyDown(sxGroup* node, unsigned test, unsigned set);
  /// dirtyDown from this node's children; with stopAtTransforms, transforms
  /// below are left alone (they mark their own sub-graphs).
  void markChildren(bool stopAtTransforms);

  sxSphere volume;
  sxMatrix matrix;
};
