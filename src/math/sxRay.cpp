#include <sx/math/sxRay.h>

#include <cfloat>
#include <cmath>

#include <sx/math/sxBox.h>
#include <sx/math/sxFrustum.h>
#include <sx/math/sxMatrix.h>
#include <sx/math/sxPlane.h>
#include <sx/math/sxSphere.h>

void sxRay::makeFromPoints(const sxVec3& p0, const sxVec3& p1) {
  start = p0;
  direction.sub(p1, p0);
  length = direction.normalize();
}

void sxRay::getEndPoint(sxVec3& end) const {
  end.addScaled(start, isUnbounded() ? 3.4028233e36f : length, direction);
}

float sxRay::getReach() const {
  return isUnbounded() ? FLT_MAX : length;
}

void sxRay::xform(const sxRay& ray, const sxMatrix& m) {
  const float len = ray.length;
  start.xformPt(ray.start, m);
  direction.xformVec(ray.direction, m);
  const float stretch = direction.normalize();
  length = len < 0.0f ? len : len * stretch;
}

bool sxRay::intersects(const sxPlane& plane) const {
  return plane.intersects(*this);
}
bool sxRay::intersects(const sxBox& box) const {
  return box.intersects(*this);
}
bool sxRay::intersects(const sxSphere& sphere) const {
  return sphere.intersects(*this);
}
bool sxRay::intersects(const sxFrustum& frustum) const {
  return frustum.intersects(*this);
}

// Moeller and Trumbore: solve start + t * direction = p0 + u e1 + v e2.
float sxRay::intersects(const sxVec3& p0, const sxVec3& p1, const sxVec3& p2,
                        sxVec3& hitPoint) const {
  if (length == 0.0f) return -1.0f;
  const sxVec3 e1 = p1 - p0, e2 = p2 - p0;
  sxVec3 p;
  p.cross(direction, e2);
  const float det = e1.dot(p);
  // Parallel to the triangle's plane, or a degenerate triangle.
  if (std::fabs(det) < 1e-12f) return -1.0f;
  const float inv = 1.0f / det;
  const sxVec3 s = start - p0;
  const float u = s.dot(p) * inv;
  if (u < 0.0f || u > 1.0f) return -1.0f;
  sxVec3 q;
  q.cross(s, e1);
  const float v = direction.dot(q) * inv;
  if (v < 0.0f || u + v > 1.0f) return -1.0f;
  const float t = e2.dot(q) * inv;
  if (t < 0.0f || t > getReach()) return -1.0f;
  hitPoint.addScaled(start, t, direction);
  return t;
}

// As two triangles sharing the diagonal p0-p2; the nearer hit counts.
float sxRay::intersects(const sxVec3& p0, const sxVec3& p1, const sxVec3& p2, const sxVec3& p3,
                        sxVec3& hitPoint) const {
  sxVec3 first, second;
  const float a = intersects(p0, p1, p2, first);
  const float b = intersects(p0, p2, p3, second);
  if (a < 0.0f && b < 0.0f) return -1.0f;
  const bool useFirst = a >= 0.0f && (b < 0.0f || a <= b);
  hitPoint = useFirst ? first : second;
  return useFirst ? a : b;
}
