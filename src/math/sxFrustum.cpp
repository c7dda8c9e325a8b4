#include <sx/math/sxFrustum.h>

#include <cmath>

#include <sx/math/sxMatrix.h>

#include "math/sxConvex.h"

namespace {

// Culling must never drop a visible volume, whatever the square-root method:
// a face normal a little too long would overstate the distance of a sphere.
// So the planes of a frustum are made with exactly unit normals (which the
// plane's own normalisation then leaves as they are).
sxVec3 unit(const sxVec3& v) {
  const float len = std::sqrt(v.sqrLength());
  return len > 0.0f ? v / len : v;
}

}  // namespace

bool sxFrustum::makePersp(float l, float r, float b, float t, float n, float f) {
  return make(l, r, b, t, n, f, false);
}

bool sxFrustum::makeOrtho(float l, float r, float b, float t, float n, float f) {
  return make(l, r, b, t, n, f, true);
}

bool sxFrustum::makeFOV(float hFov, float vFov, float n, float f) {
  if (!(hFov > 0.0f && hFov < 180.0f && vFov > 0.0f && vFov < 180.0f)) {
    makeEmpty();
    return false;
  }
  const float halfWidth = n * std::tan(hFov * 0.5f * 0.017453292f);
  const float halfHeight = n * std::tan(vFov * 0.5f * 0.017453292f);
  return makePersp(-halfWidth, halfWidth, -halfHeight, halfHeight, n, f);
}

bool sxFrustum::make(float l, float r, float b, float t, float n, float f, bool isOrtho) {
  // Written so that NaN fails as well.
  if (!(l < r && b < t && n < f && (isOrtho || n > 0.0f) && std::isfinite(l) && std::isfinite(r) &&
        std::isfinite(b) && std::isfinite(t) && std::isfinite(n) && std::isfinite(f))) {
    makeEmpty();
    return false;
  }
  left = l, right = r, bottom = b, top = t, nearDist = n, farDist = f;
  ortho = isOrtho;
  empty = false;
  // The far window is the near one carried out along the rays of the eye.
  const float spread = isOrtho ? 1.0f : f / n;
  for (int i = 0; i < numCorners; ++i) {
    const float k = i & 4 ? spread : 1.0f;
    corners[i].set((i & 1 ? r : l) * k, i & 4 ? f : n, (i & 2 ? t : b) * k);
  }
  fromCorners();
  return true;
}

void sxFrustum::makeEmpty() {
  left = right = bottom = top = nearDist = farDist = 0.0f;
  ortho = false;
  empty = true;
  for (sxVec3& c : corners) c.set(0.0f, 0.0f, 0.0f);
  for (sxPlane& p : faces) p = sxPlane();
  for (sxPlane& p : edges) p = sxPlane();
  bound.makeEmpty();
}

void sxFrustum::fromCorners() {
  sxVec3 centroid(0.0f, 0.0f, 0.0f);
  for (const sxVec3& c : corners) centroid.addScaled(1.0f / numCorners, c);
  for (int i = 0; i < 6; ++i) {
    const int* q = sxiFrustumFaceCorners[i];
    // The cross product of the diagonals stays well defined where a face
    // narrows to a sliver; the face's mid point fixes the offset.
    sxVec3 n, mid(0.0f, 0.0f, 0.0f);
    n.cross(corners[q[2]] - corners[q[0]], corners[q[3]] - corners[q[1]]);
    for (int k = 0; k < 4; ++k) mid.addScaled(0.25f, corners[q[k]]);
    faces[i].make(mid, unit(n));
    // Face out, whatever the handedness of the transform.
    if (faces[i].contains(centroid) == OUTSIDE) faces[i].make(-faces[i].normal, -faces[i].offset);
  }
  calcEdgePlanes();
  bound = sxSphere(centroid, 0.0f);
  float far2 = 0.0f;
  for (const sxVec3& c : corners) far2 = std::fmax(far2, centroid.sqrDistance(c));
  // The root must not fall short, or the sphere would cut off corners: a
  // table root that does is replaced by the quotient, which then lies above
  // the exact root. A hair more covers the rounding.
  float radius = sxSqrt(far2);
  if (radius * radius < far2) radius = far2 / radius;
  bound.setRadius(radius * 1.000001f);
}

// An edge plane leans halfway between the two faces that meet at its edge:
// it holds the whole frustum and cuts off the region beyond the edge where
// each face alone would answer partial.
void sxFrustum::calcEdgePlanes() {
  for (int e = 0; e < numEdges; ++e) {
    const sxPlane& a = faces[sxiFrustumEdgeFaces[e][0]];
    const sxPlane& b = faces[sxiFrustumEdgeFaces[e][1]];
    sxVec3 n = a.normal + b.normal;
    if (n.sqrLength() < 1e-12f) n = a.normal;
    edges[e].make(corners[sxiFrustumEdgeCorners[e][0]], unit(n));
  }
}

void sxFrustum::xform(const sxFrustum& f, const sxMatrix& m) {
  if (&f != this) *this = f;
  if (empty) return;
  const unsigned int type = m.getType();
  const bool projective = type == sxMatrix::UNKNOWN || (type & sxMatrix::PROJECTIVE);
  for (sxVec3& c : corners) {
    if (projective) {
      c.fullXformPt(c, m);
    } else {
      c.xformPt(c, m);
    }
  }
  fromCorners();
}

void sxFrustum::getCorners(sxVec3 out[numCorners]) const {
  for (int i = 0; i < numCorners; ++i) out[i] = corners[i];
}

void sxFrustum::getNearPlaneCoords(float& l, float& r, float& b, float& t) const {
  l = left, r = right, b = bottom, t = top;
}

bool sxFrustum::isSymmetrical() const {
  return std::fabs(left + right) < 1e-6f && std::fabs(bottom + top) < 1e-6f;
}
