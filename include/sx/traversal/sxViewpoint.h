#pragma once

#include <sx/math/sxFrustum.h>
#include <sx/math/sxMatrix.h>
#include <sx/math/sxVec3.h>
#include <sx/math/sxVolume.h>
#include <sx/object/sxMemory.h>
#include <sx/sxExport.h>

/// Where a pass looks from: the placement of a camera, listener or collider
/// in world space, its kind of projection and its view volume.
///
/// A plain value, not reference counted. Its owner points its traversal
/// context at it for the length of a pass (sxTravContext::setViewpoint);
/// range switches measure distances from getPosition(), billboards turn
/// towards it, and transforms test their bounds against getFrustum().
///
/// The eye looks along +Y with +Z up and +X to the right, as sxFrustum is
/// made; the matrix takes eye space to world space (row 3 is the position).
class SX_API sxViewpoint : public sxMemory {
 public:
  /// How the view volume was made.
  enum PROJECTION : int {
    PROJECTION_NONE = 0,         ///< no view volume: nothing is culled
    PROJECTION_PERSPECTIVE = 1,  ///< a perspective frustum
    PROJECTION_ORTHOGRAPHIC = 2  ///< a parallel view: billboards face along the view direction
  };

  sxViewpoint() = default;

  /// Eye space to world space; the world-space frustum follows.
  void setMatrix(const sxMatrix& m);
  const sxMatrix& getMatrix() const { return matrix; }
  /// The translation of the matrix.
  const sxVec3& getPosition() const { return position; }
  /// The direction of view in world space (the matrix's Y row).
  void getDirection(sxVec3& dir) const { matrix.getRow(1, dir); }

  /// The view volume in eye space. The projection follows the frustum
  /// (orthographic when made so); an empty frustum means no view volume.
  void setFrustum(const sxFrustum& eyeSpace);
  /// Drops the view volume: every test answers INSIDE.
  void clearFrustum();
  const sxFrustum& getEyeFrustum() const { return eyeFrustum; }
  /// The view volume in world space (empty without one).
  const sxFrustum& getFrustum() const { return worldFrustum; }
  PROJECTION getProjection() const { return projection; }

  /// Containment of a world-space sphere in the view volume; INSIDE when
  /// there is none, OUTSIDE for an empty sphere.
  sxVolume::CONTAINMENT contains(const sxSphere& worldSphere) const;

 private:
  sxMatrix matrix;
  sxVec3 position{0.0f, 0.0f, 0.0f};
  sxFrustum eyeFrustum;
  sxFrustum worldFrustum;
  PROJECTION projection = PROJECTION_NONE;
};
