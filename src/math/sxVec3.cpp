#include <sx/math/sxVec3.h>

#include <algorithm>
#include <cmath>

#include <sx/math/sxMatrix.h>

#include "math/sxApprox.h"

namespace {
constexpr float degPerRad = 57.29578f;
}

float sxVec3::normalize() {
  const float q = sqrLength();
  if (std::fabs(q - 1.0f) < 1e-6f) return 1.0f;
  if (q < 1e-12f) {
    set(0.0f, 0.0f, 0.0f);
    return 0.0f;
  }
  const float len = sxSqrt(q);
  set(x / len, y / len, z / len);
  return len;
}

void sxVec3::lerp(float t, const sxVec3& a, const sxVec3& b) {
  set(a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t, a.z + (b.z - a.z) * t);
}

void sxVec3::cross(const sxVec3& a, const sxVec3& b) {
  set(a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x);
}

float sxVec3::angleBetween(const sxVec3& v) const {
  const float c = std::clamp(dot(v) / (v.length() * length()), -1.0f, 1.0f);
  return std::acos(c) * degPerRad;
}

void sxVec3::makeNormal(const sxVec3& p0, const sxVec3& p1, const sxVec3& p2) {
  cross(p0 - p1, p2 - p1);
  negate(*this);
  normalize();
}

float sxVec3::approxDist(const sxVec3& v) const {
  return sxiApproxLength(x - v.x, y - v.y, z - v.z);
}

float sxVec3::approxLength() const {
  return sxiApproxLength(x, y, z);
}

void sxVec3::xformVec(const sxVec3& v, const sxMatrix& m) {
  set(m[0][0] * v.x + m[1][0] * v.y + m[2][0] * v.z, m[0][1] * v.x + m[1][1] * v.y + m[2][1] * v.z,
      m[0][2] * v.x + m[1][2] * v.y + m[2][2] * v.z);
}

void sxVec3::xformPt(const sxVec3& p, const sxMatrix& m) {
  xformVec(p, m);
  add(sxVec3(m[3][0], m[3][1], m[3][2]));
}

void sxVec3::fullXformPt(const sxVec3& p, const sxMatrix& m) {
  float w = m[0][3] * p.x + m[1][3] * p.y + m[2][3] * p.z + m[3][3];
  xformPt(p, m);
  if (w == 1.0f) return;
  // A tiny w loses its sign on purpose: the point is pushed far away rather
  // than mirrored.
  if (std::fabs(w) < 1e-6f) w = 1e-6f;
  scale(1.0f / w);
}

sxVec3 sxVec3::operator*(const sxMatrix& m) const {
  sxVec3 r;
  r.xformPt(*this, m);
  return r;
}

void sxVec3::getHP(float& heading, float& pitch) const {
  sxVec3 d = *this;
  d.normalize();
  const float a = std::atan2(d.y, d.x) * degPerRad;
  heading = d.y >= 0.0f ? a - 90.0f : 270.0f + a;
  pitch = std::asin(std::clamp(d.z, -1.0f, 1.0f)) * degPerRad;
}

void sxVec3::setHP(float heading, float pitch) {
  // Stepping by 360 would never end for huge or infinite pitches.
  if (!(std::fabs(pitch) < 1e6f)) pitch = std::fmod(pitch, 360.0f);
  while (pitch > 270.0f) pitch -= 360.0f;
  while (pitch < -90.0f) pitch += 360.0f;
  float s, c;
  sxGetSinCos(heading, s, c);
  if (std::fabs(pitch) < 89.99999f) {
    set(-s, c, std::tan(pitch * 0.017453292f) * std::sqrt(s * s + c * c));
  } else if (std::fabs(pitch) <= 90.00001f) {
    set(0.0f, 0.0f, pitch >= 0.0f ? 1.0f : -1.0f);
  } else {
    set(s, -c, -std::tan(pitch * 0.017453292f) * std::sqrt(s * s + c * c));
  }
  normalize();
}

void sxVec3::setH(float heading) {
  float s, c;
  sxGetSinCos(heading, s, c);
  set(-s, c, 0.0f);
  normalize();
}
