#include <sx/math/sxVec2.h>

#include "math/sxApprox.h"

float sxVec2::approxDist(const sxVec2& v) const {
  return sxiApproxLength(x - v.x, y - v.y);
}

float sxVec2::approxLength(const sxVec2&) const {
  return sxiApproxLength(x, y);
}
