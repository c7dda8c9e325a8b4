#include <sx/sxCore.h>

#include <cmath>
#include <concepts>
#include <string>
#include <type_traits>

#include "support/sxReferenceCheck.h"
#include "support/sxReferenceScene.h"

// One value of each mathematical type in one entry, each written by its own
// write and read back by its own read. Every value but the frustum's is
// given here bit for bit, so the reader compares exactly; the frustum is
// computed, and machines may round its arithmetic differently, so the
// reader compares it with its own within a tolerance (a number read in the
// wrong byte order is far off).
namespace sxReference {

namespace {

constexpr const char* mathTag = "sxMathValues";

const sxVec2 vec2(1.25f, -2.5f);
const sxVec3 vec3(3.5f, -4.75f, 1.0e10f);
const sxVec4 vec4(0.1f, -0.2f, 0.3f, 1.0e-30f);
const sxUByteVec3 colour3(0x01, 0x02, 0x03);
const sxUByteVec4 colour4(0xA0, 0xB1, 0xC2, 0xD3);

// Values that no identification would give the stored type for.
sxMatrix matrix() {
  float v[16];
  for (int i = 0; i < 16; ++i) v[i] = float(i) * 1.5f - 7.25f;
  return sxMatrix(v, sxMatrix::ROTATION | sxMatrix::TRANSLATION);
}

// Fields set directly: making a plane would normalise through sxSqrt.
sxPlane plane() {
  sxPlane p;
  p.normal.set(0.0f, -0.6f, 0.8f);
  p.offset = 2.5f;
  p.octant = sxVec3::OCTANT_PNP;
  return p;
}

sxRay ray() {
  sxRay r;
  r.start.set(1.0f, 2.0f, 3.0f);
  r.direction.set(0.0f, 0.6f, -0.8f);
  r.length = 7.5f;
  return r;
}

const sxSphere sphere(sxVec3(1.0f, -2.0f, 3.0f), 4.5f);
const sxBox box(sxVec3(-1.0f, -2.0f, -3.0f), sxVec3(4.0f, 5.0f, 6.0f));

sxFrustum frustum() {
  sxFrustum f;
  f.makePersp(-1.0f, 1.5f, -0.5f, 0.75f, 0.5f, 200.0f);
  return f;
}

template <class V>
void fillTable(sxInterpTable<V>& t, const V& a, const V& b) {
  t.add(0.5f, b);
  t.add(-1.5f, a);
}

struct Tables {
  sxFloatInterpTable floats;
  sxVec3InterpTable vec3s;
  sxVec4InterpTable vec4s;
  sxQuatInterpTable quats;
};

void fillTables(Tables& t) {
  fillTable(t.floats, 10.0f, -20.5f);
  fillTable(t.vec3s, vec3, sxVec3(-1.0f, 0.5f, 2.0f));
  fillTable(t.vec4s, vec4, sxVec4(4.0f, 3.0f, 2.0f, 1.0f));
  fillTable(t.quats, sxQuat(0.0f, 0.0f, 0.0f, 1.0f), sxQuat(0.5f, -0.5f, 0.5f, 0.5f));
}

template <class V>
requires std::equality_comparable<V>
bool same(const V& a, const V& b) {
  return a == b;
}
bool same(const sxQuat& a, const sxQuat& b) {
  return a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w;
}
bool same(const sxMatrix& a, const sxMatrix& b) {
  return a == b && a.getType() == b.getType();
}
bool same(const sxBox& a, const sxBox& b) {
  return a.getMin() == b.getMin() && a.getMax() == b.getMax();
}
bool same(const sxPlane& a, const sxPlane& b) {
  return a.normal == b.normal && a.offset == b.offset && a.octant == b.octant;
}
template <class V>
bool same(const sxInterpTable<V>& a, const sxInterpTable<V>& b) {
  if (a.getNum() != b.getNum()) return false;
  for (int i = 0; i < a.getNum(); ++i)
    if (a.getParam(i) != b.getParam(i) || !same(a.getValue(i), b.getValue(i))) return false;
  return true;
}

bool near(float a, float b) {
  return std::fabs(a - b) <= 1e-4f * std::fmax(1.0f, std::fabs(b));
}
bool near(const sxVec3& a, const sxVec3& b) {
  return near(a.x, b.x) && near(a.y, b.y) && near(a.z, b.z);
}
bool near(const sxPlane& a, const sxPlane& b) {
  return near(a.normal, b.normal) && near(a.offset, b.offset) && a.octant == b.octant;
}
bool same(const sxFrustum& a, const sxFrustum& b) {
  bool ok = a.isEmpty() == b.isEmpty() && a.isOrtho() == b.isOrtho() &&
            near(a.getNear(), b.getNear()) && near(a.getFar(), b.getFar());
  for (int i = 0; i < 6; ++i) ok = ok && near(a.getPlane(i), b.getPlane(i));
  for (int i = 0; i < sxFrustum::numEdges; ++i)
    ok = ok && near(a.getEdgePlane(i), b.getEdgePlane(i));
  for (int i = 0; i < sxFrustum::numCorners; ++i) ok = ok && near(a.getCorner(i), b.getCorner(i));
  const sxSphere& sa = a.getBoundingSphere();
  const sxSphere& sb = b.getBoundingSphere();
  return ok && near(sa.center, sb.center) && near(sa.radius, sb.radius);
}

// Calls f(value, name) for each reference value in the order of the file.
template <class F>
void eachValue(F&& f) {
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
  Tables t;
  fillTables(t);
  f(t.floats, "sxFloatInterpTable");
  f(t.vec3s, "sxVec3InterpTable");
  f(t.vec4s, "sxVec4InterpTable");
  f(t.quats, "sxQuatInterpTable");
}

}  // namespace

bool writeMathFile(const char* path) {
  sxFile file;
  if (!file.create(path)) return false;
  sxEntry* e = file.newEntry(file.newTag(mathTag));
  eachValue([e](const auto& value, const char*) { value.write(e); });
  return file.write();
}

int checkMathFile(const char* path, bool& swapped, std::string& out) {
  Report r(out);
  sxFile file;
  if (!openReference(file, path, swapped, r)) return r.failures;
  sxEntry* e = loadReference(file, mathTag, r);
  if (!e) return r.failures;
  eachValue([e, &r](const auto& expected, const char* name) {
    std::remove_cvref_t<decltype(expected)> value;
    value.read(e);
    r.check(same(value, expected), name);
  });
  r.check(e->getCursor() == e->getDataSize(), "math entry not read to its end");
  return r.failures;
}

}  // namespace sxReference
