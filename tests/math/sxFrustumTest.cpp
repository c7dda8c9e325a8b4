#include <sx/sxCore.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

using V = sxVolume;

class sxFrustumTest : public testing::Test {
 protected:
  void SetUp() override { sxSetSqrtMethod(SXSQRT_TABLE_4K); }
};

TEST_F(sxFrustumTest, MadeInEyeSpace) {
  sxFrustum f;
  ASSERT_TRUE(f.makePersp(-1, 2, -0.5f, 0.5f, 1, 10));
  EXPECT_FALSE(f.isOrtho());
  float l, r, b, t;
  EXPECT_FALSE(f.isSymmetrical());
  // Corner bits: 1 right, 2 top, 4 far. Looking along +Y with Z up.
  EXPECT_EQ(f.getCorner(0), sxVec3(-1, 1, -0.5f));
  EXPECT_EQ(f.getCorner(5), sxVec3(20, 10, -5));
  EXPECT_EQ(f.contains(sxVec3(0, 5, 0)), V::INSIDE);
  EXPECT_EQ(f.contains(sxVec3(0, 0.5f, 0)), V::OUTSIDE);
  EXPECT_EQ(f.contains(sxVec3(-5.1f, 5, 0)), V::OUTSIDE);
  EXPECT_TRUE(f.getPlane(sxFrustum::FACE_NEAR).getNormal().almostEqual(sxVec3(0, -1, 0), 1e-6f));

  ASSERT_TRUE(f.makeFOV(90, 60, 2, 100));
  EXPECT_TRUE(f.isSymmetrical());
  f.getNearPlaneCoords(l, r, b, t);
  EXPECT_FLOAT_EQ(t, 2.0f * std::tan(30.0f * 3.14159265f / 180.0f));
  ASSERT_TRUE(f.makeOrtho(-1, 1, -1, 1, 0, 10));
  EXPECT_TRUE(f.isOrtho());
  EXPECT_EQ(f.getCorner(7), sxVec3(1, 10, 1));
  sxVec3 center;
  f.getCenter(center);
  EXPECT_TRUE(center.almostEqual(sxVec3(0, 5, 0), 1e-5f));

  // Bad parameters leave it empty.
  const float nan = std::numeric_limits<float>::quiet_NaN();
  EXPECT_FALSE(f.makePersp(-1, 1, -1, 1, 0, 10));
  EXPECT_TRUE(f.isEmpty());
  EXPECT_EQ(f.contains(sxVec3(0, 5, 0)), V::OUTSIDE);
  EXPECT_EQ(f.contains(sxSphere(sxVec3(0, 5, 0), 100)), V::OUTSIDE);
  EXPECT_FALSE(f.makePersp(1, -1, -1, 1, 1, 5));
  EXPECT_FALSE(f.makePersp(-1, 1, -1, 1, 5, 5));
  EXPECT_FALSE(f.makeOrtho(-1, 1, 1, 1, 1, 5));
  EXPECT_FALSE(f.makeOrtho(-1, nan, -1, 1, 1, 5));
  EXPECT_FALSE(f.makeFOV(180, 60, 1, 10));
  EXPECT_FALSE(f.makeFOV(90, 0, 1, 10));
  EXPECT_TRUE(f.isEmpty());
}

