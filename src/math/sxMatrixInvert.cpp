#include <sx/math/sxMatrix.h>

#include <cmath>
#include <utility>

#include "math/sxMathMessage.h"
#include "math/sxMatrixRows.h"

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

bool sxMatrix::invertFull(const sxMatrix& m) {
  float a[4][4];
  m.get(a);
  // Implicit scaling: each row's pivot is judged relative to its largest
  // element.
  float rowScale[4];
  for (int i = 0; i < 4; ++i) {
    float big = 0.0f;
    for (int j = 0; j < 4; ++j) big = std::fmax(big, std::fabs(a[i][j]));
    if (big < tolerance) {
      sxiMathMessage("Singular Matrix.  Undefined results.\n");
      makeIdent();
      return false;
    }
    rowScale[i] = 1.0f / big;
  }
  // Crout's LU decomposition with partial pivoting, in place.
  int perm[4];
  for (int j = 0; j < 4; ++j) {
    for (int i = 0; i < j; ++i) {
      for (int k = 0; k < i; ++k) a[i][j] -= a[i][k] * a[k][j];
    }
    float big = 0.0f;
    int pivot = j;
    for (int i = j; i < 4; ++i) {
      for (int k = 0; k < j; ++k) a[i][j] -= a[i][k] * a[k][j];
      const float merit = rowScale[i] * std::fabs(a[i][j]);
      if (merit >= big) big = merit, pivot = i;
    }
    if (pivot != j) {
      for (int k = 0; k < 4; ++k) std::swap(a[pivot][k], a[j][k]);
      rowScale[pivot] = rowScale[j];
    }
    perm[j] = pivot;
    // An exactly zero pivot is nudged so that the division goes through.
    if (a[j][j] == 0.0f) a[j][j] = 1e-20f;
    for (int i = j + 1; i < 4; ++i) a[i][j] /= a[j][j];
  }
  // Solve for each column of the identity.
  float out[4][4];
  for (int col = 0; col < 4; ++col) {
    float b[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    b[col] = 1.0f;
    for (int i = 0; i < 4; ++i) {
      std::swap(b[i], b[perm[i]]);
      for (int k = 0; k < i; ++k) b[i] -= a[i][k] * b[k];
    }
    for (int i = 3; i >= 0; --i) {
      for (int k = i + 1; k < 4; ++k) b[i] -= a[i][k] * b[k];
      b[i] /= a[i][i];
    }
    for (int i = 0; i < 4; ++i) out[i][col] = b[i];
  }
  const unsigned int t = m.type;
  set(out[0], t);
  return true;
}
