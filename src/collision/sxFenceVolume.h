#pragma once

#include <cmath>

#include <sx/math/sxBox.h>
#include <sx/math/sxMatrix.h>
#include <sx/math/sxSphere.h>

// What the sphere and box fences share: their volume made safe, and grown
// into the volume of a fence pass.

// A sphere or box that is not one (a value that is not finite, a negative
// radius, a minimum above the maximum) becomes empty: hostile files and
// careless callers end up with a fence that bounds nothing.
inline bool sxiFinite(const sxVec3& v) {
  return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

inline void sxiMakeSafe(sxSphere& s) {
  const float r = s.getRadius();
  if (s.isEmpty()) return;
  if (!sxiFinite(s.getCenter()) || !std::isfinite(r) || r < 0.0f) s.makeEmpty();
}

inline void sxiMakeSafe(sxBox& b) {
  const sxVec3& lo = b.getMin();
  const sxVec3& hi = b.getMax();
  if (!sxiFinite(lo) || !sxiFinite(hi) || lo.x > hi.x || lo.y > hi.y || lo.z > hi.z) b.makeEmpty();
}

// Grows outer by v placed by top (not moved when top is the identity).
template <class V>
void sxiGrowBy(sxVolume& outer, const V& v, const sxMatrix& top) {
  if (v.isEmpty()) return;
  if (top.getType() == sxMatrix::IDENTITY) {
    outer.extendAround(v);
    return;
  }
  V placed(v);
  placed.xform(top);
  outer.extendAround(placed);
}

// The source of a fence bounded by one volume, the member field, set by
// Setter: the class record, the setter (made safe, bounds above marked),
// growing the pass volume, and the record (the fence's, then the volume).
#define SX_DEFINE_VOLUME_FENCE(Class, Volume, field, Setter)           \
  SX_DEFINE_CLASS(Class, sxGroupType)                                  \
  void Class::Setter(const Volume& v) {                                \
    field = v;                                                         \
    sxiMakeSafe(field);                                                \
    dirtyUp(TRAV_FLAG_FENCES);                                         \
  }                                                                    \
  void Class::growVolume(sxVolume& outer, const sxMatrix& top) const { \
    sxiGrowBy(outer, field, top);                                      \
  }                                                                    \
  sxEntry* Class::write(sxFile* file, sxEntry* entry) const {          \
    sxEntry* created = sxFence::write(file, entry);                    \
    sxEntry* e = entry ? entry : created;                              \
    if (e) field.write(e);                                             \
    return created;                                                    \
  }                                                                    \
  sxEntry* Class::read(sxFile* file, sxEntry* entry) {                 \
    sxEntry* e = sxFence::read(file, entry);                           \
    if (!e) return nullptr;                                            \
    field.read(e);                                                     \
    sxiMakeSafe(field);                                                \
    return e;                                                          \
  }
