#include <sx/math/sxSphere.h>
#include <sx/traversal/sxViewpoint.h>

void sxViewpoint::setMatrix(const sxMatrix& m) {
  matrix = m;
  matrix.getXYZ(position);
  if (projection != PROJECTION_NONE) worldFrustum.xform(eyeFrustum, matrix);
}

void sxViewpoint::setFrustum(const sxFrustum& eyeSpace) {
  if (eyeSpace.isEmpty()) {
    clearFrustum();
    return;
  }
  eyeFrustum = eyeSpace;
  projection = eyeSpace.isOrtho() ? PROJECTION_ORTHOGRAPHIC : PROJECTION_PERSPECTIVE;
  worldFrustum.xform(eyeFrustum, matrix);
}

void sxViewpoint::clearFrustum() {
  eyeFrustum.makeEmpty();
  worldFrustum.makeEmpty();
  projection = PROJECTION_NONE;
}

sxVolume::CONTAINMENT sxViewpoint::contains(const sxSphere& worldSphere) const {
  if (worldSphere.isEmpty()) return sxVolume::OUTSIDE;
  if (projection == PROJECTION_NONE) return sxVolume::INSIDE;
  return worldFrustum.contains(worldSphere);
}
