#include <sx/sxCore.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

class sxVecTest : public testing::Test {
 protected:
  void SetUp() override { sxSetSqrtMethod(SXSQRT_HARDWARE); }
};

TEST_F(sxVecTest, NormalizeRules) {
  sxVec3 zero(0.0f, 0.0f, 0.0f);
  EXPECT_EQ(zero.normalize(), 0.0f);
  // Within 1e-6 of unit square length: untouched, 1 returned.
  sxVec3 nearUnit(0.0f, 0.0f, 1.0000002f);
  EXPECT_EQ(nearUnit.normalize(), 1.0f);
  EXPECT_EQ(nearUnit.z, 1.0000002f);
  sxVec3 tiny(1e-7f, 0.0f, 0.0f);
  EXPECT_EQ(tiny.normalize(), 0.0f);

  // The two- and four-component forms zero short vectors but return the
  // length all the same.
  sxVec2 small(1e-7f, 0.0f);
  EXPECT_FLOAT_EQ(small.normalize(), 1e-7f);
  EXPECT_EQ(small, sxVec2(0.0f, 0.0f));
  sxVec4 w(0.0f, 0.0f, 0.0f, 2.0f);
  EXPECT_EQ(w.normalize(), 2.0f);
  EXPECT_EQ(w, sxVec4(0.0f, 0.0f, 0.0f, 1.0f));
}

TEST_F(sxVecTest, SharedArithmeticAllowsAliasing) {
  sxVec3 a(1.0f, 2.0f, 3.0f);
  const sxVec3 b(4.0f, -5.0f, 6.0f);
  EXPECT_EQ(a - b, sxVec3(-3.0f, 7.0f, -3.0f));
  EXPECT_EQ(a / 4.0f, sxVec3(0.25f, 0.5f, 0.75f));
  EXPECT_FLOAT_EQ(a * b, 12.0f);
  sxVec3 c;
  c.combine(2.0f, a, -1.0f, b);
  EXPECT_EQ(c, sxVec3(-2.0f, 9.0f, 0.0f));
  c.addScaled(a, 0.5f, b);
  EXPECT_EQ(c, sxVec3(3.0f, -0.5f, 6.0f));
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
  // almostEqual is inclusive and checks every component.
  const sxVec3 v(1.0f, 2.0f, 3.0f);
  EXPECT_TRUE(v.almostEqual(sxVec3(1.5f, 2.5f, 2.5f), 0.5f));
  EXPECT_FALSE(v.almostEqual(sxVec3(1.5f, 2.5f, 2.4f), 0.5f));
  EXPECT_FALSE(v.almostEqual(sxVec3(1.6f, 2.0f, 3.0f), 0.5f));
}

TEST_F(sxVecTest, ApproximateLengthsQuadrantsAndOctants) {
  EXPECT_FLOAT_EQ(sxVec2(3.0f, -4.0f).approxLength(sxVec2(100.0f, 100.0f)), 4.0f + 1.0f);
  EXPECT_FLOAT_EQ(sxVec2(-6.0f, 3.0f).approxDist(sxVec2(0.0f, 0.0f)), 6.0f + 1.0f);
  // (3, 3) gives 4, then against 6: 6 + 4/3.
  EXPECT_FLOAT_EQ(sxVec3(3.0f, 3.0f, 6.0f).approxLength(), 6.0f + 4.0f / 3.0f);
  EXPECT_FLOAT_EQ(sxVec3(9.0f, 0.0f, 3.0f).approxDist(sxVec3(0.0f, 0.0f, 0.0f)), 10.0f);
  // Zero counts as positive.
  EXPECT_EQ(sxVec2(0.0f, 0.0f).getQuadrant(), sxVec2::QUADRANT_PP);
  EXPECT_EQ(sxVec2(-1.0f, 0.0f).getQuadrant(), sxVec2::QUADRANT_NP);
  EXPECT_EQ(sxVec3(-1.0f, 2.0f, -3.0f).getOctant(), 5);
}

TEST_F(sxVecTest, NormalsAnglesAndLerp) {
  sxVec3 n;

  const sxVec3 tri[3] = {{0, 0, 0}, {0, 2, 0}, {2, 0, 0}};
  n.makeNormal(tri);
  EXPECT_EQ(n, sxVec3(0.0f, 0.0f, -1.0f));
  EXPECT_FLOAT_EQ(sxVec3(1, 0, 0).angleBetween(sxVec3(-2, 0, 0)), 180.0f);
  EXPECT_EQ(sxVec3(1, 1, 0).angleBetween(sxVec3(2, 2, 0)), 0.0f);
  sxVec3 l;
  l.lerp(0.25f, sxVec3(0, 4, 8), sxVec3(4, 0, 8));
  EXPECT_EQ(l, sxVec3(1, 3, 8));
}

