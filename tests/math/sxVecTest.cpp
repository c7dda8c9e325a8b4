#include <cmath>
#include <limits>
#include <tuple>

#include "sxMathTestUtil.h"

namespace {

// Worst relative error of sxSqrt over a dense logarithmic sweep of [1e-6, 1e6].
double worstRelativeError() {
  double worst = 0.0;
  constexpr int samples = 400000;
  for (int i = 0; i <= samples; ++i) {
    const float x = static_cast<float>(std::pow(10.0, -6.0 + 12.0 * i / samples));
    const double exact = std::sqrt(static_cast<double>(x));
    worst = std::fmax(worst, std::fabs(sxSqrt(x) - exact) / exact);
  }
  return worst;
}

TEST(sxSqrt, TableErrorIsBoundedAndExactAtPowersOfFourAndOtherMethodsKeepIt) {
  // The index bits are the mantissa bits that pick an entry within one half.
  const std::pair<SXSQRT_METHOD, int> tables[] = {
      {SXSQRT_TABLE_256, 7}, {SXSQRT_TABLE_1K, 9}, {SXSQRT_TABLE_4K, 11}, {SXSQRT_TABLE_16K, 13}};
  for (const auto& [method, indexBits] : tables) {
    sxSetSqrtMethod(method);
    // Truncating the input to k mantissa bits errs by up to 2^-k relative,
    // which the root halves; float rounding adds one unit in the last place.
    const double bound = std::ldexp(1.0, -(indexBits + 1)) + std::ldexp(1.0, -23);
    const double worst = worstRelativeError();
    EXPECT_LE(worst, bound) << "method " << method;
    // The bound is reached, so the table really has the size named.
    EXPECT_GT(worst, 0.75 * bound) << "method " << method;
    for (auto [x, root] : {std::pair(0.0f, 0.0f), {-0.0f, 0.0f}, {0.25f, 0.5f}, {65536.0f, 256.0f}})
      EXPECT_EQ(sxSqrt(x), root) << "method " << method << ", root of " << x;
    // An odd exponent takes the [2, 4) half: sqrt(8) = 2 sqrt(2).
    EXPECT_FLOAT_EQ(sxSqrt(8.0f), 2.0f * sxSqrt(2.0f));
  }
  sxSetSqrtMethod(SXSQRT_HARDWARE);
  EXPECT_LE(worstRelativeError(), std::ldexp(1.0, -24));
  EXPECT_EQ(sxSqrt(0.0f), 0.0f);
  // Methods outside the table keep the table in force.
  sxSetSqrtMethod(SXSQRT_TABLE_256);
  const float coarse = sxSqrt(1.99f);
  sxSetSqrtMethod(SXSQRT_TABLE_16K);
  const float fine = sxSqrt(1.99f);
  ASSERT_NE(coarse, fine);
  sxSetSqrtMethod(static_cast<SXSQRT_METHOD>(7));
  EXPECT_EQ(sxGetSqrtMethod(), 7);
  EXPECT_EQ(sxSqrt(1.99f), fine);
  // Hardware and back to the same size neither frees nor rebuilds the table.
  sxSetSqrtMethod(SXSQRT_HARDWARE);
  EXPECT_NE(sxSqrt(1.99f), fine);
  sxSetSqrtMethod(SXSQRT_TABLE_16K);
  EXPECT_EQ(sxSqrt(1.99f), fine);
  sxSetSqrtMethod(SXSQRT_TABLE_256);
  EXPECT_EQ(sxSqrt(1.99f), coarse);
}

class sxVecTest : public sxHardwareSqrtTest {};

TEST_F(sxVecTest, NormalizeAndArithmeticAllowAliasing) {
  // Too short: zeroed, 0 returned; within 1e-6 of unit square length: kept, 1.
  sxVec3 tiny(1e-7f, 0.0f, 0.0f), nearUnit(0.0f, 0.0f, 1.0000002f);
  EXPECT_EQ(std::tuple(tiny.normalize(), nearUnit.normalize()), std::tuple(0.0f, 1.0f));
  EXPECT_EQ(std::tuple(tiny, nearUnit.z), std::tuple(sxVec3(0.0f, 0.0f, 0.0f), 1.0000002f));
  // The 2- and 4-component forms zero short vectors but return their length.
  sxVec2 small(1e-7f, 0.0f);
  EXPECT_FLOAT_EQ(small.normalize(), 1e-7f);
  EXPECT_EQ(small, sxVec2(0.0f, 0.0f));
  sxVec4 w(0.0f, 0.0f, 0.0f, 2.0f);
  EXPECT_EQ(w.normalize(), 2.0f);
  EXPECT_EQ(w, sxVec4(0.0f, 0.0f, 0.0f, 1.0f));
  sxVec3 a(1.0f, 2.0f, 3.0f), c;
  const sxVec3 b(4.0f, -5.0f, 6.0f);
  EXPECT_EQ(std::pair(a - b, a / 4.0f), std::pair(sxVec3(-3, 7, -3), sxVec3(0.25f, 0.5f, 0.75f)));
  EXPECT_FLOAT_EQ(a * b, 12.0f);
  c.combine(2.0f, a, -1.0f, b);
  EXPECT_EQ(c, sxVec3(-2.0f, 9.0f, 0.0f));
  c.addScaled(a, 0.5f, b);
  EXPECT_EQ(c, sxVec3(3.0f, -0.5f, 6.0f));
  // almostEqual is inclusive and checks every component.
  EXPECT_TRUE(a.almostEqual(sxVec3(1.5f, 2.5f, 2.5f), 0.5f));
  EXPECT_FALSE(a.almostEqual(sxVec3(1.5f, 2.5f, 2.4f), 0.5f));
  EXPECT_FALSE(a.almostEqual(sxVec3(1.6f, 2.0f, 3.0f), 0.5f));
  a.add(a, a);
  EXPECT_EQ(a, sxVec3(2.0f, 4.0f, 6.0f));
  a.cross(a, b);  // the argument is the result
  EXPECT_EQ(a, sxVec3(54.0f, 12.0f, -26.0f));
  EXPECT_NE(sxVec4(1, 2, 3, 4), sxVec4(1, 2, 3, 5));
  sxVec2 q(1.0f, 1.0f);
  q += sxVec2(1.0f, 2.0f);
  q *= 3.0f;
  q -= sxVec2(1.0f, 1.0f);
  q /= 2.0f;
  EXPECT_EQ(q, sxVec2(2.5f, 4.0f));
}

TEST_F(sxVecTest, ApproximationsQuadrantsNormalsAnglesAndLerp) {
  EXPECT_FLOAT_EQ(sxVec2(3.0f, -4.0f).approxLength(sxVec2(100.0f, 100.0f)), 4.0f + 1.0f);
  EXPECT_FLOAT_EQ(sxVec2(-6.0f, 3.0f).approxDist(sxVec2(0.0f, 0.0f)), 6.0f + 1.0f);
  // (3, 3) gives 4, then against 6: 6 + 4/3.
  EXPECT_FLOAT_EQ(sxVec3(3.0f, 3.0f, 6.0f).approxLength(), 6.0f + 4.0f / 3.0f);
  EXPECT_FLOAT_EQ(sxVec3(9.0f, 0.0f, 3.0f).approxDist(sxVec3(0.0f, 0.0f, 0.0f)), 10.0f);
  // Zero counts as positive.
  EXPECT_EQ(std::tuple(sxVec2(0, 0).getQuadrant(), sxVec2(-1, 0).getQuadrant(),
                       int(sxVec3(-1, 2, -3).getOctant())),
            std::tuple(sxVec2::QUADRANT_PP, sxVec2::QUADRANT_NP, 5));
  const sxVec3 tri[3] = {{0, 0, 0}, {0, 2, 0}, {2, 0, 0}};
  sxVec3 n;
  n.makeNormal(tri);
  EXPECT_EQ(n, sxVec3(0.0f, 0.0f, -1.0f));
  EXPECT_FLOAT_EQ(sxVec3(1, 0, 0).angleBetween(sxVec3(-2, 0, 0)), 180.0f);
  EXPECT_EQ(sxVec3(1, 1, 0).angleBetween(sxVec3(2, 2, 0)), 0.0f);
  n.lerp(0.25f, sxVec3(0, 4, 8), sxVec3(4, 0, 8));
  EXPECT_EQ(n, sxVec3(1, 3, 8));
}

TEST_F(sxVecTest, HeadingAndPitch) {
  sxVec3 v;
  // Straight up and down, over the top, and past a full turn.
  for (auto [pitch, dir] : {std::pair(90.0f, sxVec3(0, 0, 1)),
                            {-90.0f, sxVec3(0, 0, -1)},
                            {180.0f, sxVec3(0, -1, 0)},
                            {405.0f, sxVec3(0, std::sqrt(0.5f), std::sqrt(0.5f))}}) {
    v.setHP(0.0f, pitch);
    EXPECT_TRUE(v.almostEqual(dir, 1e-6f)) << pitch;
  }
  v.setH(90.0f);
  EXPECT_TRUE(v.almostEqual(sxVec3(-1.0f, 0.0f, 0.0f), 1e-6f));
  v.setHP(1e30f, std::numeric_limits<float>::infinity());  // ends, whatever it gives
  float h, p;
  sxVec3(0, -1, 0).getHP(h, p);
  EXPECT_FLOAT_EQ(h, 180.0f);
  for (float heading = -80.0f; heading < 260.0f; heading += 37.0f) {
    for (float pitch = -80.0f; pitch <= 80.0f; pitch += 20.0f) {
      v.setHP(heading, pitch);
      v.getHP(h, p);
      EXPECT_NEAR(h, heading, 1e-3f);
      EXPECT_NEAR(p, pitch, 1e-3f);
    }
  }
}

TEST_F(sxVecTest, TransformsUseRowVectors) {
  sxMatrix m = Built().rot(90, 0, 0, 1);
  m.setXYZ(10.0f, 20.0f, 30.0f);
  sxVec3 v;
  v.xformVec(sxVec3(1, 0, 0), m);
  EXPECT_TRUE(v.almostEqual(sxVec3(0, 1, 0), 1e-6f));
  v.xformPt(sxVec3(1, 0, 0), m);
  EXPECT_TRUE(v.almostEqual(sxVec3(10, 21, 30), 1e-5f));
  EXPECT_EQ(sxVec3(1, 0, 0) * m, v);
  v.fullXformPt(sxVec3(1, 0, 0), m);
  EXPECT_TRUE(v.almostEqual(sxVec3(10, 21, 30), 1e-5f));
  sxVec4 h;
  h.xform(sxVec4(1, 0, 0, 0), m);
  EXPECT_TRUE(h.almostEqual(sxVec4(0, 1, 0, 0), 1e-6f));
  EXPECT_TRUE((sxVec4(1, 0, 0, 1) * m).almostEqual(sxVec4(10, 21, 30, 1), 1e-5f));
  // w = 2 divides; w = 0 divides by +1e-6 instead, and a tiny w loses its sign.
  m.makeIdent();
  for (const auto& [w, point, expected] : {std::tuple(2.0f, sxVec3(2, 4, 6), sxVec3(1, 2, 3)),
                                           {0.0f, sxVec3(2e-6f, 0, -1e-6f), sxVec3(2, 0, -1)},
                                           {-1e-9f, sxVec3(1e-6f, 0, 0), sxVec3(1, 0, 0)}}) {
    m[3][3] = w;
    m.identifyType();
    v.fullXformPt(point, m);
    EXPECT_TRUE(v.almostEqual(expected, w == 2.0f ? 0.0f : 1e-5f)) << w;
  }
}

TEST_F(sxVecTest, ColourSpaceRoundTrip) {
  sxVec4 hsv, rgb;
  hsv.RGBtoHSV(sxVec4(1.0f, 0.0f, 0.5f, 1.0f));  // negative hue wraps
  EXPECT_TRUE(hsv.almostEqual(sxVec4(330.0f, 1.0f, 1.0f, 1.0f), 1e-4f));
  hsv.RGBtoHSV(sxVec4(0.0f, 0.0f, 0.0f, 1.0f));
  EXPECT_EQ(hsv, sxVec4(-1.0f, 0.0f, 0.0f, 1.0f));
  // No hue is grey, a hue without saturation black; past 360 only alpha is set.
  for (const auto& [in, out] :
       {std::pair(sxVec4(-1, 0, 0.4f, 0.5f), sxVec4(0.4f, 0.4f, 0.4f, 0.5f)),
        {sxVec4(120, 0, 0.4f, 0.5f), sxVec4(0, 0, 0, 0.5f)},
        {sxVec4(360, 1, 1, 1), sxVec4(1, 0, 0, 1)},
        {sxVec4(400, 1, 1, 0.25f), sxVec4(9, 9, 9, 0.25f)}}) {
    rgb.set(9.0f, 9.0f, 9.0f, 9.0f);
    rgb.HSVtoRGB(in);
    EXPECT_EQ(rgb, out);
  }
  for (float r = 0.0f; r <= 1.0f; r += 0.25f) {
    for (float g = 0.0f; g <= 1.0f; g += 0.25f) {
      for (float b = 0.1f; b <= 1.0f; b += 0.3f) {
        const sxVec4 colour(r, g, b, 0.7f);
        hsv.RGBtoHSV(colour);
        rgb.HSVtoRGB(hsv);
        EXPECT_TRUE(rgb.almostEqual(colour, 1e-5f)) << r << " " << g << " " << b;
        hsv.HSVtoRGB(hsv);  // in place
        EXPECT_EQ(hsv, rgb);
      }
    }
  }
}

TEST_F(sxVecTest, ByteColoursTruncateAndWrap) {
  sxUByteVec3 c;
  c.set(sxVec3(1.0f, 0.5f, 1.5f));
  EXPECT_EQ(c, sxUByteVec3(255, 127, 126));
  c.set(0.999f, -0.5f, 1e20f);
  EXPECT_EQ(c, sxUByteVec3(254, 129, 0));
  c.set(0xAABBCCDDu);
  EXPECT_EQ(c, sxUByteVec3(0xDD, 0xCC, 0xBB));
  sxUByteVec4 c4;
  c4.set(0xAABBCCDDu);
  EXPECT_EQ(c4, sxUByteVec4(0xDD, 0xCC, 0xBB, 0xAA));
  c4.set(sxVec3(0.0f, 1.0f, 0.0f));
  EXPECT_EQ(c4, sxUByteVec4(0, 255, 0, 255));
  c4.set(sxVec4(0.0f, 1.0f, 0.0f, 0.5f));
  EXPECT_EQ(c4, sxUByteVec4(0, 255, 0, 127));
  c4.set(1, 2, 3, 260);
  EXPECT_EQ(c4.a, 4);
  sxUByteVec3 a(200, 10, 0), b(100, 20, 1);
  EXPECT_EQ(a + b, sxUByteVec3(44, 30, 1));
  EXPECT_EQ(a - b, sxUByteVec3(100, 246, 255));
  EXPECT_EQ(a * 1.5f, sxUByteVec3(44, 15, 0));
  a.combine(0.5f, a, 0.5f, b);
  EXPECT_EQ(a, sxUByteVec3(150, 15, 0));
  a.addScaled(2.0f, b);
  EXPECT_EQ(a, sxUByteVec3(94, 55, 2));
  // Unsigned tolerance: a component below the tolerance never matches.
  EXPECT_FALSE(sxUByteVec3(3, 3, 3).almostEqual(sxUByteVec3(2, 2, 2), 5));
  EXPECT_FALSE(sxUByteVec3(0, 2, 2).almostEqual(sxUByteVec3(6, 6, 6), 5));
}

TEST(sxInterpTable, FloatLookupsInsertionOrderRepeatsAndGrowth) {
  sxFloatInterpTable t, one, u;
  t.add(0.0f, 10.0f);
  t.add(1.0f, 20.0f);
  // Before the first key: the last value, deliberately.
  for (auto [at, value] : {std::pair(0.25f, 12.5f), {5.0f, 20.0f}, {-1.0f, 20.0f}, {0.0f, 10.0f}})
    EXPECT_FLOAT_EQ(t.get(at), value) << at;
  // Moving forward, backward and forward again all find their segment.
  t.add(2.0f, 40.0f);
  for (auto [at, value] : {std::pair(1.5f, 30.0f), {0.5f, 15.0f}, {1.75f, 35.0f}})
    EXPECT_FLOAT_EQ(t.get(at), value) << at;
  one.add(3.0f, 7.0f);
  EXPECT_EQ(std::tuple(one.get(-100.0f), one.get(100.0f), u.get(1.0f)),
            std::tuple(7.0f, 7.0f, 0.0f));  // u is empty
  // Insertion order, repeated keys and growth.
  u.add(2.0f, 40.0f);
  u.add(0.0f, 10.0f);
  EXPECT_EQ(u.getCapacity(), 4);  // the second add reaches the capacity of 2
  u.add(1.0f, 20.0f);
  ASSERT_EQ(u.getNum(), 3);
  EXPECT_EQ(u.getParam(1), 1.0f);
  // A repeated key stores into the last entry.
  u.add(1.0f, 30.0f);
  ASSERT_EQ(u.getNum(), 3);
  EXPECT_EQ(std::pair(u.getValue(1), u.getValue(2)), std::pair(20.0f, 30.0f));
  u.set(5, 9.0f, 9.0f);
  u.set(-1, 9.0f, 9.0f);
  EXPECT_EQ(u.getParam(2), 2.0f);
  u.set(2, 3.0f, 50.0f);
  EXPECT_EQ(u.getParam(2), 3.0f);
  EXPECT_FLOAT_EQ(u.get(2.0f), 35.0f);
  sxFloatInterpTable copy(u);
  u.reset();
  EXPECT_EQ(std::pair(u.getNum(), copy.get(2.0f)), std::pair(0, 35.0f));
  u = copy;
  u = u;
  EXPECT_EQ(u.getValue(2), 50.0f);
  EXPECT_EQ(sxFloatInterpTable(0).getCapacity(), 1);
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
  sxVec4InterpTable v4(4);
  v4.add(10.0f, sxVec4(1, 1, 1, 1));
  v4.add(20.0f, sxVec4(0, 0, 0, 0));
  EXPECT_EQ(v4.get(12.5f), sxVec4(0.75f, 0.75f, 0.75f, 0.75f));
  sxSetSqrtMethod(SXSQRT_HARDWARE);
  sxQuatInterpTable q;
  sxQuat a;
  a.setMatrix(Built().hpr(0, 0, 0));
  q.add(0.0f, a);
  a.setMatrix(Built().hpr(80, 0, 0));
  q.add(1.0f, a);
  sxVec3 hpr;
  q.get(0.25f).getHPR(hpr);
  EXPECT_NEAR(hpr.x, 20.0f, 1e-3f);
}

}  // namespace