// Random frusta, spheres and boxes; each volume is sampled (its extreme and
// random inner points) and the samples are tested in eye space directly: a
// volume with a point inside is never culled, one with a point outside is
// never called inside. Every answer occurs, and the edge planes cull some
// volumes that the faces and the bounding sphere let through.
TEST_F(sxFrustumTest, CullingAgreesWithSampledPoints) {
  std::mt19937 rng(2024);
  auto uni = [&](float lo, float hi) { return std::uniform_real_distribution<float>(lo, hi)(rng); };
  int results[2][3] = {}, cutByEdges = 0;
  for (int round = 0; round < 30; ++round) {
    const bool ortho = round % 4 == 0;
    const float l = uni(-2, -0.2f), r = uni(0.2f, 2), b = uni(-1.5f, -0.1f), t = uni(0.1f, 1.5f);
    const float n = uni(0.5f, 2), f = n + uni(5, 40);
    auto slack = [&](const sxVec3& p) {  // positive inside, negative outside
      const float k = ortho ? 1.0f : p.y / n;
      return std::min({p.y - n, f - p.y, p.x - l * k, r * k - p.x, p.z - b * k, t * k - p.z});
    };
    sxFrustum world;
    ASSERT_TRUE(ortho ? world.makeOrtho(l, r, b, t, n, f) : world.makePersp(l, r, b, t, n, f));
    sxMatrix toWorld, toEye;
    toWorld.makeHPR(uni(-180, 180), uni(-80, 80), uni(-180, 180));
    const float scale = uni(0.5f, 2);
    toWorld.postScale(scale, scale, scale);
    toWorld.postTrans(uni(-20, 20), uni(-20, 20), uni(-20, 20));
    world.xform(toWorld);
    toEye.invert(toWorld);
    auto check = [&](const V& volume, const std::vector<sxVec3>& points, int kind) {
      const V::CONTAINMENT c = world.contains(volume);
      ++results[kind][c];
      bool in = false, out = false;
      for (const sxVec3& p : points) {
        sxVec3 q;
        q.xformPt(p, toEye);
        in |= slack(q) > 1e-3f;
        out |= slack(q) < -1e-3f;
      }
      const bool meets = world.intersects(volume);
      EXPECT_FALSE(in && c == V::OUTSIDE) << "a volume that overlaps was culled";
      EXPECT_FALSE(out && c == V::INSIDE) << "a volume that pokes out was called inside";
      EXPECT_TRUE(meets || (!in && c != V::INSIDE));
      if (c != V::OUTSIDE) return;
      EXPECT_FALSE(meets);
      bool passed = world.getBoundingSphere().contains(volume) != V::OUTSIDE;
      for (int i = 0; i < 6; ++i) passed &= world.getPlane(i).contains(volume) != V::OUTSIDE;
      cutByEdges += passed;
    };
    sxBox around;
    around.extendAround(world);
    const float reach = around.getMin().distance(around.getMax()) * 0.6f;
    sxVec3 mid;
    around.getCenter(mid);
    for (int i = 0; i < 300; ++i) {
      sxVec3 center(mid.x + uni(-reach, reach), mid.y + uni(-reach, reach),
                    mid.z + uni(-reach, reach));
      float radius = std::exp(uni(std::log(0.05f), std::log(reach)));
      if (i % 3 == 0) {  // small volumes within the view, to see the inside answer often
        const float y = uni(n, f), k = ortho ? 1.0f : y / n;
        center.xformPt(sxVec3(uni(l, r) * k, y, uni(b, t) * k), toWorld);
        radius = std::exp(uni(std::log(0.01f), std::log(1.0f)));
      }
      std::vector<sxVec3> points = {center};
      for (int k = 0; k < 160; ++k) {
        sxVec3 d(uni(-1, 1), uni(-1, 1), uni(-1, 1));
        if (d.sqrLength() > 1.0f || d.sqrLength() < 1e-4f) continue;
        if (k % 2) d.scale(1.0f / std::sqrt(d.sqrLength()));  // on the surface
        points.push_back(center + d * (radius * 0.999f));
      }
      check(sxSphere(center, radius), points, 0);
      const float top = i % 3 == 0 ? 0.0f : std::log(reach);
      const sxVec3 half(std::exp(uni(-4, top)), std::exp(uni(-4, top)), std::exp(uni(-4, top)));
      const sxBox box(center - half, center + half);
      points.clear();
      for (int k = 0; k < 8; ++k) points.push_back(box.cornerOf(k));
      for (int k = 0; k < 150; ++k)
        points.push_back(center +
                         sxVec3(half.x * uni(-1, 1), half.y * uni(-1, 1), half.z * uni(-1, 1)));
      check(box, points, 1);
    }
  }
  for (const auto& kind : results)
    for (int count : kind) EXPECT_GT(count, 100);
  EXPECT_GT(cutByEdges, 0);
}

