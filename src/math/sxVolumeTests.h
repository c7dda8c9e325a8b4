#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

#include <sx/math/sxBox.h>
#include <sx/math/sxPlane.h>
#include <sx/math/sxRay.h>
#include <sx/math/sxSphere.h>

// The classifications that several kinds share, inline so that frustum
// culling runs them without calls.

// A sphere against a half space. Touching the plane from outside counts as
// sharing a point.
inline sxVolume::CONTAINMENT sxiSide(const sxPlane& p, const sxSphere& s) {
  const float d = p.normal.dot(s.center) - p.offset;
  if (d > s.radius) return sxVolume::OUTSIDE;
  return d + s.radius <= 0.0f ? sxVolume::INSIDE : sxVolume::PARTIAL;
}

// A box against a half space, by the corner in the normal's octant (the one
// farthest out) and the corner in the opposite octant (the one deepest in).
inline sxVolume::CONTAINMENT sxiSide(const sxPlane& p, const sxBox& b) {
  if (p.normal.dot(b.cornerOf(7 - p.octant)) > p.offset) return sxVolume::OUTSIDE;
  return p.normal.dot(b.cornerOf(p.octant)) <= p.offset ? sxVolume::INSIDE : sxVolume::PARTIAL;
}

// A sphere inside a sphere: strictly within the radius difference.
inline sxVolume::CONTAINMENT sxiSide(const sxSphere& outer, const sxSphere& s) {
  const float d2 = outer.center.sqrDistance(s.center);
  const float inner = outer.radius - s.radius;
  if (outer.radius >= s.radius && d2 < inner * inner) return sxVolume::INSIDE;
  const float reach = outer.radius + s.radius;
  return d2 <= reach * reach ? sxVolume::PARTIAL : sxVolume::OUTSIDE;
}

// Squared distances from a point to the nearest and the farthest point of a
// box.
inline float sxiNearSqr(const sxBox& b, const sxVec3& p) {
  float sum = 0.0f;
  for (int i = 0; i < 3; ++i) {
    const float d = std::max(std::max(b.min[i] - p[i], p[i] - b.max[i]), 0.0f);
    sum += d * d;
  }
  return sum;
}

inline float sxiFarSqr(const sxBox& b, const sxVec3& p) {
  float sum = 0.0f;
  for (int i = 0; i < 3; ++i) {
    const float d = std::max(p[i] - b.min[i], b.max[i] - p[i]);
    sum += d * d;
  }
  return sum;
}

// The outside answers of the two tests above alone, for culling's first
// step, which needs no more.
inline bool sxiMisses(const sxSphere& outer, const sxSphere& s) {
  const float reach = outer.radius + s.radius;
  return outer.center.sqrDistance(s.center) > reach * reach;
}
inline bool sxiMisses(const sxSphere& s, const sxBox& b) {
  return sxiNearSqr(b, s.center) > s.radius * s.radius;
}

// A box inside a sphere: every corner within the radius.
inline sxVolume::CONTAINMENT sxiSide(const sxSphere& s, const sxBox& b) {
  if (sxiMisses(s, b)) return sxVolume::OUTSIDE;
  return sxiFarSqr(b, s.center) <= s.radius * s.radius ? sxVolume::INSIDE : sxVolume::PARTIAL;
}

// Clips the line start + t * dir to the half space n . p <= offset,
// narrowing [tIn, tOut]. A line parallel to the plane is kept or dropped
// whole.
inline void sxiClip(const sxVec3& n, float offset, const sxRay& ray, float& tIn, float& tOut) {
  const float towards = n.dot(ray.direction);
  const float room = offset - n.dot(ray.start);
  if (std::fabs(towards) < 1e-12f) {
    if (room < 0.0f) tIn = std::numeric_limits<float>::infinity();
    return;
  }
  const float t = room / towards;
  if (towards > 0.0f) {
    tOut = std::min(tOut, t);
  } else {
    tIn = std::max(tIn, t);
  }
}

// The whole line, before clipping.
struct sxiLineRange {
  float tIn = -std::numeric_limits<float>::infinity();
  float tOut = std::numeric_limits<float>::infinity();
};
