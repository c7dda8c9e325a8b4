#include <sx/math/sxPlane.h>

#include <algorithm>

#include <sx/math/sxMatrix.h>

#include "math/sxVolumeTests.h"

void sxPlane::setNormal(const sxVec3& n) {
  normal = n;
  normal.normalize();
  octant = normal.getOctant();
}

void sxPlane::make(const sxVec3& n, float d) {
  setNormal(n);
  offset = d;
}

void sxPlane::make(const sxVec3& point, const sxVec3& n) {
  setNormal(n);
  offset = normal.dot(point);
}

void sxPlane::make(const sxVec3& p0, const sxVec3& p1, const sxVec3& p2) {
  sxVec3 n;
  n.cross(p1 - p0, p2 - p0);
  make(p0, n);
}

void sxPlane::xform(const sxPlane& plane, const sxMatrix& m) {
  const unsigned int type = m.getType();
  constexpr unsigned int general = sxMatrix::NONUNIFORM_SCALE | sxMatrix::PROJECTIVE;
  if (type != sxMatrix::UNKNOWN && !(type & general)) {
    // Rotation, uniform scale and translation carry the normal along as a
    // direction; a point of the plane fixes the new offset.
    sxVec3 point, n;
    point.scale(plane.offset, plane.normal);
    point.xformPt(point, m);
    n.xformVec(plane.normal, m);
    make(point, n);
    return;
  }
  // Otherwise the plane (n, -offset) maps by the inverse transpose.
  sxMatrix inv;
  inv.invert(m);
  const float h[4] = {plane.normal.x, plane.normal.y, plane.normal.z, -plane.offset};
  float out[4];
  for (int i = 0; i < 4; ++i) {
    out[i] = inv[i][0] * h[0] + inv[i][1] * h[1] + inv[i][2] * h[2] + inv[i][3] * h[3];
  }
  setNormal(sxVec3(out[0], out[1], out[2]));
  const float len = sxVec3(out[0], out[1], out[2]).length();
  offset = len > 0.0f ? -out[3] / len : 0.0f;
}

sxVolume::CONTAINMENT sxPlane::contains(const sxRay& ray) const {
  sxiLineRange range;
  sxiClip(normal, offset, ray, range.tIn, range.tOut);
  return rayContainment(ray, range.tIn, range.tOut);
}

sxVolume::CONTAINMENT sxPlane::contains(const sxSphere& sphere) const {
  return sxiSide(*this, sphere);
}

sxVolume::CONTAINMENT sxPlane::contains(const sxBox& box) const {
  if (box.isEmpty()) return OUTSIDE;
  return sxiSide(*this, box);
}

sxVolume::CONTAINMENT sxPlane::contains(const sxPlane& plane) const {
  if (!isectPlanePlane(*this, plane)) return OUTSIDE;
  const bool sameFacing = normal.dot(plane.normal) >= 1.0f - 1e-6f;
  return sameFacing && plane.offset <= offset ? INSIDE : PARTIAL;
}

void sxPlane::extendAround(const sxVec3& point) {
  offset = std::max(offset, normal.dot(point));
}
