#pragma once

#include <cstring>

#include <sx/math/sxVec3.h>
#include <sx/sxExport.h>

// Matrix rows four floats wide, in a vector type that the compiler maps to
// the processor's vector registers. Non-projective matrices have 0 in
// column 3 above a 1, so products of such rows get their fourth lanes right
// without setting them. The inline products below and the block products of
// the library share these; a compiler without vector extensions needs a
// port of this namespace only.
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
// (v0, v1, v2) times the rows b0, b1, b2: the row v of four floats is
// loaded once and its lanes broadcast, which keeps the sum in registers.
inline Row times(const float* v, Row b0, Row b1, Row b2) {
  const Row x = load(v);
  return __builtin_shufflevector(x, x, 0, 0, 0, 0) * b0 +
         __builtin_shufflevector(x, x, 1, 1, 1, 1) * b1 +
         __builtin_shufflevector(x, x, 2, 2, 2, 2) * b2;
}

}  // namespace sxiRows

class sxEntry;
class sxPlane;
class sxQuat;

// A 4x4 transform, row-major, with row vectors on the left (p' = p * M):
// the translation is row 3 and a product a * b applies a first. Its type
// word says which parts the matrix holds so that products and inverses take
// short paths. A type bit that is set where the part is absent only costs
// speed; a bit missing where the part is present gives wrong results, so
// matrices built from raw values should have their type identified.
// Angles are in degrees.
class SX_API sxMatrix {
 public:
  enum TYPE_BITS : unsigned int {
    UNKNOWN = 0,
    IDENTITY = 1,     // set alone
    ROTATION = 2,     // the 3x3 is not a (scaled) identity
    TRANSLATION = 4,  // element 12, 13 or 14 is non-zero
    UNIFORM_SCALE = 8,
    NONUNIFORM_SCALE = 16,
    PROJECTIVE = 32  // element 3, 7 or 11 non-zero, or 15 not 1
  };

  sxMatrix() { makeIdent(); }
  // type 0 has the type identified from the values.
  sxMatrix(const float* sixteen, unsigned int type) { set(sixteen, type); }
  void set(const float* sixteen, unsigned int type);

  // Row i; no range check.
  float* operator[](int i) { return mat[i]; }
  const float* operator[](int i) const { return mat[i]; }

  unsigned int getType() const { return type; }
  void setType(unsigned int t) { type = t; }
  // Classifies the values with the tolerance 1e-6, stores and returns it.
  unsigned int identifyType();

  void get(float out[4][4]) const;
  void getRow(int i, sxVec3& v) const { v.set(mat[i][0], mat[i][1], mat[i][2]); }
  void getRow(int i, float& a, float& b, float& c, float& d) const;
  void getCol(int j, sxVec3& v) const { v.set(mat[0][j], mat[1][j], mat[2][j]); }
  void getCol(int j, float& a, float& b, float& c, float& d) const;
  // The last argument is the new type word; 0 has it identified.
  void setRow(int i, float a, float b, float c, float d, unsigned int newType);
  void setCol(int j, float a, float b, float c, float d, unsigned int newType);

  void makeIdent();
  // Roll about Y, then pitch about X, then heading about Z.
  void makeHPR(float h, float p, float r);
  void makeHPR(const sxVec3& hpr) { makeHPR(hpr.x, hpr.y, hpr.z); }
  // Replaces the 3x3 and keeps the rest.
  void setHPR(float h, float p, float r);
  void setHPR(const sxVec3& hpr) { setHPR(hpr.x, hpr.y, hpr.z); }
  void getHPR(float& h, float& p, float& r) const;
  void getHPR(sxVec3& hpr) const { getHPR(hpr.x, hpr.y, hpr.z); }
  // Counter-clockwise seen from the tip of the axis; the axis must not be 0.
  void makeRot(float angle, float x, float y, float z);
  void makeRot(float angle, const sxVec3& axis) { makeRot(angle, axis.x, axis.y, axis.z); }
  void makeXYZ(float x, float y, float z);
  void makeXYZ(const sxVec3& v) { makeXYZ(v.x, v.y, v.z); }
  // Replaces row 3 only.
  void setXYZ(float x, float y, float z);
  void setXYZ(const sxVec3& v) { setXYZ(v.x, v.y, v.z); }
  void getXYZ(float& x, float& y, float& z) const;
  void getXYZ(sxVec3& v) const { getRow(3, v); }
  void makeScale(float x, float y, float z);
  void makeScale(const sxVec3& s) { makeScale(s.x, s.y, s.z); }
  void getQuat(sxQuat& q) const;
  void setQuat(const sxQuat& q);

