// What a frustum contains and meets.
#include <sx/math/sxFrustum.h>

#include <sx/math/sxBox.h>
#include <sx/math/sxRay.h>

#include "math/sxVolumeTests.h"

// The view test of the traversal, for spheres and boxes alike.
template <class V>
sxVolume::CONTAINMENT sxFrustum::cull(const V& v) const {
  if (empty || sxiMisses(bound, v)) return OUTSIDE;
  unsigned int crossed = 0;
  for (int i = 0; i < 6; ++i) {
    const CONTAINMENT c = sxiSide(faces[i], v);
    if (c == OUTSIDE) return OUTSIDE;
    if (c == PARTIAL) crossed |= edgeMasks[i];
  }
  if (!crossed) return INSIDE;
  for (int e = 0; e < numEdges; ++e) {
    if ((crossed >> e & 1u) && sxiSide(edges[e], v) == OUTSIDE) return OUTSIDE;
  }
  return PARTIAL;
}

sxVolume::CONTAINMENT sxFrustum::contains(const sxSphere& sphere) const {
  return cull(sphere);
}

sxVolume::CONTAINMENT sxFrustum::contains(const sxBox& box) const {
  return box.isEmpty() ? OUTSIDE : cull(box);
}

sxVolume::CONTAINMENT sxFrustum::contains(const sxVec3& point) const {
  if (empty || bound.contains(point) == OUTSIDE) return OUTSIDE;
  for (const sxPlane& face : faces) {
    if (face.contains(point) == OUTSIDE) return OUTSIDE;
  }
  return INSIDE;
}

sxVolume::CONTAINMENT sxFrustum::contains(const sxRay& ray) const {
  if (empty) return OUTSIDE;
  sxiLineRange range;
  for (const sxPlane& face : faces) sxiClip(face.normal, face.offset, ray, range.tIn, range.tOut);
  return rayContainment(ray, range.tIn, range.tOut);
}

// A bounded frustum never holds a whole half space.
sxVolume::CONTAINMENT sxFrustum::contains(const sxPlane& plane) const {
  return isectPlaneFrust(plane, *this) ? PARTIAL : OUTSIDE;
}
