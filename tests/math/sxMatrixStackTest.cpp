#include <sx/sxCore.h>

#include <gtest/gtest.h>

#include "sxMathTestUtil.h"

namespace {

TEST(sxMatrixStack, GrowsByDoublingAndCountsChanges) {
  sxMatrixStack s(2);
  EXPECT_EQ(s.getID(), 0);
  s.postTrans(1, 2, 3);
  s.push();
  EXPECT_EQ(s.getStackSize(), 2);
  EXPECT_EQ(s.getID(), 2);
  s.push();  // grows (one change) and pushes (another)
  EXPECT_EQ(s.getDepth(), 2);
  EXPECT_EQ(s.getStackSize(), 4);
  EXPECT_EQ(s.getID(), 4);
  sxVec3 xyz;
  s.getTop().getXYZ(xyz);
  EXPECT_EQ(xyz, sxVec3(1, 2, 3));
  s.pop();
  s.pop();
  const auto id = s.getID();
  s.pop();  // at the bottom: nothing, not even the ID
  EXPECT_EQ(s.getDepth(), 0);
  EXPECT_EQ(s.getID(), id);
  for (int i = 0; i < 40; ++i) s.pushIdent();
  EXPECT_EQ(s.getDepth(), 40);
  EXPECT_EQ(s.getStackSize(), 64);
  EXPECT_EQ(s.getTop(), sxMatrix());
  s.reset();
  EXPECT_EQ(s.getDepth(), 0);
  // The ID wraps at 16 bits.
  sxMatrixStack w(1);
  for (int i = 0; i < 65536; ++i) w.load(sxMatrix());
  EXPECT_EQ(w.getID(), 0);
  EXPECT_EQ(sxMatrixStack(0).getStackSize(), 1);
}

TEST(sxMatrixStack, TopOperationsMatchTheMatrixOnes) {
  sxMatrixStack s(4);
  sxMatrix expected;
  s.preTrans(1, 0, 0), expected.preTrans(1, 0, 0);
  s.postRot(30, 0, 1, 0), expected.postRot(30, 0, 1, 0);
  s.preScale(2, 3, 4), expected.preScale(2, 3, 4);
  s.postScale(1, 1, 2), expected.postScale(1, 1, 2);
  s.preRot(10, 1, 0, 0), expected.preRot(10, 1, 0, 0);
  s.postTrans(0, 5, 0), expected.postTrans(0, 5, 0);
  EXPECT_EQ(s.getTop(), expected);
  sxMatrix m;
  m.makeHPR(10, 20, 30);
  s.pushMult(m);
  sxMatrix product;
  product.mult(expected, m);
  EXPECT_EQ(s.getTop(), product);
  s.pushLoad(m);
  EXPECT_EQ(s.getTop(), m);
  s.preMult(expected);
  product.mult(expected, m);
  EXPECT_EQ(s.getTop(), product);
  s.postMult(m);
  product.postMult(m);
  EXPECT_EQ(s.getTop(), product);
  EXPECT_EQ(s.getDepth(), 2);
  // Copies are deep.
  sxMatrixStack copy(s);
  copy.pop();
  copy.load(sxMatrix());
  EXPECT_EQ(s.getTop(), product);
  EXPECT_EQ(copy.getDepth(), 1);
  sxMatrixStack assigned(1);
  assigned = s;
  EXPECT_EQ(assigned.getDepth(), 2);
  EXPECT_EQ(assigned.getTop(), product);
}

TEST(sxQuat, ProductsFollowTheMatrices) {
  sxMatrixFactory make(99);
  for (int i = 0; i < 200; ++i) {
    const sxMatrix a = make.rotation(), b = make.rotation();
    sxQuat qa, qb, qab;
    a.getQuat(qa);
    b.getQuat(qb);
    qab.mult(qa, qb);
    sxMatrix fromQuat, expected;
    qab.getMatrix(fromQuat);
    expected.mult(a, b);
    EXPECT_LT(sxMatrixError(fromQuat, expected), 1e-5f);
    sxQuat inv;
    inv.invert(qa);
    sxQuat one = qa * inv;
    EXPECT_NEAR(one.w, 1.0f, 1e-5f);
    EXPECT_NEAR(one.x, 0.0f, 1e-5f);
    sxQuat conj;
    conj.conjugate(qa);
    EXPECT_NEAR(conj.dot(inv), 1.0f, 1e-5f);
  }
  sxQuat q(0.0f, 0.0f, 0.0f, 1.0f);
  sxMatrix m = sxMatrixFactory(1).rotation();
  q.getMatrix(m);
  EXPECT_EQ(m.getType(), sxMatrix::IDENTITY);
  q *= 2.0f;
  EXPECT_EQ(q.w, 2.0f);
  q.getMatrix(m);  // scaled quaternions give the same rotation
  EXPECT_EQ(m, sxMatrix());
}

TEST(sxQuat, Slerp) {
  sxQuat a, b;
  sxMatrix m;
  m.makeRot(0.0f, 0, 0, 1);
  a.setMatrix(m);
  m.makeRot(90.0f, 0, 0, 1);
  b.setMatrix(m);
  sxQuat r;
  r.slerp(0.5f, a, b);
  sxMatrix half;
  r.getMatrix(half);
  m.makeRot(45.0f, 0, 0, 1);
  EXPECT_LT(sxMatrixError(half, m), 1e-6f);
  r.slerp(1.0f, a, b);
  EXPECT_NEAR(r.dot(b), 1.0f, 1e-6f);
  // The sign flip makes q and -q the same rotation.
  const sxQuat q(0.1f, 0.2f, 0.3f, std::sqrt(1.0f - 0.14f));
  const sxQuat minus(-q.x, -q.y, -q.z, -q.w);
  r.slerp(0.5f, q, minus);
  EXPECT_FLOAT_EQ(r.x, q.x);
  EXPECT_FLOAT_EQ(r.w, q.w);
  // Nearly equal rotations blend linearly.
  const sxQuat near(q.x + 1e-7f, q.y, q.z, q.w);
  r.slerp(0.25f, q, near);
  EXPECT_FLOAT_EQ(r.x, q.x + 0.25e-7f);
  r.lerp(0.5f, sxQuat(0, 0, 0, 1), sxQuat(1, 0, 0, 0));
  EXPECT_EQ(r.x, 0.5f);
  EXPECT_EQ(r.w, 0.5f);
}

}  // namespace
