#include <algorithm>
#include <cmath>
#include <random>
#include <tuple>
#include <vector>

#include "sxMathTestUtil.h"

namespace {

const auto product = [](sxMatrix a, const sxMatrix& b) { return a *= b; };
const auto components = [](const sxQuat& q) { return sxVec4(q.x, q.y, q.z, q.w); };

// The plain 4x4 product: element i / 4 sums the terms k = i % 4 in double.
sxMatrix referenceProduct(const sxMatrix& a, const sxMatrix& b) {
  double sum[16] = {};
  for (int i = 0; i < 64; ++i) sum[i / 4] += double{a[i / 16][i % 4]} * b[i % 4][i / 4 % 4];
  float v[16];
  for (int e = 0; e < 16; ++e) v[e] = static_cast<float>(sum[e]);
  return sxMatrix(v, 0);
}

// Largest element difference relative to max(1, largest expected element).
float matrixError(const sxMatrix& actual, const sxMatrix& expected) {
  float diff = 0.0f, size = 1.0f;
  for (int e = 0; e < 16; ++e) {
    diff = std::max(diff, std::fabs(actual[e / 4][e % 4] - expected[e / 4][e % 4]));
    size = std::max(size, std::fabs(expected[e / 4][e % 4]));
  }
  return diff / size;
}

// Random transforms of every type group.
struct sxMatrixFactory {
  std::mt19937 rng;
  float uniform(float lo, float hi) { return std::uniform_real_distribution<float>(lo, hi)(rng); }
  sxMatrix rotation() {
    return Built().hpr(uniform(-180, 180), uniform(-85, 85), uniform(-180, 180));
  }
  sxMatrix scale(bool uniformly) {
    const float s = uniform(0.2f, 5.0f);
    return Built().scale(s, uniformly ? s : uniform(0.2f, 5.0f),
                         uniformly ? s : uniform(0.2f, 5.0f));
  }
  // A projective matrix with random values everywhere.
  sxMatrix general() {
    float v[16];
    for (float& x : v) x = uniform(-2.0f, 2.0f);
    v[15] += 3.0f;
    return sxMatrix(v, 0);
  }
  // One matrix of each type group, with the scale variants of each.
  std::vector<sxMatrix> everyType() {
    const sxMatrix u = scale(true), n = scale(false), r = rotation();
    const sxMatrix un = product(u, n), nr = product(n, r), ru = product(r, u);
    const sxMatrix t = Built().xyz(uniform(-50, 50), uniform(-50, 50), uniform(-50, 50));
    std::vector<sxMatrix> all = {general(), sxMatrix(), r, ru, nr, product(nr, scale(true)),
                                 u,         n,          un};
    for (const sxMatrix& m : {sxMatrix(), r, u, ru, n, nr, un, product(un, r)})
      all.push_back(product(m, t));
    return all;
  }
};

class sxMatrixTest : public sxHardwareSqrtTest {
 protected:
  sxMatrixFactory make{std::mt19937(12345)};
};

TEST_F(sxMatrixTest, IdentifyTypeClassifiesEachPart) {
  EXPECT_EQ(Built().scale(2, 2, 2).identifyType(), sxMatrix::UNIFORM_SCALE);
  EXPECT_EQ(Built().scale(2, 1, 2).identifyType(), sxMatrix::NONUNIFORM_SCALE);
  EXPECT_EQ(Built().scale(-1, 1, 1).identifyType(), sxMatrix::ROTATION);  // a mirror
  sxMatrix m;
  m[1][3] = 0.5f;
  EXPECT_EQ(m.identifyType(), sxMatrix::PROJECTIVE);
  // Below the tolerance nothing counts.
  m.makeIdent();
  m[0][1] = 5e-7f;
  m[3][2] = -5e-7f;
  EXPECT_EQ(m.identifyType(), sxMatrix::IDENTITY);
  // A table root errs beyond the tolerance of the unit test, so scaled
  // matrices also count as rotations: that costs speed, never correctness.
  sxSetSqrtMethod(SXSQRT_TABLE_4K);
  EXPECT_EQ(Built().scale(1.7f, 1.7f, 1.7f).identifyType(),
            sxMatrix::UNIFORM_SCALE | sxMatrix::ROTATION);
  // Construction from values takes a given type as it is.
  const float raw[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 0, 0, 1};
  EXPECT_EQ(sxMatrix(raw, sxMatrix::ROTATION).getType(), sxMatrix::ROTATION);
  EXPECT_EQ(sxMatrix(raw, 0).getType(), sxMatrix::TRANSLATION);
}

TEST_F(sxMatrixTest, HeadingPitchRollAndAxisRotations) {
  EXPECT_EQ(Built().hpr(0, 5e-7f, 0).getType(), sxMatrix::IDENTITY);
  EXPECT_EQ(Built().rot(5e-7f, 1, 0, 0).getType(), sxMatrix::IDENTITY);
  // Heading 90 turns the view from +Y to -X, as sxVec3::setH does.
  sxMatrix m = Built().hpr(90, 0, 0), h;
  EXPECT_EQ(m.getType(), sxMatrix::ROTATION);
  sxVec3 dir, expected, back;
  sxQuat q;
  m.getDirection(dir);
  expected.setH(90.0f);
  EXPECT_TRUE(dir.almostEqual(expected, 1e-6f));
  // An axis rotation turns the same way as heading.
  EXPECT_LT(matrixError(Built().rot(35, 0, 0, 1), Built().hpr(35, 0, 0)), 1e-6f);
  m.makeRot(120.0f, sxVec3(1, 1, 1));
  dir.xformVec(sxVec3(1, 0, 0), m);
  EXPECT_TRUE(dir.almostEqual(sxVec3(0, 1, 0), 1e-5f));
  // setHPR keeps the translation.
  m.makeXYZ(1.0f, 2.0f, 3.0f);
  m.setHPR(10.0f, 0.0f, 0.0f);
  EXPECT_EQ(m.getType(), sxMatrix::ROTATION | sxMatrix::TRANSLATION);
  m.setHPR(0.0f, 0.0f, 0.0f);
  EXPECT_EQ(m.getType(), sxMatrix::TRANSLATION);
  for (int i = 0; i < 500; ++i) {
    const sxVec3 hpr(make.uniform(-179, 179), make.uniform(-85, 85), make.uniform(-179, 179));
    m.makeHPR(hpr);
    m.getHPR(back);
    EXPECT_TRUE(back.almostEqual(hpr, 2e-3f)) << hpr.x << " " << hpr.y << " " << hpr.z;
    q.setHPR(hpr);
    q.getHPR(back);
    EXPECT_TRUE(back.almostEqual(hpr, 2e-3f)) << hpr.x << " " << hpr.y << " " << hpr.z;
    m.getQuat(q);
    h.setQuat(q);
    EXPECT_LT(matrixError(h, m), 1e-5f);
  }
}

// Every pair of type groups goes through its own path; all must agree with
// the plain product within 1e-5 of the largest element.
TEST_F(sxMatrixTest, FastProductsAgreeWithTheFullProduct) {
  for (int round = 0; round < 20; ++round) {
    const std::vector<sxMatrix> all = make.everyType();
    for (const sxMatrix& a : all) {
      for (const sxMatrix& b : all) {
        SCOPED_TRACE(testing::Message() << a.getType() << " by " << b.getType());
        sxMatrix r;
        r.mult(a, b);
        ASSERT_LT(matrixError(r, referenceProduct(a, b)), 1e-5f);
        // The product's type claims every part that it holds.
        const unsigned int found = sxMatrix(r).identifyType() & ~sxMatrix::IDENTITY;
        EXPECT_TRUE(r.getType() == sxMatrix::IDENTITY || (found & ~r.getType()) == 0);
        // The operands may be the result.
        EXPECT_EQ(sxMatrix(a) *= b, r);
        sxMatrix alias = b;
        alias.preMult(a);
        EXPECT_EQ(alias, r);
      }
    }
  }
}

TEST_F(sxMatrixTest, ProductEdgeCases) {
  sxMatrix r;
  // An unknown operand leaves the product's type to identification.
  sxMatrix unknown = Built().xyz(1, 2, 3);
  unknown.setType(sxMatrix::UNKNOWN);
  r.mult(make.rotation(), unknown);
  EXPECT_EQ(r.getType(), sxMatrix::ROTATION | sxMatrix::TRANSLATION);
  // pre and post forms of the builders.
  r = Built().thenTrans(1, 0, 0).thenRot(90, 0, 0, 1).thenScale(2, 2, 2);
  EXPECT_TRUE((sxVec3(0, 0, 0) * r).almostEqual(sxVec3(0, 2, 0), 1e-5f));
  r.makeIdent();
  r.preTrans(1, 0, 0);
  r.preRot(90, 0, 0, 1);
  r.preScale(2, 2, 2);
  EXPECT_TRUE((sxVec3(0, 0, 0) * r).almostEqual(sxVec3(1, 0, 0), 1e-5f));
}

TEST_F(sxMatrixTest, InverseTimesMatrixIsTheIdentity) {
  for (int round = 0; round < 50; ++round) {
    for (const sxMatrix& m : make.everyType()) {
      sxMatrix inv, full;
      ASSERT_TRUE(inv.invert(m)) << m.getType();
      EXPECT_EQ(inv.getType(), m.getType());
      EXPECT_LT(matrixError(product(m, inv), sxMatrix()), 2e-4f) << m.getType();
      EXPECT_LT(matrixError(product(inv, m), sxMatrix()), 2e-4f) << m.getType();
      // The closed forms agree with the general inverse.
      ASSERT_TRUE(full.invertFull(m));
      EXPECT_LT(matrixError(inv, full), 1e-4f) << m.getType();
      full = m;
      full.invert(full);  // in place
      EXPECT_EQ(full, inv);
    }
  }
}

TEST_F(sxMatrixTest, SingularMatrixGivesTheMessageAndTheIdentity) {
  float v[16] = {1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0, 0, 1, 1, 1, 2};
  sxMatrix m(v, 0);
  ASSERT_EQ(m.getType() & sxMatrix::PROJECTIVE, sxMatrix::PROJECTIVE);
  sxMatrix r = make.rotation();
  testing::internal::CaptureStdout();
  EXPECT_FALSE(r.invert(m));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Singular Matrix.  Undefined results.\n");
  EXPECT_EQ(std::pair(r, r.getType()), std::pair(sxMatrix(), unsigned(sxMatrix::IDENTITY)));
  // A zero pivot of a non-singular matrix is worked around by pivoting.
  const float swap[16] = {0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0};
  m.set(swap, 0);
  EXPECT_TRUE(r.invert(m));
  EXPECT_EQ(r, m);
  // A zero column without a zero row meets an exactly zero pivot: it is
  // nudged, without a message, and the division goes through.
  const float zeroColumn[16] = {1, 0, 0, 0, 1, 0, 1, 0, 0, 0, 1, 1, 0, 0, 0, 1};
  m.set(zeroColumn, 0);
  testing::internal::CaptureStdout();
  EXPECT_TRUE(r.invert(m));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_GT(std::fabs(r[1][1]), 1e10f);
  // An affine matrix of tiny determinant falls back to the general inverse.
  m = Built().scale(0.01f, 0.02f, 0.03f).thenRot(30, 1, 0, 0).thenTrans(1, 2, 3);
  ASSERT_EQ(m.getType(), sxMatrix::ROTATION | sxMatrix::NONUNIFORM_SCALE | sxMatrix::TRANSLATION);
  ASSERT_TRUE(r.invert(m));
  EXPECT_LT(matrixError(product(m, r), sxMatrix()), 1e-4f);
}

TEST_F(sxMatrixTest, RowsColumnsAndTranspose) {
  sxMatrix m;
  m.setRow(3, 1, 2, 3, 1, 0);
  EXPECT_EQ(m.getType(), sxMatrix::TRANSLATION);
  m.setCol(3, 0, 0, 0.5f, 1, sxMatrix::PROJECTIVE);
  EXPECT_EQ(m.getType(), sxMatrix::PROJECTIVE);
  float a, b, c, d, e, f, g, h;
  m.getCol(3, a, b, c, d);
  m.getRow(3, e, f, g, h);
  EXPECT_EQ(std::tuple(a, b, c, d, e, f, g, h), std::tuple(0, 0, 0.5f, 1, 1, 2, 3, 1));
  sxMatrix t;
  t.transpose(m);
  EXPECT_EQ(t[3][2], 0.5f);
  t.transpose();
  EXPECT_EQ(t, m);
  t.add(m, m);
  t.sub(t, m);
  EXPECT_EQ(t, m);
}

TEST_F(sxMatrixTest, AlongDirectionProjectionAndReflection) {
  sxMatrix m, inv;
  sxVec3 dir;
  for (int i = 0; i < 100; ++i) {
    const float h = make.uniform(-170, 170), p = make.uniform(-80, 80);
    dir.setHP(h, p);
    m.makeAlongDirection(dir * 3.0f);
    EXPECT_LT(matrixError(m, Built().hpr(h, p, 0)), 1e-5f);
  }
  // Straight up: Z is no help, the X axis is kept.
  m.makeAlongDirection(sxVec3(0, 0, 2));
  EXPECT_LT(matrixError(m, Built().hpr(0, 90, 0)), 1e-6f);
  // With another up vector the +Z axis leans toward it.
  m.makeAlongDirection(sxVec3(1, 0, 0), sxVec3(0, 1, 0));
  m.getRow(2, dir);
  EXPECT_TRUE(dir.almostEqual(sxVec3(0, 1, 0), 1e-6f));
  m.makeAlongDirection(sxVec3(0, 0, 0));
  EXPECT_EQ(m.getType(), sxMatrix::IDENTITY);
  // Shadows on the ground from a light at (0, 0, 10).
  m.makeProjection(sxPlane(sxVec3(0, 0, 1), 0.0f), sxVec3(0, 0, 10));
  dir.fullXformPt(sxVec3(1, 2, 5), m);
  EXPECT_TRUE(dir.almostEqual(sxVec3(2, 4, 0), 1e-5f));
  // Mirror in the plane z = 1 after a translation.
  sxMatrix move = Built().xyz(1, 0, 0);
  m.makeReflection(move, sxPlane(sxVec3(0, 0, 1), 1.0f));
  dir.xformPt(sxVec3(0, 0, 3), m);
  EXPECT_TRUE(dir.almostEqual(sxVec3(1, 0, -1), 1e-6f));
  inv.invert(m);
  dir.xformPt(dir, inv);
  EXPECT_TRUE(dir.almostEqual(sxVec3(0, 0, 3), 1e-5f));
  move.makeReflection(move, sxPlane(sxVec3(0, 0, 1), 1.0f));
  EXPECT_EQ(move, m);
}

TEST(sxMatrixStack, GrowsByDoublingCountsChangesAndMatchesTheMatrixOperations) {
  sxMatrixStack s(2);
  // Depth, capacity and change count.
  auto state = [&s] { return std::tuple(s.getDepth(), s.getStackSize(), int{s.getID()}); };
  EXPECT_EQ(state(), std::tuple(0, 2, 0));
  s.postTrans(1, 2, 3);
  s.push();
  EXPECT_EQ(state(), std::tuple(1, 2, 2));
  s.push();  // grows (one change) and pushes (another)
  EXPECT_EQ(state(), std::tuple(2, 4, 4));
  sxVec3 xyz;
  s.getTop().getXYZ(xyz);
  EXPECT_EQ(xyz, sxVec3(1, 2, 3));
  s.pop();
  s.pop();
  s.pop();  // at the bottom: nothing, not even the ID
  EXPECT_EQ(state(), std::tuple(0, 4, 6));
  for (int i = 0; i < 40; ++i) s.pushIdent();
  EXPECT_EQ(state(), std::tuple(40, 64, 50));
  EXPECT_EQ(s.getTop(), sxMatrix());
  s.reset();
  EXPECT_EQ(s.getDepth(), 0);
  // The ID wraps at 16 bits.
  sxMatrixStack w(0);
  for (int i = 0; i < 65536; ++i) w.load(sxMatrix());
  EXPECT_EQ(std::pair(int{w.getID()}, w.getStackSize()), std::pair(0, 1));
  // Operations on the top match the matrix ones.
  s.load(sxMatrix());
  sxMatrix expected;
  s.preTrans(1, 0, 0), expected.preTrans(1, 0, 0);
  s.postRot(30, 0, 1, 0), expected.postRot(30, 0, 1, 0);
  s.preScale(2, 3, 4), expected.preScale(2, 3, 4);
  s.postScale(1, 1, 2), expected.postScale(1, 1, 2);
  s.preRot(10, 1, 0, 0), expected.preRot(10, 1, 0, 0);
  s.postTrans(0, 5, 0), expected.postTrans(0, 5, 0);
  EXPECT_EQ(s.getTop(), expected);
  const sxMatrix m = Built().hpr(10, 20, 30);
  s.pushMult(m);
  EXPECT_EQ(s.getTop(), product(expected, m));
  s.pushLoad(m);
  s.preMult(expected);
  EXPECT_EQ(s.getTop(), product(expected, m));
  s.postMult(m);
  const sxMatrix top = product(product(expected, m), m);
  EXPECT_EQ(std::pair(s.getTop(), s.getDepth()), std::pair(top, 2));
  // Copies are deep.
  sxMatrixStack copy(s), assigned(1);
  copy.pop();
  copy.load(sxMatrix());
  assigned = s;
  EXPECT_EQ(std::tuple(s.getTop(), copy.getDepth(), assigned.getDepth(), assigned.getTop()),
            std::tuple(top, 1, 2, top));
}

TEST(sxQuat, ProductsFollowTheMatricesAndSlerpInterpolates) {
  sxMatrixFactory make{std::mt19937(99)};
  sxQuat qa, qb, qab, inv, conj;
  sxMatrix m;
  for (int i = 0; i < 200; ++i) {
    const sxMatrix a = make.rotation(), b = make.rotation();
    a.getQuat(qa);
    b.getQuat(qb);
    qab.mult(qa, qb);
    qab.getMatrix(m);
    EXPECT_LT(matrixError(m, product(a, b)), 1e-5f);
    inv.invert(qa);
    EXPECT_TRUE(components(qa * inv).almostEqual(sxVec4(0, 0, 0, 1), 1e-5f));
    conj.conjugate(qa);
    EXPECT_NEAR(conj.dot(inv), 1.0f, 1e-5f);
  }
  sxQuat unit(0.0f, 0.0f, 0.0f, 2.0f);
  m = make.rotation();
  unit.getMatrix(m);  // scaled quaternions give the same rotation
  EXPECT_EQ(m, sxMatrix());

  qa.setMatrix(Built().rot(0, 0, 0, 1));
  qb.setMatrix(Built().rot(90, 0, 0, 1));
  qab.slerp(0.5f, qa, qb);
  qab.getMatrix(m);
  EXPECT_LT(matrixError(m, Built().rot(45, 0, 0, 1)), 1e-6f);
  qab.slerp(1.0f, qa, qb);
  EXPECT_NEAR(qab.dot(qb), 1.0f, 1e-6f);
  // The sign flip makes q and -q the same rotation.
  const sxQuat q(0.1f, 0.2f, 0.3f, std::sqrt(1.0f - 0.14f));
  qab.slerp(0.5f, q, sxQuat(-q.x, -q.y, -q.z, -q.w));
  EXPECT_FLOAT_EQ(qab.x, q.x);
  EXPECT_FLOAT_EQ(qab.w, q.w);
  // Nearly equal rotations blend linearly.
  qab.slerp(0.25f, q, sxQuat(q.x + 1e-7f, q.y, q.z, q.w));
  EXPECT_FLOAT_EQ(qab.x, q.x + 0.25e-7f);
  qab.lerp(0.5f, sxQuat(0, 0, 0, 1), sxQuat(1, 0, 0, 0));
  EXPECT_EQ(components(qab), sxVec4(0.5f, 0, 0, 0.5f));
}

}  // namespace
