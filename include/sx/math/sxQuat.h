#pragma once

#include <sx/sxExport.h>

class sxMatrix;
class sxVec3;

// A rotation quaternion (x, y, z) sin(a/2), w cos(a/2). Products follow the
// matrices' order: the matrix of mult(a, b) is the matrix of a times the
// matrix of b, so a is applied first.
class SX_API sxQuat {
 public:
  sxQuat() = default;  // components unset
  sxQuat(float x, float y, float z, float w) : x(x), y(y), z(z), w(w) {}

  void set(float nx, float ny, float nz, float nw) { x = nx, y = ny, z = nz, w = nw; }
  // From the rotation part of m, which must be free of scale.
  void setMatrix(const sxMatrix& m);
  // The rotation matrix (type ROTATION, or IDENTITY for the unit quaternion).
  void getMatrix(sxMatrix& m) const;
  // Heading, pitch and roll in x, y, z, degrees.
  void setHPR(const sxVec3& hpr);
  void getHPR(sxVec3& hpr) const;

  // Spherical interpolation along the shorter arc; not renormalised.
  void slerp(float t, const sxQuat& a, const sxQuat& b);
  // a + (b - a) * t per component; not renormalised.
  void lerp(float t, const sxQuat& a, const sxQuat& b);
  void mult(const sxQuat& a, const sxQuat& b);
  sxQuat& operator*=(const sxQuat& q) { return mult(*this, q), *this; }
  sxQuat operator*(const sxQuat& q) const {
    sxQuat r;
    r.mult(*this, q);
    return r;
  }
  sxQuat& operator*=(float s) { return x *= s, y *= s, z *= s, w *= s, *this; }
  void conjugate(const sxQuat& q) { set(-q.x, -q.y, -q.z, q.w); }
  // The conjugate over the squared norm; a zero quaternion stays zero.
  void invert(const sxQuat& q);
  float dot(const sxQuat& q) const { return x * q.x + y * q.y + z * q.z + w * q.w; }

  float x, y, z, w;
};
