#include <sx/kernel/sxKernel.h>
#include <sx/math/sxMatrix.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

using sxiRows::Row;

constexpr float tolerance = 1e-6f;

// Rows r0..r2 as the 3x3 of an inverse L^-1, with the translation -t L^-1
// below them (t from m, zero without withTranslation).
void storeAffine(sxMatrix& r, const Row (&rows)[3], const sxMatrix& m, bool withTranslation) {
  Row t = sxiRows::unit(3);
  if (withTranslation) t -= m[3][0] * rows[0] + m[3][1] * rows[1] + m[3][2] * rows[2];
  for (int i = 0; i < 3; ++i) sxiRows::store(r[i], rows[i]);
  sxiRows::store(r[3], t);
}

}  // namespace

bool sxMatrix::invert(const sxMatrix& m) {
  switch (m.type) {
    case IDENTITY:
      makeIdent();
      return true;
    case ROTATION:
    case ROTATION | TRANSLATION: {
      // The transpose, read whole before anything is written.
      const Row rows[3] = {{m[0][0], m[1][0], m[2][0], 0.0f},
                           {m[0][1], m[1][1], m[2][1], 0.0f},
                           {m[0][2], m[1][2], m[2][2], 0.0f}};
      const unsigned int t = m.type;
      storeAffine(*this, rows, m, t & TRANSLATION);
      type = t;
      return true;
    }
    case TRANSLATION: {
      const float x = m[3][0], y = m[3][1], z = m[3][2];
      makeXYZ(-x, -y, -z);
      type = TRANSLATION;
      return true;
    }
    case UNIFORM_SCALE:
    case NONUNIFORM_SCALE:
    case UNIFORM_SCALE | TRANSLATION:
    case NONUNIFORM_SCALE | TRANSLATION:
    case UNIFORM_SCALE | NONUNIFORM_SCALE | TRANSLATION:
      invertScaleXlate(m);
      return true;
    case ROTATION | UNIFORM_SCALE | TRANSLATION:
    case ROTATION | NONUNIFORM_SCALE | TRANSLATION:
    case ROTATION | UNIFORM_SCALE | NONUNIFORM_SCALE | TRANSLATION:
      return invertAffine(m) || invertFull(m);
    default:
      return invertFull(m);
  }
}

// Diagonal 3x3: reciprocals, and the translation scaled back per axis. A zero
// scale is not checked: it gives infinities, as it always did.
void sxMatrix::invertScaleXlate(const sxMatrix& m) {
  const unsigned int t = m.type;
  const Row rows[3] = {{1.0f / m[0][0], 0.0f, 0.0f, 0.0f},
                       {0.0f, 1.0f / m[1][1], 0.0f, 0.0f},
                       {0.0f, 0.0f, 1.0f / m[2][2], 0.0f}};
  storeAffine(*this, rows, m, t & TRANSLATION);
  type = t;
}

// The inverse of [[L, 0], [t, 1]] is [[L^-1, 0], [-t L^-1, 1]], with L^-1
// from the cofactors. False, changing nothing, when a determinant or a
// scale is too small for the closed form.
bool sxMatrix::invertAffine(const sxMatrix& m) {
  const float c[3][3] = {
      {m[1][1] * m[2][2] - m[1][2] * m[2][1], m[0][2] * m[2][1] - m[0][1] * m[2][2],
       m[0][1] * m[1][2] - m[0][2] * m[1][1]},
      {m[1][2] * m[2][0] - m[1][0] * m[2][2], m[0][0] * m[2][2] - m[0][2] * m[2][0],
       m[0][2] * m[1][0] - m[0][0] * m[1][2]},
      {m[1][0] * m[2][1] - m[1][1] * m[2][0], m[0][1] * m[2][0] - m[0][0] * m[2][1],
       m[0][0] * m[1][1] - m[0][1] * m[1][0]}};
  const float det = m[0][0] * c[0][0] + m[0][1] * c[1][0] + m[0][2] * c[2][0];
  if (std::fabs(det) < tolerance) return false;
  const float inv = 1.0f / det;
  Row rows[3];
  for (int i = 0; i < 3; ++i) rows[i] = Row{c[i][0], c[i][1], c[i][2], 0.0f} * inv;
  const unsigned int t = m.type;
  storeAffine(*this, rows, m, true);
  type = t;
  return true;
}

// LU decomposition with partial pivoting and implicit row scaling, carried
// out on whole rows of the matrix and of the identity beside it, so that
// the identity's four columns are solved at once.
bool sxMatrix::invertFull(const sxMatrix& m) {
  Row a[4], b[4];
  float rowScale[4], diag[4];
#pragma GCC unroll 4
  for (int i = 0; i < 4; ++i) {
    a[i] = sxiRows::load(m[i]);
    b[i] = sxiRows::unit(i);
    // Implicit scaling: each row's pivot is judged relative to its largest
    // element.
    float big = 0.0f;
#pragma GCC unroll 4
    for (int j = 0; j < 4; ++j) big = std::max(big, std::fabs(a[i][j]));
    if (big < tolerance) {
      sxMessage("Singular Matrix.  Undefined results.\n");
      makeIdent();
      return false;
    }
    rowScale[i] = 1.0f / big;
  }
#pragma GCC unroll 4
  for (int j = 0; j < 4; ++j) {
    int pivot = j;
    float big = 0.0f;
#pragma GCC unroll 4
    for (int i = j; i < 4; ++i) {
      const float merit = rowScale[i] * std::fabs(a[i][j]);
      if (merit >= big) big = merit, pivot = i;
    }
    // Swapped by constant indices only, so that the rows can stay in
    // registers.
#pragma GCC unroll 4
    for (int i = j + 1; i < 4; ++i) {
      if (i == pivot) {
        std::swap(a[i], a[j]);
        std::swap(b[i], b[j]);
        rowScale[i] = rowScale[j];
      }
    }
    // An exactly zero pivot is nudged so that the division goes through.
    diag[j] = a[j][j] == 0.0f ? 1e-20f : a[j][j];
    const float inv = 1.0f / diag[j];
#pragma GCC unroll 4
    for (int i = j + 1; i < 4; ++i) {
      const float f = a[i][j] * inv;
      a[i] -= f * a[j];
      b[i] -= f * b[j];
    }
  }
#pragma GCC unroll 4
  for (int i = 3; i >= 0; --i) {
#pragma GCC unroll 4
    for (int k = i + 1; k < 4; ++k) b[i] -= a[i][k] * b[k];
    b[i] *= 1.0f / diag[i];
  }
  const unsigned int t = m.type;
#pragma GCC unroll 4
  for (int i = 0; i < 4; ++i) sxiRows::store(mat[i], b[i]);
  type = t;
  if (t == UNKNOWN) identifyType();
  return true;
}
