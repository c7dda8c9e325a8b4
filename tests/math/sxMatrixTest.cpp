#include <sx/sxCore.h>

#include <gtest/gtest.h>

#include "sxMathTestUtil.h"

namespace {

class sxMatrixTest : public testing::Test {
 protected:
  void SetUp() override { sxSetSqrtMethod(SXSQRT_HARDWARE); }
  sxMatrixFactory make{12345};
};

TEST_F(sxMatrixTest, IdentifyTypeClassifiesEachPart) {
  sxMatrix m;
  m.makeScale(2.0f, 2.0f, 2.0f);
  EXPECT_EQ(m.identifyType(), sxMatrix::UNIFORM_SCALE);
  m.makeScale(2.0f, 1.0f, 2.0f);
  EXPECT_EQ(m.identifyType(), sxMatrix::NONUNIFORM_SCALE);
  m.makeScale(-1.0f, 1.0f, 1.0f);  // a mirror counts as a rotation
  EXPECT_EQ(m.identifyType(), sxMatrix::ROTATION);
  m.makeIdent();
  m[1][3] = 0.5f;
  EXPECT_EQ(m.identifyType(), sxMatrix::PROJECTIVE);
  // Below the tolerance nothing counts.
  m.makeIdent();
  m[0][1] = 5e-7f;
  m[3][2] = -5e-7f;
  EXPECT_EQ(m.identifyType(), sxMatrix::IDENTITY);
  // With a table root the unit test of step 5 errs by more than the
  // tolerance, so scaled matrices are also called rotations: a bit too many
  // costs speed, never correctness.
  sxSetSqrtMethod(SXSQRT_TABLE_4K);
  m.makeScale(1.7f, 1.7f, 1.7f);
  EXPECT_EQ(m.identifyType(), sxMatrix::UNIFORM_SCALE | sxMatrix::ROTATION);
  // Construction from values takes a given type as it is.
  const float raw[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 0, 0, 1};
  EXPECT_EQ(sxMatrix(raw, sxMatrix::ROTATION).getType(), sxMatrix::ROTATION);
  EXPECT_EQ(sxMatrix(raw, 0).getType(), sxMatrix::TRANSLATION);
}

TEST_F(sxMatrixTest, HeadingPitchRoll) {
  sxMatrix m;
  m.makeHPR(0.0f, 0.0000005f, 0.0f);
  EXPECT_EQ(m.getType(), sxMatrix::IDENTITY);
  // Heading 90 turns the view from +Y to -X, as sxVec3::setH does.
  m.makeHPR(90.0f, 0.0f, 0.0f);
  EXPECT_EQ(m.getType(), sxMatrix::ROTATION);
  sxVec3 dir, expected;
  m.getDirection(dir);
  expected.setH(90.0f);
  EXPECT_TRUE(dir.almostEqual(expected, 1e-6f));
  // setHPR keeps the translation.
  m.makeXYZ(1.0f, 2.0f, 3.0f);
  m.setHPR(10.0f, 0.0f, 0.0f);
  EXPECT_EQ(m.getType(), sxMatrix::ROTATION | sxMatrix::TRANSLATION);
  m.setHPR(0.0f, 0.0f, 0.0f);
  EXPECT_EQ(m.getType(), sxMatrix::TRANSLATION);

  for (int i = 0; i < 500; ++i) {
    const sxVec3 hpr(make.uniform(-179, 179), make.uniform(-85, 85), make.uniform(-179, 179));
    m.makeHPR(hpr);
    sxVec3 back;
    m.getHPR(back);
    EXPECT_TRUE(back.almostEqual(hpr, 2e-3f)) << hpr.x << " " << hpr.y << " " << hpr.z;
    sxQuat q;
    q.setHPR(hpr);
    q.getHPR(back);
    EXPECT_TRUE(back.almostEqual(hpr, 2e-3f)) << hpr.x << " " << hpr.y << " " << hpr.z;
    sxMatrix fromQuat;
    m.getQuat(q);
    fromQuat.setQuat(q);
    EXPECT_LT(sxMatrixError(fromQuat, m), 1e-5f);
  }
}

TEST_F(sxMatrixTest, RotationAboutAnAxis) {
  sxMatrix m;
  sxVec3 v;
  m.makeRot(120.0f, sxVec3(1, 1, 1));
  v.xformVec(sxVec3(1, 0, 0), m);
  EXPECT_TRUE(v.almostEqual(sxVec3(0, 1, 0), 1e-5f));
  m.makeRot(5e-7f, 1.0f, 0.0f, 0.0f);
  EXPECT_EQ(m.getType(), sxMatrix::IDENTITY);
  // The same sense as heading.
  sxMatrix h;
  h.makeHPR(35.0f, 0.0f, 0.0f);
  m.makeRot(35.0f, 0.0f, 0.0f, 1.0f);
  EXPECT_LT(sxMatrixError(m, h), 1e-6f);
}

// Every pair of type groups goes through its own path; all must agree with
// the plain product within 1e-5 of the largest element.
TEST_F(sxMatrixTest, FastProductsAgreeWithTheFullProduct) {
  for (int round = 0; round < 20; ++round) {
    const std::vector<sxMatrix> all = make.everyType();
    for (const sxMatrix& a : all) {
      for (const sxMatrix& b : all) {
        sxMatrix r;
        r.mult(a, b);
        const sxMatrix expected = sxReferenceProduct(a, b);
        ASSERT_LT(sxMatrixError(r, expected), 1e-5f) << a.getType() << " by " << b.getType();
        // The product's type claims every part that it holds.
        sxMatrix classified = r;
        const unsigned int found = classified.identifyType() & ~sxMatrix::IDENTITY;
        if (r.getType() != sxMatrix::IDENTITY) {
          EXPECT_EQ(found & ~r.getType(), 0u) << a.getType() << " by " << b.getType();
        }
        // The operands may be the result.
        sxMatrix alias = a;
        alias.postMult(b);
        EXPECT_EQ(alias, r);
        alias = b;
        alias.preMult(a);
        EXPECT_EQ(alias, r);
      }
    }
  }
}

TEST_F(sxMatrixTest, ProductEdgeCases) {
  const sxMatrix b = make.general();
  sxMatrix r;
  r.mult(sxMatrix(), b);
  EXPECT_EQ(r, b);
  sxMatrix t1;
  t1.makeXYZ(1, 2, 3);
  // An unknown operand leaves the product's type to identification.
  sxMatrix unknown = t1;
  unknown.setType(sxMatrix::UNKNOWN);
  sxMatrix rot = make.rotation();
  r.mult(rot, unknown);
  EXPECT_EQ(r.getType(), sxMatrix::ROTATION | sxMatrix::TRANSLATION);
  // pre and post forms of the builders.
  r.makeIdent();
  r.postTrans(1, 0, 0);
  r.postRot(90, 0, 0, 1);
  r.postScale(2, 2, 2);
  sxVec3 p;
  p.xformPt(sxVec3(0, 0, 0), r);
  EXPECT_TRUE(p.almostEqual(sxVec3(0, 2, 0), 1e-5f));
  r.makeIdent();
  r.preTrans(1, 0, 0);
  r.preRot(90, 0, 0, 1);
  r.preScale(2, 2, 2);
  p.xformPt(sxVec3(0, 0, 0), r);
  EXPECT_TRUE(p.almostEqual(sxVec3(1, 0, 0), 1e-5f));
}

TEST_F(sxMatrixTest, InverseTimesMatrixIsTheIdentity) {
  for (int round = 0; round < 50; ++round) {
    for (const sxMatrix& m : make.everyType()) {
      sxMatrix inv;
      ASSERT_TRUE(inv.invert(m)) << m.getType();
      EXPECT_EQ(inv.getType(), m.getType());
      sxMatrix product;
      product.mult(m, inv);
      EXPECT_LT(sxMatrixError(product, sxMatrix()), 2e-4f) << m.getType();
      product.mult(inv, m);
      EXPECT_LT(sxMatrixError(product, sxMatrix()), 2e-4f) << m.getType();
      // The closed forms agree with the general inverse.
      sxMatrix full;
      ASSERT_TRUE(full.invertFull(m));
      EXPECT_LT(sxMatrixError(inv, full), 1e-4f) << m.getType();
      // In place.
      sxMatrix self = m;
      self.invert(self);
      EXPECT_EQ(self, inv);
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
  EXPECT_EQ(r, sxMatrix());
  EXPECT_EQ(r.getType(), sxMatrix::IDENTITY);
  // A zero pivot of a non-singular matrix is worked around by pivoting.
  const float swap[16] = {0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0};
  m.set(swap, 0);
  EXPECT_TRUE(r.invert(m));
  EXPECT_EQ(r, m);
  // A zero column with no zero row meets an exactly zero pivot, which is
  // nudged: no message, and the division goes through.
  const float zeroColumn[16] = {1, 0, 0, 0, 1, 0, 1, 0, 0, 0, 1, 1, 0, 0, 0, 1};
  m.set(zeroColumn, 0);
  testing::internal::CaptureStdout();
  EXPECT_TRUE(r.invert(m));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_GT(std::fabs(r[1][1]), 1e10f);
  // An affine matrix with a tiny determinant falls back to the general
  // inverse, which still solves it.
  sxMatrix tiny;
  tiny.makeScale(0.01f, 0.02f, 0.03f);
  tiny.postRot(30, 1, 0, 0);
  tiny.postTrans(1, 2, 3);
  ASSERT_EQ(tiny.getType(),
            sxMatrix::ROTATION | sxMatrix::NONUNIFORM_SCALE | sxMatrix::TRANSLATION);
  ASSERT_TRUE(r.invert(tiny));
  sxMatrix product;
  product.mult(tiny, r);
  EXPECT_LT(sxMatrixError(product, sxMatrix()), 1e-4f);
}

TEST_F(sxMatrixTest, RowsColumnsAndTranspose) {
  sxMatrix m;
  m.setRow(3, 1, 2, 3, 1, 0);
  EXPECT_EQ(m.getType(), sxMatrix::TRANSLATION);
  m.setCol(3, 0, 0, 0.5f, 1, sxMatrix::PROJECTIVE);
  EXPECT_EQ(m.getType(), sxMatrix::PROJECTIVE);
  float a, b, c, d;
  m.getCol(3, a, b, c, d);
  EXPECT_EQ(c, 0.5f);
  m.getRow(3, a, b, c, d);
  EXPECT_EQ(b, 2.0f);
  sxVec3 v;
  m.getCol(0, v);
  EXPECT_EQ(v, sxVec3(1, 0, 0));
  sxMatrix t;
  t.transpose(m);
  EXPECT_EQ(t[3][2], 0.5f);
  t.transpose();
  EXPECT_EQ(t, m);
  sxMatrix sum;
  sum.add(m, m);
  sum.sub(sum, m);
  EXPECT_EQ(sum, m);
}

TEST_F(sxMatrixTest, AlongDirectionProjectionAndReflection) {
  sxMatrix m, hpr;
  sxVec3 dir;
  for (int i = 0; i < 100; ++i) {
    const float h = make.uniform(-170, 170), p = make.uniform(-80, 80);
    dir.setHP(h, p);
    m.makeAlongDirection(dir * 3.0f);
    hpr.makeHPR(h, p, 0.0f);
    EXPECT_LT(sxMatrixError(m, hpr), 1e-5f);
  }
  // Straight up: Z is no help, the X axis is kept.
  m.makeAlongDirection(sxVec3(0, 0, 2));
  hpr.makeHPR(0.0f, 90.0f, 0.0f);
  EXPECT_LT(sxMatrixError(m, hpr), 1e-6f);
  // With another up vector the +Z axis leans toward it.
  m.makeAlongDirection(sxVec3(1, 0, 0), sxVec3(0, 1, 0));
  sxVec3 z;
  m.getRow(2, z);
  EXPECT_TRUE(z.almostEqual(sxVec3(0, 1, 0), 1e-6f));
  m.makeAlongDirection(sxVec3(0, 0, 0));
  EXPECT_EQ(m.getType(), sxMatrix::IDENTITY);

  // Shadows on the ground from a light at (0, 0, 10).
  const sxPlane ground(sxVec3(0, 0, 1), 0.0f);
  m.makeProjection(ground, sxVec3(0, 0, 10));
  sxVec3 s;
  s.fullXformPt(sxVec3(1, 2, 5), m);
  EXPECT_TRUE(s.almostEqual(sxVec3(2, 4, 0), 1e-5f));

  // Mirror in the plane z = 1 after a translation.
  sxMatrix move;
  move.makeXYZ(1, 0, 0);
  m.makeReflection(move, sxPlane(sxVec3(0, 0, 1), 1.0f));
  s.xformPt(sxVec3(0, 0, 3), m);
  EXPECT_TRUE(s.almostEqual(sxVec3(1, 0, -1), 1e-6f));
  sxMatrix inv;
  inv.invert(m);
  s.xformPt(s, inv);
  EXPECT_TRUE(s.almostEqual(sxVec3(0, 0, 3), 1e-5f));
  move.makeReflection(move, sxPlane(sxVec3(0, 0, 1), 1.0f));
  EXPECT_EQ(move, m);
}

}  // namespace
