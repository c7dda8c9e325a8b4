#pragma once

#include <type_traits>

#include <sx/math/sxVecOps.h>
#include <sx/sxExport.h>

class sxMatrix;

// Three floats: a point or a direction. Z is up; heading turns about Z and
// heading 0 looks along +Y. Angles are in degrees.
class SX_API sxVec3 : public sxFloatVec<sxVec3, 3> {
 public:
  // Sign pattern of (x, y, z): 4 * (x < 0) + 2 * (y < 0) + (z < 0); zero
  // counts as positive.
  enum OCTANT : int {
    OCTANT_PPP = 0,
    OCTANT_PPN = 1,
    OCTANT_PNP = 2,
    OCTANT_PNN = 3,
    OCTANT_NPP = 4,
    OCTANT_NPN = 5,
    OCTANT_NNP = 6,
    OCTANT_NNN = 7
  };

  sxVec3() = default;
  sxVec3(float x, float y, float z) : x(x), y(y), z(z) {}

  void set(float nx, float ny, float nz) { x = nx, y = ny, z = nz; }
  using sxFloatVec::set;

  // No range check.
  float& operator[](int i) { return (&x)[i]; }
  float operator[](int i) const { return (&x)[i]; }

  // Unit-shortcut normalisation: a vector whose squared length is within
  // 1e-6 of 1 is left as it is and 1 is returned; one whose squared length
  // is below 1e-12 becomes zeros and 0 is returned; otherwise the vector is
  // divided by its length, which is returned.
  float normalize();

  // a + (b - a) * t
  void lerp(float t, const sxVec3& a, const sxVec3& b);
  void cross(const sxVec3& a, const sxVec3& b);
  // Angle to v in degrees. Neither vector may be of zero length.
  float angleBetween(const sxVec3& v) const;
  // The front-facing unit normal of the counter-clockwise triangle.
  void makeNormal(const sxVec3& p0, const sxVec3& p1, const sxVec3& p2);
  void makeNormal(const sxVec3* three) { makeNormal(three[0], three[1], three[2]); }

  // Lengths within about 8% without a root.
  float approxDist(const sxVec3& v) const;
  float approxLength() const;

  // Row vector times matrix: as a direction, as a point, and as a point
  // with the perspective divide.
  void xformVec(const sxVec3& v, const sxMatrix& m);
  void xformPt(const sxVec3& p, const sxMatrix& m);
  void fullXformPt(const sxVec3& p, const sxMatrix& m);
  sxVec3 operator*(const sxMatrix& m) const;  // xformPt
  float operator*(const sxVec3& v) const { return dot(v); }
  using sxFloatVec::operator*;

  OCTANT getOctant() const {
    return static_cast<OCTANT>(4 * (x < 0.0f) + 2 * (y < 0.0f) + (z < 0.0f));
  }

  // Heading in [-90, 270) and pitch of this direction.
  void getHP(float& heading, float& pitch) const;
  // The unit direction of a heading and pitch; a pitch beyond +-90 goes over
  // the top and looks backwards.
  void setHP(float heading, float pitch);
  void setH(float heading);

  float x, y, z;
};

static_assert(sizeof(sxVec3) == 3 * sizeof(float) && std::is_standard_layout_v<sxVec3>);
