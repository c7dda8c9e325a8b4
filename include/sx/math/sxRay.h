#pragma once

#include <sx/math/sxVec3.h>
#include <sx/sxExport.h>

class sxBox;
class sxEntry;
class sxFrustum;
class sxMatrix;
class sxPlane;
class sxSphere;

// A probe from a start point along a unit direction for a length. A negative
// length makes the ray unbounded; a length of exactly 0 hits nothing.
class SX_API sxRay {
 public:
  sxRay() : start(0.0f, 0.0f, 0.0f), direction(0.0f, 1.0f, 0.0f), length(-1.0f) {}
  // The direction is normalised, the length kept as given.
  sxRay(const sxVec3& s, const sxVec3& dir, float len) : start(s), direction(dir), length(len) {
    direction.normalize();
  }
  sxRay(const sxVec3& p0, const sxVec3& p1) { makeFromPoints(p0, p1); }

  // From p0 toward p1, exactly as long as the two are apart (0 for one point).
  void makeFromPoints(const sxVec3& p0, const sxVec3& p1);

  const sxVec3& getStartPoint() const { return start; }
  const sxVec3& getDirection() const { return direction; }
  float getLength() const { return length; }
  bool isUnbounded() const { return length < 0.0f; }
  // start + length * direction; 3.4028233e36 stands in for an unbounded length.
  void getEndPoint(sxVec3& end) const;

  // Start as a point, direction as a vector. The direction is brought back
  // to unit length and a bounded length scaled with it, so the end point is
  // transformed too.
  void xform(const sxMatrix& m) { xform(*this, m); }
  void xform(const sxRay& ray, const sxMatrix& m);

  bool intersects(const sxPlane& plane) const;
  bool intersects(const sxBox& box) const;
  bool intersects(const sxSphere& sphere) const;
  bool intersects(const sxFrustum& frustum) const;
  // Against a triangle and a planar quadrilateral (seen from either side):
  // the distance along the ray to the nearest hit, with the point written to
  // hitPoint, or -1 (hitPoint untouched) for a miss.
  float intersects(const sxVec3& p0, const sxVec3& p1, const sxVec3& p2, sxVec3& hitPoint) const;
  float intersects(const sxVec3& p0, const sxVec3& p1, const sxVec3& p2, const sxVec3& p3,
                   sxVec3& hitPoint) const;

  // The range of distances along the ray that a hit may lie in: [0, length],
  // or [0, largest float] when unbounded.
  float getReach() const;

  // Start as three floats, direction as three floats, length as one float,
  // each taken as stored.
  void read(sxEntry* entry);
  void write(sxEntry* entry) const;

  bool operator==(const sxRay& r) const {
    return start == r.start && direction == r.direction && length == r.length;
  }
  bool operator!=(const sxRay& r) const { return !(*this == r); }

  sxVec3 start;
  sxVec3 direction;
  float length;
};
