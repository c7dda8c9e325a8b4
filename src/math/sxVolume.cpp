#include <sx/math/sxVolume.h>

#include <sx/math/sxBox.h>
#include <sx/math/sxFrustum.h>
#include <sx/math/sxPlane.h>
#include <sx/math/sxRay.h>
#include <sx/math/sxSphere.h>

namespace {

// Calls f with v as its own kind.
template <class F>
auto visit(const sxVolume& v, F&& f) {
  switch (v.getType()) {
    case sxVolume::PLANE:
      return f(static_cast<const sxPlane&>(v));
    case sxVolume::BOX:
      return f(static_cast<const sxBox&>(v));
    case sxVolume::SPHERE:
      return f(static_cast<const sxSphere&>(v));
    default:
      return f(static_cast<const sxFrustum&>(v));
  }
}

}  // namespace

sxVolume::CONTAINMENT sxVolume::contains(const sxVolume& v) const {
  return visit(v, [this](const auto& kind) { return contains(kind); });
}

bool sxVolume::intersects(const sxVolume& v) const {
  if (isEmpty() || v.isEmpty()) return false;
  return visit(v, [this](const auto& kind) { return intersects(kind); });
}

sxVolume::CONTAINMENT sxVolume::contains(const sxFrustum& frustum) const {
  if (!intersects(frustum)) return OUTSIDE;
  for (int i = 0; i < sxFrustum::numCorners; ++i) {
    if (contains(frustum.getCorner(i)) == OUTSIDE) return PARTIAL;
  }
  return INSIDE;
}

void sxVolume::extendAround(const sxVec3* points, int count) {
  for (int i = 0; i < count; ++i) extendAround(points[i]);
}

void sxVolume::extendAround(const sxRay& ray) {
  sxVec3 end;
  ray.getEndPoint(end);
  extendAround(ray.start);
  extendAround(end);
}

void sxVolume::extendAround(const sxFrustum& frustum) {
  if (frustum.isEmpty()) return;
  for (int i = 0; i < sxFrustum::numCorners; ++i) extendAround(frustum.getCorner(i));
}

void sxVolume::extendAround(const sxVolume& v) {
  visit(v, [this](const auto& kind) { extendAround(kind); });
}

void sxVolume::getCenter(sxVec3&) const {}

sxVolume::CONTAINMENT sxVolume::rayContainment(const sxRay& ray, float tIn, float tOut) {
  const float reach = ray.getReach();
  if (ray.length == 0.0f || tIn > tOut || tOut < 0.0f || tIn > reach) return OUTSIDE;
  return tIn <= 0.0f && tOut >= reach ? INSIDE : PARTIAL;
}
