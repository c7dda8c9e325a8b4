#include <sx/math/sxBox.h>

#include <algorithm>
#include <cfloat>
#include <cmath>

#include <sx/math/sxMatrix.h>

#include "math/sxVolumeTests.h"

void sxBox::makeEmpty() {
  min.set(FLT_MAX, FLT_MAX, FLT_MAX);
  max.set(-FLT_MAX, -FLT_MAX, -FLT_MAX);
}

void sxBox::xform(const sxBox& box, const sxMatrix& m) {
  if (box.isEmpty()) {
    makeEmpty();
    return;
  }
  const unsigned int type = m.getType();
  if (type == sxMatrix::UNKNOWN || (type & sxMatrix::PROJECTIVE)) {
    sxBox around;
    for (int octant = 0; octant < 8; ++octant) {
      sxVec3 corner;
      corner.fullXformPt(box.cornerOf(octant), m);
      around.extendAround(corner);
    }
    *this = around;
    return;
  }
  // Affine: each output axis takes the smaller and the larger of every
  // input axis' two contributions, which is the box of the eight corners.
  sxVec3 lo(m[3][0], m[3][1], m[3][2]);
  sxVec3 hi = lo;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      const float a = m[i][j] * box.min[i];
      const float b = m[i][j] * box.max[i];
      lo[j] += std::min(a, b);
      hi[j] += std::max(a, b);
    }
  }
  min = lo;
  max = hi;
}

void sxBox::xform(const sxMatrix& m) {
  xform(*this, m);
}

sxVolume::CONTAINMENT sxBox::contains(const sxVec3& p) const {
  return min.x <= p.x && p.x <= max.x && min.y <= p.y && p.y <= max.y && min.z <= p.z &&
                 p.z <= max.z
             ? INSIDE
             : OUTSIDE;
}

sxVolume::CONTAINMENT sxBox::contains(const sxRay& ray) const {
  sxiLineRange range;
  for (int i = 0; i < 3; ++i) {
    sxVec3 axis(0.0f, 0.0f, 0.0f);
    axis[i] = 1.0f;
    sxiClip(axis, max[i], ray, range.tIn, range.tOut);
    sxiClip(-axis, -min[i], ray, range.tIn, range.tOut);
  }
  return rayContainment(ray, range.tIn, range.tOut);
}

sxVolume::CONTAINMENT sxBox::contains(const sxSphere& sphere) const {
  if (!isectBoxSphere(*this, sphere)) return OUTSIDE;
  for (int i = 0; i < 3; ++i) {
    if (sphere.center[i] - sphere.radius < min[i] || sphere.center[i] + sphere.radius > max[i]) {
      return PARTIAL;
    }
  }
  return INSIDE;
}

sxVolume::CONTAINMENT sxBox::contains(const sxBox& box) const {
  if (!isectBoxBox(*this, box)) return OUTSIDE;
  for (int i = 0; i < 3; ++i) {
    if (box.min[i] < min[i] || box.max[i] > max[i]) return PARTIAL;
  }
  return INSIDE;
}

// A box never holds a whole half space.
sxVolume::CONTAINMENT sxBox::contains(const sxPlane& plane) const {
  return plane.intersects(*this) ? PARTIAL : OUTSIDE;
}

void sxBox::extendAround(const sxVec3& p) {
  for (int i = 0; i < 3; ++i) {
    min[i] = std::min(min[i], p[i]);
    max[i] = std::max(max[i], p[i]);
  }
}

void sxBox::extendAround(const sxSphere& sphere) {
  if (sphere.isEmpty()) return;
  const sxVec3 r(sphere.radius, sphere.radius, sphere.radius);
  extendAround(sphere.center - r);
  extendAround(sphere.center + r);
}

void sxBox::extendAround(const sxBox& box) {
  if (box.isEmpty()) return;
  extendAround(box.min);
  extendAround(box.max);
}
