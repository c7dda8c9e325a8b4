#include <sx/math/sxSphere.h>

#include <cmath>

#include <sx/math/sxMatrix.h>

#include "math/sxVolumeTests.h"

void sxSphere::xform(const sxMatrix& m) {
  if (m.getType() == sxMatrix::IDENTITY || isEmpty()) return;
  // Only the Z axis measures the scale: the library's transforms scale
  // uniformly.
  sxVec3 axis;
  axis.xformVec(sxVec3(0.0f, 0.0f, 1.0f), m);
  const float sqr = axis.sqrLength();
  if (std::fabs(sqr - 1.0f) > 0.0001f) radius *= sxSqrt(sqr);
  center.xformPt(center, m);
}

sxVolume::CONTAINMENT sxSphere::contains(const sxVec3& point) const {
  return radius * radius >= center.sqrDistance(point) ? INSIDE : OUTSIDE;
}

sxVolume::CONTAINMENT sxSphere::contains(const sxRay& ray) const {
  const sxVec3 toCenter = center - ray.start;
  const float mid = toCenter.dot(ray.direction);
  const float q = radius * radius - (toCenter.sqrLength() - mid * mid);
  if (q < 0.0f) return OUTSIDE;
  const float half = sxSqrt(q);
  return rayContainment(ray, mid - half, mid + half);
}

sxVolume::CONTAINMENT sxSphere::contains(const sxSphere& sphere) const {
  return sxiSide(*this, sphere);
}

sxVolume::CONTAINMENT sxSphere::contains(const sxBox& box) const {
  if (box.isEmpty()) return OUTSIDE;
  return sxiSide(*this, box);
}

sxVolume::CONTAINMENT sxSphere::contains(const sxPlane& plane) const {
  return isectPlaneSphere(plane, *this) ? PARTIAL : OUTSIDE;
}

void sxSphere::extendAround(const sxVec3& point) {
  if (radius < 0.0f) {
    center = point;
    radius = 0.0f;
    return;
  }
  const float sqr = center.sqrDistance(point);
  // The center itself of a sphere of radius 0 would divide 0 by 0 below.
  if (sqr < radius * radius || sqr == 0.0f) return;
  const float d = sxSqrt(sqr);
  // Move the center toward the point, keeping the far side where it is.
  sxVec3 farSide;
  farSide.addScaled(center, radius / d, center - point);
  center.combine(0.5f, farSide, 0.5f, point);
  radius = (d + radius) * 0.5f;
}

void sxSphere::extendAround(const sxSphere& sphere) {
  if (sphere.isEmpty()) return;
  if (isEmpty()) {
    *this = sphere;
    return;
  }
  const float d = center.distance(sphere.center);
  if (d + sphere.radius <= radius) return;
  if (d + radius <= sphere.radius) {
    *this = sphere;
    return;
  }
  const float grown = (d + radius + sphere.radius) * 0.5f;
  sxVec3 toOther = sphere.center - center;
  center.addScaled((grown - radius) / d, toOther);
  radius = grown;
}

void sxSphere::extendAround(const sxBox& box) {
  if (box.isEmpty()) return;
  for (int octant = 0; octant < 8; ++octant) extendAround(box.cornerOf(octant));
}
