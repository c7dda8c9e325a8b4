// The intersection tests that both volumes of a pair share.
#include <sx/math/sxVolume.h>

#include <cmath>

#include <sx/math/sxBox.h>
#include <sx/math/sxFrustum.h>
#include <sx/math/sxPlane.h>
#include <sx/math/sxRay.h>
#include <sx/math/sxSphere.h>

#include "math/sxConvex.h"
#include "math/sxVolumeTests.h"

// Where the ray crosses the plane's surface.
bool sxVolume::isectRayPlane(const sxRay& ray, const sxPlane& plane) {
  if (ray.length == 0.0f) return false;
  const float d = ray.direction.dot(plane.normal);
  if (std::fabs(d) < 1e-6f) return false;
  const float t = -(plane.normal.dot(ray.start) - plane.offset) / d;
  if (t < 0.0f) return false;
  return ray.isUnbounded() || t <= ray.length;
}

bool sxVolume::isectRayBox(const sxRay& ray, const sxBox& box) {
  return !box.isEmpty() && box.contains(ray) != OUTSIDE;
}

// The nearer crossing of the line decides, so a sphere behind the start or
// around it counts as hit: callers start rays outside.
bool sxVolume::isectRaySphere(const sxRay& ray, const sxSphere& sphere) {
  if (ray.length == 0.0f) return false;
  const sxVec3 toCenter = sphere.center - ray.start;
  const float mid = toCenter.dot(ray.direction);
  const float q = sphere.radius * sphere.radius - (toCenter.sqrLength() - mid * mid);
  if (q < 0.0f) return false;
  const float t = mid - sxSqrt(q);
  return ray.isUnbounded() || t <= ray.length;
}

bool sxVolume::isectRayFrust(const sxRay& ray, const sxFrustum& frustum) {
  return frustum.contains(ray) != OUTSIDE;
}

// Two half spaces miss only when they face apart with a gap between them.
bool sxVolume::isectPlanePlane(const sxPlane& a, const sxPlane& b) {
  const bool opposite = a.normal.dot(b.normal) <= -1.0f + 1e-6f;
  return !(opposite && a.offset + b.offset < 0.0f);
}

bool sxVolume::isectPlaneBox(const sxPlane& plane, const sxBox& box) {
  return !box.isEmpty() && sxiSide(plane, box) != OUTSIDE;
}

bool sxVolume::isectPlaneSphere(const sxPlane& plane, const sxSphere& sphere) {
  return sxiSide(plane, sphere) != OUTSIDE;
}

bool sxVolume::isectPlaneFrust(const sxPlane& plane, const sxFrustum& frustum) {
  if (frustum.isEmpty()) return false;
  for (int i = 0; i < sxFrustum::numCorners; ++i) {
    if (plane.contains(frustum.getCorner(i)) == INSIDE) return true;
  }
  return false;
}

bool sxVolume::isectBoxBox(const sxBox& a, const sxBox& b) {
  for (int i = 0; i < 3; ++i) {
    if (a.max[i] < b.min[i] || b.max[i] < a.min[i]) return false;
  }
  return true;
}

bool sxVolume::isectBoxSphere(const sxBox& box, const sxSphere& sphere) {
  return !box.isEmpty() && sxiNearSqr(box, sphere.center) <= sphere.radius * sphere.radius;
}

// The culling test settles most cases; what it leaves partial is decided by
// the separating axes of the two convex hulls.
bool sxVolume::isectBoxFrust(const sxBox& box, const sxFrustum& frustum) {
  if (box.isEmpty() || frustum.isEmpty()) return false;
  const CONTAINMENT c = frustum.contains(box);
  if (c != PARTIAL) return c == INSIDE;
  sxiHull boxHull;
  boxHull.fromBox(box);
  sxiHull frustumHull;
  frustumHull.fromFrustum(frustum);
  return sxiHullsMeet(boxHull, frustumHull);
}

bool sxVolume::isectSphereSphere(const sxSphere& a, const sxSphere& b) {
  const float reach = a.radius + b.radius;
  return a.center.sqrDistance(b.center) <= reach * reach;
}

bool sxVolume::isectSphereFrust(const sxSphere& sphere, const sxFrustum& frustum) {
  if (frustum.isEmpty()) return false;
  const CONTAINMENT c = frustum.contains(sphere);
  if (c != PARTIAL) return c == INSIDE;
  return sxiFrustumSqrDistance(frustum, sphere.center) <= sphere.radius * sphere.radius;
}

bool sxVolume::isectFrustFrust(const sxFrustum& a, const sxFrustum& b) {
  if (a.isEmpty() || b.isEmpty()) return false;
  sxiHull hullA;
  hullA.fromFrustum(a);
  sxiHull hullB;
  hullB.fromFrustum(b);
  return sxiHullsMeet(hullA, hullB);
}
