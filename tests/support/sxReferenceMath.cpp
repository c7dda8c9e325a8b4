#include <sx/sxCore.h>

#include <cmath>
#include <concepts>
#include <string>
#include <type_traits>

#include "support/sxReferenceCheck.h"
#include "support/sxReferenceMath.h"
#include "support/sxReferenceScene.h"

// One value of each mathematical type in one entry, each written by its own
// write and read back by its own read. Every value but the frustum's is
// given here bit for bit, so the reader compares exactly; the frustum is
// computed, and machines may round its arithmetic differently, so the
// reader compares it with its own within a tolerance (a number read in the
// wrong byte order is far off).
namespace sxReference {

namespace {

using namespace math;

constexpr const char* mathTag = "sxMathValues";

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

}  // namespace

bool writeMathFile(const char* path) {
  sxFile file;
  if (!file.create(path)) return false;
  sxEntry* e = file.newEntry(file.newTag(mathTag));
  eachMathValue([e](const auto& value, const char*) { value.write(e); });
  return file.write();
}

int checkMathFile(const char* path, bool& swapped, std::string& out) {
  Report r(out);
  sxFile file;
  if (!openReference(file, path, swapped, r)) return r.failures;
  sxEntry* e = loadReference(file, mathTag, r);
  if (!e) return r.failures;
  eachMathValue([e, &r](const auto& expected, const char* name) {
    std::remove_cvref_t<decltype(expected)> value;
    value.read(e);
    r.check(same(value, expected), name);
  });
  r.check(e->getCursor() == e->getDataSize(), "math entry not read to its end");
  return r.failures;
}

}  // namespace sxReference
