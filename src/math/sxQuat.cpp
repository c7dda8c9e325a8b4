#include <sx/math/sxQuat.h>

#include <cmath>

#include <sx/math/sxMatrix.h>

// The matrix is the transpose of the usual column-vector rotation matrix,
// because our vectors are rows.
void sxQuat::getMatrix(sxMatrix& m) const {
  const float n = dot(*this);
  const float s = n > 0.0f ? 2.0f / n : 0.0f;
  const float xx = s * x * x, yy = s * y * y, zz = s * z * z;
  const float xy = s * x * y, xz = s * x * z, yz = s * y * z;
  const float wx = s * w * x, wy = s * w * y, wz = s * w * z;
  const float rows[16] = {1.0f - yy - zz, xy + wz,        xz - wy,        0.0f,  //
                          xy - wz,        1.0f - xx - zz, yz + wx,        0.0f,  //
                          xz + wy,        yz - wx,        1.0f - xx - yy, 0.0f,  //
                          0.0f,           0.0f,           0.0f,           1.0f};
  const bool identity = x == 0.0f && y == 0.0f && z == 0.0f;
  m.set(rows, identity ? sxMatrix::IDENTITY : sxMatrix::ROTATION);
}

void sxQuat::setMatrix(const sxMatrix& m) {
  // Shepperd's method: start from the largest of the four squared
  // components so that the division is well conditioned.
  const float trace = m[0][0] + m[1][1] + m[2][2];
  if (trace > 0.0f) {
    const float s = 0.5f / std::sqrt(trace + 1.0f);
    set((m[1][2] - m[2][1]) * s, (m[2][0] - m[0][2]) * s, (m[0][1] - m[1][0]) * s, 0.25f / s);
  } else if (m[0][0] >= m[1][1] && m[0][0] >= m[2][2]) {
    const float s = 2.0f * std::sqrt(1.0f + m[0][0] - m[1][1] - m[2][2]);
    set(0.25f * s, (m[1][0] + m[0][1]) / s, (m[2][0] + m[0][2]) / s, (m[1][2] - m[2][1]) / s);
  } else if (m[1][1] >= m[2][2]) {
    const float s = 2.0f * std::sqrt(1.0f + m[1][1] - m[0][0] - m[2][2]);
    set((m[1][0] + m[0][1]) / s, 0.25f * s, (m[2][1] + m[1][2]) / s, (m[2][0] - m[0][2]) / s);
  } else {
    const float s = 2.0f * std::sqrt(1.0f + m[2][2] - m[0][0] - m[1][1]);
    set((m[2][0] + m[0][2]) / s, (m[2][1] + m[1][2]) / s, 0.25f * s, (m[0][1] - m[1][0]) / s);
  }
}

void sxQuat::setHPR(const sxVec3& hpr) {
  sxMatrix m;
  m.makeHPR(hpr);
  setMatrix(m);
}

void sxQuat::getHPR(sxVec3& hpr) const {
  sxMatrix m;
  getMatrix(m);
  m.getHPR(hpr);
}

void sxQuat::slerp(float t, const sxQuat& a, const sxQuat& b) {
  sxQuat to = b;
  float c = a.dot(b);
  if (c < 0.0f) {
    c = -c;
    to.set(-b.x, -b.y, -b.z, -b.w);
  }
  float wa, wb;
  if (c + 1.0f <= 1e-6f) {
    // Only reachable with a non-number; blend toward the perpendicular.
    to.set(-to.y, to.x, -to.w, to.z);
    wa = std::sin((1.0f - t) * 1.5707964f);
    wb = std::sin(t * 1.5707964f);
  } else if (1.0f - c > 1e-6f) {
    const float theta = std::acos(c);
    const float s = std::sin(theta);
    wa = std::sin((1.0f - t) * theta) / s;
    wb = std::sin(t * theta) / s;
  } else {
    wa = 1.0f - t;
    wb = t;
  }
  set(wa * a.x + wb * to.x, wa * a.y + wb * to.y, wa * a.z + wb * to.z, wa * a.w + wb * to.w);
}

void sxQuat::lerp(float t, const sxQuat& a, const sxQuat& b) {
  set(a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t, a.z + (b.z - a.z) * t, a.w + (b.w - a.w) * t);
}

// Hamilton product b * a: rotating by a and then by b.
void sxQuat::mult(const sxQuat& a, const sxQuat& b) {
  set(b.w * a.x + b.x * a.w + b.y * a.z - b.z * a.y, b.w * a.y - b.x * a.z + b.y * a.w + b.z * a.x,
      b.w * a.z + b.x * a.y - b.y * a.x + b.z * a.w, b.w * a.w - b.x * a.x - b.y * a.y - b.z * a.z);
}

void sxQuat::invert(const sxQuat& q) {
  const float n = q.dot(q);
  const float s = n > 0.0f ? 1.0f / n : 0.0f;
  set(-q.x * s, -q.y * s, -q.z * s, q.w * s);
}
