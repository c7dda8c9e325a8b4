#pragma once

#include <sx/sxCore.h>

// The values of the reference math file: one of each mathematical type,
// every one bit for bit but the frustum, which is computed.
namespace sxReference {

namespace math {

inline const sxVec2 vec2(1.25f, -2.5f);
inline const sxVec3 vec3(3.5f, -4.75f, 1.0e10f);
inline const sxVec4 vec4(0.1f, -0.2f, 0.3f, 1.0e-30f);
inline const sxUByteVec3 colour3(0x01, 0x02, 0x03);
inline const sxUByteVec4 colour4(0xA0, 0xB1, 0xC2, 0xD3);

// Values that no identification would give the stored type for.
inline sxMatrix matrix() {
  float v[16];
  for (int i = 0; i < 16; ++i) v[i] = float(i) * 1.5f - 7.25f;
  return sxMatrix(v, sxMatrix::ROTATION | sxMatrix::TRANSLATION);
}

// Fields set directly: making a plane would normalise through sxSqrt.
inline sxPlane plane() {
  sxPlane p;
  p.normal.set(0.0f, -0.6f, 0.8f);
  p.offset = 2.5f;
  p.octant = sxVec3::OCTANT_PNP;
  return p;
}

inline sxRay ray() {
  sxRay r;
  r.start.set(1.0f, 2.0f, 3.0f);
  r.direction.set(0.0f, 0.6f, -0.8f);
  r.length = 7.5f;
  return r;
}

inline const sxSphere sphere(sxVec3(1.0f, -2.0f, 3.0f), 4.5f);
inline const sxBox box(sxVec3(-1.0f, -2.0f, -3.0f), sxVec3(4.0f, 5.0f, 6.0f));

inline sxFrustum frustum() {
  sxFrustum f;
  f.makePersp(-1.0f, 1.5f, -0.5f, 0.75f, 0.5f, 200.0f);
  return f;
}

// A table of two keys, added out of order.
template <class T, class V>
T table(const V& a, const V& b) {
  T t;
  t.add(0.5f, b);
  t.add(-1.5f, a);
  return t;
}

}  // namespace math

// Calls f(value, name) for each reference value in the order of the file.
template <class F>
void eachMathValue(F&& f) {
  using namespace math;
  // Byte colours between the numbers, so that alignment comes into play.
  f(colour3, "sxUByteVec3");
  f(vec2, "sxVec2");
  f(colour4, "sxUByteVec4");
  f(vec3, "sxVec3");
  f(vec4, "sxVec4");
  f(matrix(), "sxMatrix");
  f(sphere, "sxSphere");
  f(box, "sxBox");
  f(plane(), "sxPlane");
  f(ray(), "sxRay");
  f(frustum(), "sxFrustum");
  f(table<sxFloatInterpTable>(10.0f, -20.5f), "sxFloatInterpTable");
  f(table<sxVec3InterpTable>(vec3, sxVec3(-1.0f, 0.5f, 2.0f)), "sxVec3InterpTable");
  f(table<sxVec4InterpTable>(vec4, sxVec4(4.0f, 3.0f, 2.0f, 1.0f)), "sxVec4InterpTable");
  f(table<sxQuatInterpTable>(sxQuat(0.0f, 0.0f, 0.0f, 1.0f), sxQuat(0.5f, -0.5f, 0.5f, 0.5f)),
    "sxQuatInterpTable");
}

}  // namespace sxReference