TEST_F(sxFrustumTest, RaysFrustaPlanesAndOtherVolumes) {
  sxFrustum f;
  f.makePersp(-1, 1, -1, 1, 1, 10);
  EXPECT_EQ(f.contains(sxRay(sxVec3(0, 0, 0), sxVec3(0, 1, 0), -1.0f)), V::PARTIAL);
  EXPECT_TRUE(f.intersects(sxRay(sxVec3(0, 0, 0), sxVec3(0, 1, 0), 2.0f)));
  EXPECT_FALSE(f.intersects(sxRay(sxVec3(0, 0, 0), sxVec3(0, 1, 0), 0.5f)));
  EXPECT_FALSE(sxRay(sxVec3(0, 0, 0), sxVec3(0, -1, 0), -1.0f).intersects(f));
  EXPECT_FALSE(sxRay(sxVec3(5, 0, 0), sxVec3(0, 1, 0), 3.0f).intersects(f));
  EXPECT_EQ(f.contains(sxRay(sxVec3(0, 2, 0), sxVec3(0, 1, 0), 3.0f)), V::INSIDE);

  sxFrustum inner;
  inner.makePersp(-0.5f, 0.5f, -0.5f, 0.5f, 2, 8);
  EXPECT_EQ(f.contains(inner), V::INSIDE);
  EXPECT_EQ(inner.contains(f), V::PARTIAL);
  sxMatrix m;
  m.makeXYZ(0, 0, 30);
  sxFrustum away;
  away.xform(f, m);
  EXPECT_EQ(f.contains(away), V::OUTSIDE);
  EXPECT_FALSE(away.intersects(f));
  // Frusta side by side whose bounding boxes overlap but which do not meet:
  // one looks along +Y within |x| <= y, the other along +X within
  // |y + 3| <= x - 3, so y <= x - 6 there.
  m.makeRot(-90, 0, 0, 1);
  m.postTrans(3, -3, 0);
  away.xform(f, m);
  sxBox boundsA, boundsB;
  boundsA.extendAround(f);
  boundsB.extendAround(away);
  ASSERT_TRUE(boundsA.intersects(boundsB));
  EXPECT_FALSE(f.intersects(away));
  EXPECT_EQ(f.contains(away), V::OUTSIDE);
  m.postTrans(-6, 6, 0);
  away.xform(f, m);
  EXPECT_TRUE(f.intersects(away));
  EXPECT_EQ(f.contains(away), V::PARTIAL);

  EXPECT_EQ(f.contains(sxPlane(sxVec3(0, 1, 0), 5)), V::PARTIAL);
  EXPECT_EQ(f.contains(sxPlane(sxVec3(0, 1, 0), 0.5f)), V::OUTSIDE);
  EXPECT_EQ(sxPlane(sxVec3(0, 1, 0), 10).contains(f), V::INSIDE);
  EXPECT_EQ(sxPlane(sxVec3(0, 1, 0), 0.5f).contains(f), V::OUTSIDE);

  EXPECT_EQ(sxSphere(sxVec3(0, 5, 0), 20).contains(f), V::INSIDE);
  EXPECT_EQ(sxSphere(sxVec3(0, 5, 0), 2).contains(f), V::PARTIAL);
  // Beside the frustum's corner, within its bounding sphere and the reach
  // of two faces, but not touching it.
  const sxSphere nearCorner(sxVec3(-11.5f, 11.5f, 0), 1.0f);
  EXPECT_FALSE(f.intersects(nearCorner));
  EXPECT_EQ(nearCorner.contains(f), V::OUTSIDE);
  EXPECT_EQ(sxBox(sxVec3(-20, 0, -20), sxVec3(20, 20, 20)).contains(f), V::INSIDE);
  EXPECT_EQ(sxBox(sxVec3(-1, 5, -1), sxVec3(1, 6, 1)).contains(f), V::PARTIAL);
  const sxBox boxNearCorner(sxVec3(-12, 10.5f, -1), sxVec3(-11, 12, 1));
  EXPECT_FALSE(f.intersects(boxNearCorner));
  EXPECT_EQ(boxNearCorner.contains(f), V::OUTSIDE);

  sxSphere s;
  s.extendAround(f);
  sxBox b;
  b.extendAround(f);
  for (int c = 0; c < 8; ++c) {
    EXPECT_LE(s.center.distance(f.getCorner(c)), s.radius * 1.0001f);
    EXPECT_EQ(b.contains(f.getCorner(c)), V::INSIDE);
  }
  f.extendAround(sxVec3(100, 100, 100));
  EXPECT_EQ(f.contains(sxVec3(100, 100, 100)), V::OUTSIDE);
}

}  // namespace
