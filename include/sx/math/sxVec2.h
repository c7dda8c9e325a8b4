#pragma once

#include <type_traits>

#include <sx/math/sxVecOps.h>
#include <sx/sxExport.h>

// Two floats, laid out back to back in arrays.
class SX_API sxVec2 : public sxFloatVec<sxVec2, 2> {
 public:
  // Sign pattern of (x, y): 2 * (x < 0) + (y < 0); zero counts as positive.
  enum QUADRANT : int { QUADRANT_PP = 0, QUADRANT_PN = 1, QUADRANT_NP = 2, QUADRANT_NN = 3 };

  sxVec2() = default;
  sxVec2(float x, float y) : x(x), y(y) {}

  void set(float nx, float ny) { x = nx, y = ny; }
  using sxFloatVec::set;

  // No range check.
  float& operator[](int i) { return (&x)[i]; }
  float operator[](int i) const { return (&x)[i]; }

  // Lengths within about 8% without a root: longer + shorter / 3.
  float approxDist(const sxVec2& v) const;
  // Measures this vector; the argument is ignored, as it always was.
  float approxLength(const sxVec2& ignored) const;
  QUADRANT getQuadrant() const { return static_cast<QUADRANT>(2 * (x < 0.0f) + (y < 0.0f)); }

  float x, y;
};

static_assert(sizeof(sxVec2) == 2 * sizeof(float) && std::is_standard_layout_v<sxVec2>);