TEST_F(sxVecTest, HeadingAndPitch) {
  sxVec3 v;
  v.setHP(0.0f, 90.0f);
  EXPECT_EQ(v, sxVec3(0.0f, 0.0f, 1.0f));
  v.setHP(0.0f, -90.0f);
  EXPECT_EQ(v, sxVec3(0.0f, 0.0f, -1.0f));
  v.setHP(0.0f, 180.0f);  // over the top
  EXPECT_TRUE(v.almostEqual(sxVec3(0.0f, -1.0f, 0.0f), 1e-6f));
  v.setHP(0.0f, 360.0f + 45.0f);
  EXPECT_TRUE(v.almostEqual(sxVec3(0.0f, std::sqrt(0.5f), std::sqrt(0.5f)), 1e-6f));
  v.setH(90.0f);
  EXPECT_TRUE(v.almostEqual(sxVec3(-1.0f, 0.0f, 0.0f), 1e-6f));
  v.setHP(1e30f, std::numeric_limits<float>::infinity());  // ends, whatever it gives

  float h, p;
  sxVec3(0, 1, 0).getHP(h, p);
  EXPECT_FLOAT_EQ(h, 0.0f);
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
  sxMatrix m;
  m.makeRot(90.0f, 0.0f, 0.0f, 1.0f);
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

  // w = 2 divides; w = 0 divides by +1e-6 instead of failing.
  sxMatrix proj;
  proj[3][3] = 2.0f;
  proj.identifyType();
  v.fullXformPt(sxVec3(2, 4, 6), proj);
  EXPECT_EQ(v, sxVec3(1, 2, 3));
  proj[3][3] = 0.0f;
  v.fullXformPt(sxVec3(2e-6f, 0, -1e-6f), proj);
  EXPECT_TRUE(v.almostEqual(sxVec3(2.0f, 0.0f, -1.0f), 1e-5f));
  proj[3][3] = -1e-9f;  // the sign of a tiny w is dropped
  v.fullXformPt(sxVec3(1e-6f, 0, 0), proj);
  EXPECT_FLOAT_EQ(v.x, 1.0f);
}

TEST_F(sxVecTest, ColourSpaceRoundTrip) {
  sxVec4 hsv;
  hsv.RGBtoHSV(sxVec4(1.0f, 0.0f, 0.5f, 1.0f));  // negative hue wraps
  EXPECT_TRUE(hsv.almostEqual(sxVec4(330.0f, 1.0f, 1.0f, 1.0f), 1e-4f));
  hsv.RGBtoHSV(sxVec4(0.0f, 0.0f, 0.0f, 1.0f));
  EXPECT_EQ(hsv, sxVec4(-1.0f, 0.0f, 0.0f, 1.0f));

  sxVec4 rgb;
  rgb.HSVtoRGB(sxVec4(-1.0f, 0.0f, 0.4f, 0.5f));
  EXPECT_EQ(rgb, sxVec4(0.4f, 0.4f, 0.4f, 0.5f));
  rgb.HSVtoRGB(sxVec4(120.0f, 0.0f, 0.4f, 0.5f));  // defined hue, no saturation
  EXPECT_EQ(rgb, sxVec4(0.0f, 0.0f, 0.0f, 0.5f));
  rgb.HSVtoRGB(sxVec4(360.0f, 1.0f, 1.0f, 1.0f));
  EXPECT_EQ(rgb, sxVec4(1.0f, 0.0f, 0.0f, 1.0f));
  rgb.set(9.0f, 9.0f, 9.0f, 9.0f);
  rgb.HSVtoRGB(sxVec4(400.0f, 1.0f, 1.0f, 0.25f));  // only alpha is written
  EXPECT_EQ(rgb, sxVec4(9.0f, 9.0f, 9.0f, 0.25f));

  for (float r = 0.0f; r <= 1.0f; r += 0.25f) {
    for (float g = 0.0f; g <= 1.0f; g += 0.25f) {
      for (float b = 0.1f; b <= 1.0f; b += 0.3f) {
        const sxVec4 colour(r, g, b, 0.7f);
        hsv.RGBtoHSV(colour);
        rgb.HSVtoRGB(hsv);
        EXPECT_TRUE(rgb.almostEqual(colour, 1e-5f)) << r << " " << g << " " << b;
        rgb = hsv;
        rgb.HSVtoRGB(rgb);  // in place
        EXPECT_TRUE(rgb.almostEqual(colour, 1e-5f));
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

}  // namespace
