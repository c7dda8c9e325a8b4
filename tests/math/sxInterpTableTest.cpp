#include <sx/sxCore.h>

#include <gtest/gtest.h>

namespace {

TEST(sxInterpTable, FloatLookups) {
  sxFloatInterpTable t;
  t.add(0.0f, 10.0f);
  t.add(1.0f, 20.0f);
  EXPECT_FLOAT_EQ(t.get(0.25f), 12.5f);
  EXPECT_FLOAT_EQ(t.get(5.0f), 20.0f);
  // Before the first key: the last value, deliberately.
  EXPECT_FLOAT_EQ(t.get(-1.0f), 20.0f);
  EXPECT_FLOAT_EQ(t.get(0.0f), 10.0f);
  // Moving forward, backward and forward again all find their segment.
  t.add(2.0f, 40.0f);
  EXPECT_FLOAT_EQ(t.get(1.5f), 30.0f);
  EXPECT_FLOAT_EQ(t.get(0.5f), 15.0f);
  EXPECT_FLOAT_EQ(t.get(1.75f), 35.0f);

  sxFloatInterpTable one;
  one.add(3.0f, 7.0f);
  EXPECT_EQ(one.get(-100.0f), 7.0f);
  EXPECT_EQ(one.get(100.0f), 7.0f);
  sxFloatInterpTable none;
  EXPECT_EQ(none.get(1.0f), 0.0f);
}

TEST(sxInterpTable, InsertionOrderRepeatsAndGrowth) {
  sxFloatInterpTable t;
  EXPECT_EQ(t.getCapacity(), 2);
  t.add(2.0f, 40.0f);
  EXPECT_EQ(t.getCapacity(), 2);
  t.add(0.0f, 10.0f);
  EXPECT_EQ(t.getCapacity(), 4);  // the second add reaches the capacity
  t.add(1.0f, 20.0f);
  ASSERT_EQ(t.getNum(), 3);
  EXPECT_EQ(t.getParam(1), 1.0f);
  // A repeated key stores into the last entry.
  t.add(1.0f, 30.0f);
  ASSERT_EQ(t.getNum(), 3);
  EXPECT_EQ(t.getValue(1), 20.0f);
  EXPECT_EQ(t.getValue(2), 30.0f);
  t.set(5, 9.0f, 9.0f);
  t.set(-1, 9.0f, 9.0f);
  EXPECT_EQ(t.getParam(2), 2.0f);
  t.set(2, 3.0f, 50.0f);
  EXPECT_EQ(t.getParam(2), 3.0f);
  EXPECT_FLOAT_EQ(t.get(2.0f), 35.0f);

  sxFloatInterpTable copy(t);
  t.reset();
  EXPECT_EQ(t.getNum(), 0);
  EXPECT_FLOAT_EQ(copy.get(2.0f), 35.0f);
  t = copy;
  t = t;
  EXPECT_EQ(t.getValue(2), 50.0f);

  sxFloatInterpTable small(0);
  EXPECT_EQ(small.getCapacity(), 1);
  const std::size_t before = sxMemory::getSize();
  {
    sxFloatInterpTable big(1);
    for (int i = 0; i < 100; ++i) big.add(static_cast<float>(100 - i), static_cast<float>(i));
    EXPECT_EQ(big.getCapacity(), 128);
    for (int i = 0; i < 99; ++i) EXPECT_LT(big.getParam(i), big.getParam(i + 1));
    EXPECT_FLOAT_EQ(big.get(50.5f), 49.5f);
  }
  EXPECT_EQ(sxMemory::getSize(), before);
}

TEST(sxInterpTable, VectorsAndOrientations) {
  sxVec3InterpTable v3;
  v3.add(0.0f, sxVec3(0, 0, 0));
  v3.add(2.0f, sxVec3(2, 4, -2));
  EXPECT_EQ(v3.get(0.5f), sxVec3(0.5f, 1, -0.5f));
  sxVec4InterpTable v4(4);
  v4.add(10.0f, sxVec4(1, 1, 1, 1));
  v4.add(20.0f, sxVec4(0, 0, 0, 0));
  EXPECT_EQ(v4.get(12.5f), sxVec4(0.75f, 0.75f, 0.75f, 0.75f));

  sxSetSqrtMethod(SXSQRT_HARDWARE);
  sxQuatInterpTable q;
  sxQuat a, b;
  sxMatrix m;
  m.makeHPR(0, 0, 0);
  a.setMatrix(m);
  m.makeHPR(80, 0, 0);
  b.setMatrix(m);
  q.add(0.0f, a);
  q.add(1.0f, b);
  sxVec3 hpr;
  q.get(0.25f).getHPR(hpr);
  EXPECT_NEAR(hpr.x, 20.0f, 1e-3f);
  q.get(0.5f).getHPR(hpr);
  EXPECT_NEAR(hpr.x, 40.0f, 1e-3f);
}

}  // namespace
