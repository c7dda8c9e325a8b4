// Matrices built from geometry: looking along a direction, shadows, mirrors.
#include <sx/math/sxMatrix.h>

#include <cmath>

#include <sx/math/sxPlane.h>

void sxMatrix::makeAlongDirection(const sxVec3& dir) {
  makeAlongDirection(dir, sxVec3(0, 0, 1));
}

// Rows: X = dir x up, Y = dir, Z = X x Y. With up = Z this is the matrix
// of the heading and pitch of dir with no roll.
void sxMatrix::makeAlongDirection(const sxVec3& dir, const sxVec3& up) {
  makeIdent();
  sxVec3 y = dir;
  if (y.normalize() == 0.0f) return;
  sxVec3 x;
  x.cross(y, up);
  if (x.normalize() == 0.0f) {
    // Looking along up itself: keep whichever of X and Y is further from
    // the view, made perpendicular to it.
    x = std::fabs(y.x) < 0.9f ? sxVec3(1, 0, 0) : sxVec3(0, 1, 0);
    x.addScaled(-x.dot(y), y);
    x.normalize();
  }
  sxVec3 z;
  z.cross(x, y);
  for (int j = 0; j < 3; ++j) mat[0][j] = x[j], mat[1][j] = y[j], mat[2][j] = z[j];
  type = ROTATION;
}

// With the plane as h = (n, -offset) and the light as L = (l, 1), a point p
// goes to (h.L) p - (h.p) L, the point where the line from L through p meets
// the plane.
void sxMatrix::makeProjection(const sxPlane& plane, const sxVec3& light) {
  const float h[4] = {plane.normal.x, plane.normal.y, plane.normal.z, -plane.offset};
  const float l[4] = {light.x, light.y, light.z, 1.0f};
  const float hl = h[0] * l[0] + h[1] * l[1] + h[2] * l[2] + h[3] * l[3];
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) mat[i][j] = (i == j ? hl : 0.0f) - h[i] * l[j];
  }
  identifyType();
}

// The mirror is I - 2 n n^T with the translation 2 offset n; it is its own
// inverse and orthonormal, which the rotation type's inverse relies on.
void sxMatrix::makeReflection(const sxMatrix& m, const sxPlane& plane) {
  const sxVec3& n = plane.normal;
  sxMatrix mirror;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) mirror.mat[i][j] = (i == j ? 1.0f : 0.0f) - 2.0f * n[i] * n[j];
    mirror.mat[3][i] = 2.0f * plane.offset * n[i];
  }
  mirror.identifyType();
  mult(m, mirror);
}
