#pragma once

#include <sx/math/sxVec3.h>
#include <sx/math/sxVolume.h>
#include <sx/sxExport.h>

// A half space: the points p with normal . p <= offset. The normal is kept at
// unit length, with its octant, which picks the box corners nearest to and
// farthest from the half space.
class SX_API sxPlane final : public sxVolumeOf<sxPlane, sxVolume::PLANE> {
 public:
  sxPlane() : normal(0.0f, 0.0f, 1.0f), offset(0.0f), octant(sxVec3::OCTANT_PPP) {}
  sxPlane(const sxVec3& n, float d) { make(n, d); }
  sxPlane(const sxVec3& p0, const sxVec3& p1, const sxVec3& p2) { make(p0, p1, p2); }
  sxPlane(const sxPlane&) = default;
  sxPlane& operator=(const sxPlane&) = default;

  // The normal is normalised, the offset kept as given.
  void make(const sxVec3& n, float d);
  // Through point, facing along n.
  void make(const sxVec3& point, const sxVec3& n);
  // Through the three points, facing the side from which they run
  // counter-clockwise.
  void make(const sxVec3& p0, const sxVec3& p1, const sxVec3& p2);
  void make(const sxVec3* three) { make(three[0], three[1], three[2]); }

  void xform(const sxMatrix& m) override { xform(*this, m); }
  void xform(const sxPlane& plane, const sxMatrix& m);
  // A half space cannot be emptied.
  void makeEmpty() override {}
  bool isEmpty() const override { return false; }

  using sxVolume::contains;
  CONTAINMENT contains(const sxVec3& point) const override {
    return normal.dot(point) <= offset ? INSIDE : OUTSIDE;
  }
  CONTAINMENT contains(const sxRay& ray) const override;
  CONTAINMENT contains(const sxSphere& sphere) const override;
  CONTAINMENT contains(const sxBox& box) const override;
  CONTAINMENT contains(const sxPlane& plane) const override;

  using sxVolume::extendAround;
  // Moves the boundary out just far enough to take in the point.
  void extendAround(const sxVec3& point) override;
  void extendAround(const sxRay&) override {}
  void extendAround(const sxFrustum&) override {}
  void extendAround(const sxSphere&) override {}
  void extendAround(const sxBox&) override {}

  // -(normal . p + offset): the offset is added, not subtracted, so this is
  // the signed distance to the back side only for planes through the origin.
  // Kept as the library always defined it.
  float pointDistance(const sxVec3& p) const { return -(normal.dot(p) + offset); }

  // Normal as three floats, offset as one float, octant as one int, each
  // taken as stored.
  void read(sxEntry* entry) override;
  void write(sxEntry* entry) const override;

  float getOffset() const { return offset; }
  const sxVec3& getNormal() const { return normal; }
  // The normal is normalised; the offset is kept.
  void setNormal(const sxVec3& n);
  void setNormal(float x, float y, float z) { setNormal(sxVec3(x, y, z)); }
  sxVec3::OCTANT getNegOctant() const { return octant; }
  // 0 to 2 the normal, 3 (or any other index) the offset.
  float operator[](int i) const { return static_cast<unsigned>(i) < 3u ? normal[i] : offset; }

  sxVec3 normal;
  float offset;
  sxVec3::OCTANT octant;
};
