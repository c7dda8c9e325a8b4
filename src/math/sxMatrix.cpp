#include <sx/math/sxMatrix.h>

#include <cmath>
#include <cstring>
#include <initializer_list>

#include <sx/math/sxQuat.h>

namespace {

constexpr float tolerance = 1e-6f;
constexpr float degPerRad = 57.29578f;
constexpr unsigned int linearBits =
    sxMatrix::ROTATION | sxMatrix::UNIFORM_SCALE | sxMatrix::NONUNIFORM_SCALE;

bool beyond(float v) {
  return std::fabs(v) >= tolerance;
}

// Sine and cosine, with an angle of exactly 0 spared the call.
void sinCos(float degrees, float& s, float& c) {
  if (degrees == 0.0f) {
    s = 0.0f, c = 1.0f;
  } else {
    sxGetSinCos(degrees, s, c);
  }
}

}  // namespace

void sxMatrix::set(const float* sixteen, unsigned int t) {
  std::memcpy(mat, sixteen, sizeof(mat));
  type = t;
  if (t == UNKNOWN) identifyType();
}

unsigned int sxMatrix::identifyType() {
  // Element k in storage order.
  auto m = [this](int k) { return mat[k >> 2][k & 3]; };
  auto any = [&](std::initializer_list<int> ks) {
    for (int k : ks) {
      if (beyond(m(k))) return true;
    }
    return false;
  };
  unsigned int t = IDENTITY;
  if (any({1, 2, 4, 6, 8, 9})) t = ROTATION;
  if (any({12, 13, 14})) t = (t & ~IDENTITY) | TRANSLATION;
  if (any({3, 7, 11}) || beyond(m(15) - 1.0f)) t = (t & ~IDENTITY) | PROJECTIVE;
  float r[3];
  for (int i = 0; i < 3; ++i)
    r[i] = m(4 * i) * m(4 * i) + m(4 * i + 1) * m(4 * i + 1) + m(4 * i + 2) * m(4 * i + 2);
  if (beyond(r[0] - 1.0f) || beyond(r[1] - 1.0f) || beyond(r[2] - 1.0f)) {
    const bool uniform = std::fabs(r[0] - r[1]) <= r[0] * tolerance &&
                         std::fabs(r[1] - r[2]) <= r[1] * tolerance &&
                         std::fabs(r[0] - r[2]) <= r[2] * tolerance;
    t = (t & ~IDENTITY) | (uniform ? UNIFORM_SCALE : NONUNIFORM_SCALE);
  }
  if (beyond(m(0) / sxSqrt(r[0]) - 1.0f) || beyond(m(5) / sxSqrt(r[1]) - 1.0f) ||
      beyond(m(10) / sxSqrt(r[2]) - 1.0f)) {
    t = (t & ~IDENTITY) | ROTATION;
  }
  return type = t;
}

void sxMatrix::retype(unsigned int clear, unsigned int add) {
  if (type == UNKNOWN) {
    identifyType();
    return;
  }
  const unsigned int t = (type & ~(clear | IDENTITY)) | add;
  type = t ? t : IDENTITY;
}

void sxMatrix::get(float out[4][4]) const {
  std::memcpy(out, mat, sizeof(mat));
}

void sxMatrix::getRow(int i, float& a, float& b, float& c, float& d) const {
  a = mat[i][0], b = mat[i][1], c = mat[i][2], d = mat[i][3];
}

void sxMatrix::getCol(int j, float& a, float& b, float& c, float& d) const {
  a = mat[0][j], b = mat[1][j], c = mat[2][j], d = mat[3][j];
}

void sxMatrix::setRow(int i, float a, float b, float c, float d, unsigned int newType) {
  mat[i][0] = a, mat[i][1] = b, mat[i][2] = c, mat[i][3] = d;
  type = newType;
  if (newType == UNKNOWN) identifyType();
}

void sxMatrix::setCol(int j, float a, float b, float c, float d, unsigned int newType) {
  mat[0][j] = a, mat[1][j] = b, mat[2][j] = c, mat[3][j] = d;
  type = newType;
  if (newType == UNKNOWN) identifyType();
}

void sxMatrix::makeIdent() {
  static constexpr float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  std::memcpy(mat, identity, sizeof(mat));
  type = IDENTITY;
}

void sxMatrix::makeHPR(float h, float p, float r) {
  makeIdent();
  setHPR(h, p, r);
}

void sxMatrix::setHPR(float h, float p, float r) {
  float sh, ch, sp, cp, sr, cr;
  const bool none = !beyond(h) && !beyond(p) && !beyond(r);
  if (none) {
    sh = sp = sr = 0.0f;
    ch = cp = cr = 1.0f;
  } else {
    sinCos(h, sh, ch);
    sinCos(p, sp, cp);
    sinCos(r, sr, cr);
  }
  mat[0][0] = cr * ch - sr * sp * sh;
  mat[0][1] = sr * sp * ch + cr * sh;
  mat[0][2] = -sr * cp;
  mat[1][0] = -cp * sh;
  mat[1][1] = cp * ch;
  mat[1][2] = sp;
  mat[2][0] = cr * sp * sh + sr * ch;
  mat[2][1] = sr * sh - cr * sp * ch;
  mat[2][2] = cr * cp;
  retype(linearBits, none ? 0u : ROTATION);
}

