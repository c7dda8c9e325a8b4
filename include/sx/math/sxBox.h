#pragma once

#include <sx/math/sxVec3.h>
#include <sx/math/sxVolume.h>
#include <sx/sxExport.h>

// An axis-aligned box; empty when max.x < min.x.
class SX_API sxBox final : public sxVolumeOf<sxBox, sxVolume::BOX> {
 public:
  sxBox() { makeEmpty(); }
  sxBox(const sxVec3& mn, const sxVec3& mx) : min(mn), max(mx) {}
  sxBox(const sxBox&) = default;
  sxBox& operator=(const sxBox&) = default;

  // The box around the eight transformed corners; an empty box stays empty.
  void xform(const sxMatrix& m) override;
  void xform(const sxBox& box, const sxMatrix& m);
  // min the largest float, max its negation.
  void makeEmpty() override;
  bool isEmpty() const override { return max.x < min.x; }

  using sxVolume::contains;
  CONTAINMENT contains(const sxVec3& point) const override;
  CONTAINMENT contains(const sxRay& ray) const override;
  CONTAINMENT contains(const sxSphere& sphere) const override;
  CONTAINMENT contains(const sxBox& box) const override;
  CONTAINMENT contains(const sxPlane& plane) const override;

  using sxVolume::extendAround;
  void extendAround(const sxVec3& point) override;
  void extendAround(const sxSphere& sphere) override;
  void extendAround(const sxBox& box) override;

  void getCenter(sxVec3& c) const override { c.combine(0.5f, min, 0.5f, max); }
  // Min as three floats, then max as three floats.
  void read(sxEntry* entry) override;
  void write(sxEntry* entry) const override;

  const sxVec3& getMin() const { return min; }
  const sxVec3& getMax() const { return max; }
  virtual void setMin(const sxVec3& v) { min = v; }
  virtual void setMax(const sxVec3& v) { max = v; }
  // A set octant bit takes the min coordinate (4: x, 2: y, 1: z), so octant
  // 0 is the max corner and 7 the min corner. Octants of 8 or more leave
  // corner untouched.
  void getCorner(sxVec3::OCTANT octant, sxVec3& corner) const {
    if (static_cast<unsigned>(octant) <= 7u) corner = cornerOf(octant);
  }
  // The same from the three low bits alone. Picked by index rather than by
  // branches: culling asks for a different corner plane after plane.
  sxVec3 cornerOf(int bits) const {
    const sxVec3* ends[2] = {&max, &min};
    return sxVec3(ends[bits >> 2 & 1]->x, ends[bits >> 1 & 1]->y, ends[bits & 1]->z);
  }

  sxVec3 min;
  sxVec3 max;
};
