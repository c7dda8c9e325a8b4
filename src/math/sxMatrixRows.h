#pragma once

#include <cstring>

#include <sx/math/sxMatrix.h>

// Matrix rows four floats wide, in a vector type that the compiler maps to
// the processor's vector registers (or to plain floats where there are
// none). Non-projective matrices have 0 in column 3 above a 1, so products
// of such rows get their fourth lanes right without setting them.
namespace sxiRows {

typedef float Row __attribute__((vector_size(16)));

inline Row load(const float* p) {
  Row r;
  std::memcpy(&r, p, sizeof(r));
  return r;
}
inline void store(float* p, Row r) {
  std::memcpy(p, &r, sizeof(r));
}
inline Row unit(int i) {
  Row r = {0.0f, 0.0f, 0.0f, 0.0f};
  r[i] = 1.0f;
  return r;
}

}  // namespace sxiRows