  // this = a * b. Any of the operands may be this matrix. The most frequent
  // cases are picked out here, inline: the identity, pure translations, and
  // rotations with translations, which go straight to their block product.
  void mult(const sxMatrix& a, const sxMatrix& b) {
    if (a.type == IDENTITY) {
      *this = b;
    } else if (((a.type ^ TRANSLATION) | (b.type ^ TRANSLATION)) == 0) {
      // The identity with the sum of the translations: the upper rows of a
      // pure translation are known, so only row 3 is read.
      sumOfTranslations(a, b);
    } else if (b.type == IDENTITY) {
      *this = a;
    } else if (a.type && b.type && ((a.type | b.type) & ~(ROTATION | TRANSLATION)) == 0) {
      affineProduct(a, b);
    } else {
      multByGroups(a, b);
    }
  }
  void preMult(const sxMatrix& m) { mult(m, *this); }
  void postMult(const sxMatrix& m) { mult(*this, m); }
  sxMatrix& operator*=(const sxMatrix& m) { return postMult(m), *this; }
  void add(const sxMatrix& a, const sxMatrix& b);
  void sub(const sxMatrix& a, const sxMatrix& b);

  // this = T * this (pre) or this * T (post), T made as by the make forms.
  void preTrans(float x, float y, float z);
  void preTrans(const sxVec3& v) { preTrans(v.x, v.y, v.z); }
  void postTrans(float x, float y, float z);
  void postTrans(const sxVec3& v) { postTrans(v.x, v.y, v.z); }
  void preRot(float angle, float x, float y, float z);
  void preRot(float angle, const sxVec3& axis) { preRot(angle, axis.x, axis.y, axis.z); }
  void postRot(float angle, float x, float y, float z);
  void postRot(float angle, const sxVec3& axis) { postRot(angle, axis.x, axis.y, axis.z); }
  void preScale(float x, float y, float z);
  void preScale(const sxVec3& s) { preScale(s.x, s.y, s.z); }
  void postScale(float x, float y, float z);
  void postScale(const sxVec3& s) { postScale(s.x, s.y, s.z); }

  // Inverse by the shortest path the type allows. False (with the message
  // "Singular Matrix.  Undefined results." and this matrix the identity)
  // only from the general inverse.
  bool invert(const sxMatrix& m);
  // The general inverse: LU decomposition with partial pivoting.
  bool invertFull(const sxMatrix& m);
  void transpose(const sxMatrix& m);
  void transpose() { transpose(*this); }

  // The transformed +Y axis, the direction this matrix looks along.
  void getDirection(sxVec3& dir) const { getRow(1, dir); }
  // A rotation whose +Y axis is dir and whose +Z axis leans toward up (Z
  // when not given). The identity for a zero direction.
  void makeAlongDirection(const sxVec3& dir);
  void makeAlongDirection(const sxVec3& dir, const sxVec3& up);
  // The projection of points onto the plane from the point light (shadows).
  void makeProjection(const sxPlane& plane, const sxVec3& light);
  // this = m followed by the mirror image through the plane.
  void makeReflection(const sxMatrix& m, const sxPlane& plane);

  // Exact comparison of the sixteen values; the type words are not compared.
  bool operator==(const sxMatrix& m) const;
  bool operator!=(const sxMatrix& m) const { return !(*this == m); }

