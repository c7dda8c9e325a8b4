#pragma once

#include <type_traits>

#include <sx/math/sxVecOps.h>
#include <sx/sxExport.h>

class sxMatrix;

// Four floats: a homogeneous point, or a colour (r, g, b, a in x, y, z, w).
class SX_API sxVec4 : public sxFloatVec<sxVec4, 4> {
 public:
  sxVec4() = default;
  sxVec4(float x, float y, float z, float w) : x(x), y(y), z(z), w(w) {}

  void set(float nx, float ny, float nz, float nw) { x = nx, y = ny, z = nz, w = nw; }
  using sxFloatVec::set;

  // No range check.
  float& operator[](int i) { return (&x)[i]; }
  float operator[](int i) const { return (&x)[i]; }

  // this = v * m, all four rows of m taking part.
  void xform(const sxVec4& v, const sxMatrix& m);
  sxVec4 operator*(const sxMatrix& m) const;
  using sxFloatVec::operator*;

  // Colour space conversions of the argument into this vector. Hue is in
  // degrees (-1 when undefined), saturation and value in 0..1; alpha is
  // copied unchanged.
  void RGBtoHSV(const sxVec4& rgb);
  void HSVtoRGB(const sxVec4& hsv);

  float x, y, z, w;
};

static_assert(sizeof(sxVec4) == 4 * sizeof(float) && std::is_standard_layout_v<sxVec4>);