void sxMatrix::getHPR(float& h, float& p, float& r) const {
  sxVec3 f(mat[1][0], mat[1][1], mat[1][2]);
  h = -std::atan2(f.x, f.y) * degPerRad;
  sxMatrix unHeading;
  unHeading.makeHPR(-h, 0.0f, 0.0f);
  f.xformVec(f, unHeading);
  p = std::atan2(f.z, f.y) * degPerRad;
  sxMatrix unPitch;
  unPitch.makeHPR(0.0f, -p, 0.0f);
  sxVec3 x(mat[0][0], mat[0][1], mat[0][2]);
  x.xformVec(x, unHeading);
  x.xformVec(x, unPitch);
  r = -std::atan2(x.z, x.x) * degPerRad;
}

void sxMatrix::makeRot(float angle, float x, float y, float z) {
  makeIdent();
  if (!beyond(angle)) return;
  const float inv = 1.0f / sxSqrt(x * x + y * y + z * z);
  x *= inv, y *= inv, z *= inv;
  float s, c;
  sxGetSinCos(angle, s, c);
  const float t = 1.0f - c;
  mat[0][0] = t * x * x + c, mat[0][1] = t * x * y + s * z, mat[0][2] = t * x * z - s * y;
  mat[1][0] = t * x * y - s * z, mat[1][1] = t * y * y + c, mat[1][2] = t * y * z + s * x;
  mat[2][0] = t * x * z + s * y, mat[2][1] = t * y * z - s * x, mat[2][2] = t * z * z + c;
  type = ROTATION;
}

void sxMatrix::makeXYZ(float x, float y, float z) {
  makeIdent();
  setXYZ(x, y, z);
}

void sxMatrix::setXYZ(float x, float y, float z) {
  mat[3][0] = x, mat[3][1] = y, mat[3][2] = z;
  retype(TRANSLATION, x != 0.0f || y != 0.0f || z != 0.0f ? TRANSLATION : 0u);
}

void sxMatrix::getXYZ(float& x, float& y, float& z) const {
  x = mat[3][0], y = mat[3][1], z = mat[3][2];
}

void sxMatrix::makeScale(float x, float y, float z) {
  makeIdent();
  mat[0][0] = x, mat[1][1] = y, mat[2][2] = z;
  if (x == 1.0f && y == 1.0f && z == 1.0f) return;
  type = x == y && y == z ? UNIFORM_SCALE : NONUNIFORM_SCALE;
}

void sxMatrix::getQuat(sxQuat& q) const {
  q.setMatrix(*this);
}

void sxMatrix::setQuat(const sxQuat& q) {
  q.getMatrix(*this);
}

void sxMatrix::add(const sxMatrix& a, const sxMatrix& b) {
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) mat[i][j] = a.mat[i][j] + b.mat[i][j];
  }
  identifyType();
}

void sxMatrix::sub(const sxMatrix& a, const sxMatrix& b) {
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) mat[i][j] = a.mat[i][j] - b.mat[i][j];
  }
  identifyType();
}

// this = T * this or this * T, T made by one of the make functions.
template <class Make>
static sxMatrix made(Make make) {
  sxMatrix t;
  make(t);
  return t;
}

void sxMatrix::preTrans(float x, float y, float z) {
  preMult(made([&](sxMatrix& t) { t.makeXYZ(x, y, z); }));
}
void sxMatrix::postTrans(float x, float y, float z) {
  postMult(made([&](sxMatrix& t) { t.makeXYZ(x, y, z); }));
}
void sxMatrix::preRot(float angle, float x, float y, float z) {
  preMult(made([&](sxMatrix& t) { t.makeRot(angle, x, y, z); }));
}
void sxMatrix::postRot(float angle, float x, float y, float z) {
  postMult(made([&](sxMatrix& t) { t.makeRot(angle, x, y, z); }));
}
void sxMatrix::preScale(float x, float y, float z) {
  preMult(made([&](sxMatrix& t) { t.makeScale(x, y, z); }));
}
void sxMatrix::postScale(float x, float y, float z) {
  postMult(made([&](sxMatrix& t) { t.makeScale(x, y, z); }));
}

void sxMatrix::transpose(const sxMatrix& m) {
  sxMatrix t;
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) t.mat[i][j] = m.mat[j][i];
  }
  std::memcpy(mat, t.mat, sizeof(mat));
  identifyType();
}

bool sxMatrix::operator==(const sxMatrix& m) const {
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) {
      if (mat[i][j] != m.mat[i][j]) return false;
    }
  }
  return true;
}
