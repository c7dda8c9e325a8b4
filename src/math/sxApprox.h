#pragma once

#include <cmath>

// Length of (a, b) within about 8% without a root: the longer plus a third
// of the shorter. The third is subtracted as a negative factor, as the
// library always computed it.
inline float sxiApproxLength(float a, float b) {
  a = std::fabs(a);
  b = std::fabs(b);
  return a <= b ? b - a * -0.33333334f : a - b * -0.33333334f;
}

inline float sxiApproxLength(float a, float b, float c) {
  return sxiApproxLength(sxiApproxLength(a, b), c);
}