  // The type word as one int, then the sixteen values in storage order.
  // The type is taken as read, not identified again: identifying costs
  // square roots, and the writer's word was right for these values.
  void read(sxEntry* entry);
  void write(sxEntry* entry) const;

  alignas(16) float mat[4][4];

 private:
  // this = the pure translation a + b (both pure translations). Only row 3
  // of the operands is read, so this may be a or b. Its fourth lane sums to
  // 1 + 1 - 1, exactly 1, so the row goes out in one store; the explicit
  // vector keeps compilers from splitting the sum into scalars when this is
  // inlined into a caller's loop.
  void sumOfTranslations(const sxMatrix& a, const sxMatrix& b) {
    using namespace sxiRows;
    store(mat[3], load(a.mat[3]) + load(b.mat[3]) - unit(3));
    for (int i = 0; i < 3; ++i) store(mat[i], unit(i));
    type = TRANSLATION;
  }
  // this = a * b for rotations with translations, inline: row i of the
  // product is the sum of b's rows scaled by a's row i, plus b's translation
  // for row 3. Every row is computed before any is stored, so this may be a
  // or b.
  void affineProduct(const sxMatrix& a, const sxMatrix& b) {
    using namespace sxiRows;
    const Row b0 = load(b.mat[0]), b1 = load(b.mat[1]), b2 = load(b.mat[2]);
    const Row r0 = times(a.mat[0], b0, b1, b2), r1 = times(a.mat[1], b0, b1, b2),
              r2 = times(a.mat[2], b0, b1, b2);
    const Row r3 = times(a.mat[3], b0, b1, b2) + load(b.mat[3]);
    const unsigned int t = a.type | b.type;
    store(mat[0], r0);
    store(mat[1], r1);
    store(mat[2], r2);
    store(mat[3], r3);
    type = t;
  }
  // The block products of the fast paths (see sxMatrixMult.cpp): only the
  // non-zero blocks of the two operands are multiplied.
  static void multLinearByLinear(sxMatrix& r, const sxMatrix& a, const sxMatrix& b);
  static void multLinearByAffine(sxMatrix& r, const sxMatrix& a, const sxMatrix& b);
  static void multAffineByLinear(sxMatrix& r, const sxMatrix& a, const sxMatrix& b);
  static void multAffineByAffine(sxMatrix& r, const sxMatrix& a, const sxMatrix& b);
  static void multLinearByXlate(sxMatrix& r, const sxMatrix& a, const sxMatrix& b);
  static void multXlateByLinear(sxMatrix& r, const sxMatrix& a, const sxMatrix& b);
  static void multXlateByAffine(sxMatrix& r, const sxMatrix& a, const sxMatrix& b);
  static void multAffineByXlate(sxMatrix& r, const sxMatrix& a, const sxMatrix& b);
  static void multXlateByScale(sxMatrix& r, const sxMatrix& a, const sxMatrix& b);
  static void multLinearByScale(sxMatrix& r, const sxMatrix& a, const sxMatrix& b);
  static void multScaleByLinear(sxMatrix& r, const sxMatrix& a, const sxMatrix& b);
  static void multScaleByAffine(sxMatrix& r, const sxMatrix& a, const sxMatrix& b);
  static void multAffineByScale(sxMatrix& r, const sxMatrix& a, const sxMatrix& b);
  static void multScaleByScale(sxMatrix& r, const sxMatrix& a, const sxMatrix& b);
  static void multFull(sxMatrix& r, const sxMatrix& a, const sxMatrix& b);
  // Dispatches on the type groups of the operands.
  void multByGroups(const sxMatrix& a, const sxMatrix& b);
  friend struct sxiMatrixBlocks;

  // Replaces the type bits in clear by those in add, keeping the others;
  // an unknown type is identified instead.
  void retype(unsigned int clear, unsigned int add);

  // Closed-form inverses by type group.
  void invertScaleXlate(const sxMatrix& m);
  bool invertAffine(const sxMatrix& m);

  unsigned int type;
};
