#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "sxMathTestUtil.h"

namespace {

using V = sxVolume;

// Short constructors, so that a table holds a case or two a line.
const auto v = [](float x, float y, float z) { return sxVec3(x, y, z); };
const auto S = [](float x, float y, float z, float r) { return sxSphere(sxVec3(x, y, z), r); };
const auto P = [](float x, float y, float z, float d) { return sxPlane(sxVec3(x, y, z), d); };
using B = sxBox;
using R = sxRay;
const auto span = [](const sxBox& b) { return std::pair(b.getMin(), b.getMax()); };

// A run of answers as one letter each, to compare with a row of expected
// letters: Outside, Partial, Inside for containment; 0 and 1 for yes and no.
std::string where(std::initializer_list<int> answers, const char* letters = "OPI") {
  std::string s;
  for (int a : answers) s += letters[a];
  return s;
}
// a.contains(o), o.contains(a), a.intersects(o), o.intersects(a) for each o.
const auto holds = [](const auto& a, const auto&... o) { return where({a.contains(o)...}); };
const auto heldBy = [](const auto& a, const auto&... o) { return where({o.contains(a)...}); };
const auto meets = [](const auto& a, const auto&... o) {
  return where({a.intersects(o)...}, "01");
};
const auto met = [](const auto& a, const auto&... o) { return where({o.intersects(a)...}, "01"); };

class sxVolumeTest : public sxHardwareSqrtTest {
 protected:
  const sxBox unitBox{v(0, 0, 0), v(1, 1, 1)};
};

TEST_F(sxVolumeTest, SphereGrowsContainsAndTransforms) {
  sxSphere s;
  EXPECT_TRUE(s.isEmpty());
  for (const auto& [point, after] : {std::pair(v(1, 2, 3), S(1, 2, 3, 0)),
                                     {v(1, 2, 3), S(1, 2, 3, 0)},  // the center of a point sphere
                                     {v(3, 2, 3), S(2, 2, 3, 1)},
                                     {v(2.5f, 2, 3), S(2, 2, 3, 1)}}) {  // inside: no change
    s.extendAround(point);
    EXPECT_EQ(s, after);
  }
  s.setRadius(-3.0f);
  EXPECT_TRUE(s.radius == 0.0f && !s.isEmpty());
  // Around another sphere from none, one inside, one that swallows it and an empty one.
  s.makeEmpty();
  for (const auto& [other, after] : {std::pair(S(0, 0, 0, 1), S(0, 0, 0, 1)),
                                     {S(4, 0, 0, 1), S(2, 0, 0, 3)},
                                     {S(1, 0, 0, 0.5f), S(2, 0, 0, 3)},
                                     {S(1, 0, 0, 10), S(1, 0, 0, 10)},
                                     {sxSphere(), S(1, 0, 0, 10)}}) {
    s.extendAround(other);
    EXPECT_EQ(s, after);
  }
  sxSphere around;
  around.extendAround(unitBox);
  for (int corner = 0; corner < 8; ++corner)
    EXPECT_LE(around.center.distance(unitBox.cornerOf(corner)), around.radius * 1.00001f);
  around.makeEmpty();
  around.extendAround(R(v(0, 0, 0), v(0, 0, 4)));
  EXPECT_EQ(around, S(0, 0, 2, 2));
  const sxVec3 points[3] = {{0, 0, 0}, {2, 0, 0}, {1, 0, 0}};
  around.makeEmpty();
  static_cast<sxVolume&>(around).extendAround(points, 3);
  EXPECT_EQ(around, S(1, 0, 0, 1));
  const sxSphere unit = S(0, 0, 0, 1);
  EXPECT_LE(unit, S(9, 9, 9, 1));
  EXPECT_GE(unit, S(9, 9, 9, 0.5f));
  // Strict for spheres; boxes by their corners, or no point within; a
  // sphere never holds a half space.
  EXPECT_EQ(
      holds(unit, v(1, 0, 0), v(1, 0.001f, 0), S(2.0001f, 0, 0, 1), S(0.5f, 0, 0, 0.4f),
            S(0.5f, 0, 0, 0.5f), S(0, 0, 0, 2), B(v(-0.5f, -0.5f, -0.5f), v(0.5f, 0.5f, 0.5f)),
            B(v(-0.6f, -0.6f, -0.6f), v(0.6f, 0.6f, 0.6f)), B(v(0.8f, 0.8f, 0), v(2, 2, 1)),
            B(v(0.7f, 0.7f, 0), v(2, 2, 1)), sxBox(), P(0, 0, 1, -1), P(0, 0, 1, -1.01f)),
      "IOOIPPIPOPOPO");
  // Only the Z axis measures the scale; an empty sphere stays empty.
  s = S(1, 0, 0, 2);
  s.xform(sxMatrix());
  EXPECT_EQ(s, S(1, 0, 0, 2));
  s.xform(Built().rot(90, 0, 0, 1).thenTrans(0, 0, 5));
  EXPECT_TRUE(s.center.almostEqual(v(0, 1, 5), 1e-6f));
  EXPECT_EQ(s.radius, 2.0f);
  s.xform(Built().scale(3, 3, 3));
  s.xform(Built().scale(10, 10, 1));
  EXPECT_FLOAT_EQ(s.radius, 6.0f);
  around.makeEmpty();
  around.xform(Built().scale(10, 10, 1));
  EXPECT_TRUE(around.isEmpty());
}

TEST_F(sxVolumeTest, BoxGrowsContainsAndTransforms) {
  sxBox b;
  EXPECT_TRUE(b.isEmpty());
  b.extendAround(v(1, 2, 3));
  b.extendAround(v(-1, 5, 3));
  EXPECT_EQ(span(b), std::pair(v(-1, 2, 3), v(1, 5, 3)));
  sxVec3 corner(7, 7, 7);
  const sxBox box = B(v(0, 1, 2), v(3, 4, 5));
  box.getCorner(sxVec3::OCTANT_NPN, corner);
  box.getCorner(static_cast<sxVec3::OCTANT>(8), corner);  // no such octant: unchanged
  EXPECT_EQ(corner, v(0, 4, 2));
  box.getCenter(corner);
  EXPECT_EQ(corner, v(1.5f, 2.5f, 3.5f));
  EXPECT_EQ(
      holds(unitBox, v(1, 1, 1), v(1, 1, 1.0001f), B(v(0, 0, 0), v(1, 1, 1)),
            B(v(1, 1, 1), v(2, 2, 2)), B(v(1.1f, 0, 0), v(2, 1, 1)), S(0.5f, 0.5f, 0.5f, 0.5f),
            S(2, 2, 2, 1.74f), S(2, 2, 2, 1.72f), P(1, 0, 0, 0), P(1, 0, 0, -0.1f)),
      "IOIPOIPOPO");
  b = unitBox;
  b.extendAround(S(3, 0, 0, 1));
  b.extendAround(B(v(-2, 0, 0), v(0, 0, 5)));
  b.extendAround(sxBox());
  b.extendAround(sxSphere());
  b.extendAround(sxPlane());
  EXPECT_EQ(span(b), std::pair(v(-2, -1, -1), v(4, 1, 5)));
  // The box of the transformed corners, also for a projective matrix.
  const sxMatrix m = Built().rot(45, 0, 0, 1).thenTrans(10, 0, 0);
  sxMatrix p;
  b = B(v(-1, -1, -1), v(1, 1, 1));
  b.xform(m);
  const float r = std::sqrt(2.0f);
  EXPECT_TRUE(b.getMin().almostEqual(v(10 - r, -r, -1), 1e-5f));
  EXPECT_TRUE(b.getMax().almostEqual(v(10 + r, r, 1), 1e-5f));
  p[3][3] = 2.0f;
  p.identifyType();
  b.xform(B(v(-2, 0, 2), v(2, 4, 6)), p);
  EXPECT_EQ(span(b), std::pair(v(-1, 0, 1), v(1, 2, 3)));
  b.makeEmpty();
  b.xform(m);
  EXPECT_TRUE(b.isEmpty());
}

TEST_F(sxVolumeTest, PlaneConstructionTestsAndTransforms) {
  sxPlane p;
  EXPECT_EQ(p.getNegOctant(), sxVec3::OCTANT_PPP);
  p.make(v(0, 0, 5), v(0, 0, 2));
  EXPECT_EQ(std::tuple(p.getNormal(), p.pointDistance(v(0, 0, 5)), p[2], p[3], p[-1]),
            std::tuple(v(0, 0, 1), -10.0f, 1.0f, 5.0f, 5.0f));
  EXPECT_EQ(holds(p, v(0, 0, 5), v(0, 0, 5.001f)), "IO");
  p.make(v(-3, 0, -4), 2.0f);
  EXPECT_TRUE(p.getNormal().almostEqual(v(-0.6f, 0, -0.8f), 1e-6f));
  EXPECT_EQ(p.getNegOctant(), sxVec3::OCTANT_NPN);
  p.make(v(0, 0, 1), v(1, 0, 1), v(0, 1, 1));
  p.setNormal(0, 3, 0);
  EXPECT_EQ(std::pair(p.getNormal(), p.getOffset()), std::pair(v(0, 1, 0), 1.0f));
  // z <= 0; slanted, y <= x, where the octant picks the corners; half
  // spaces against half spaces.
  const sxPlane below = P(0, 0, 1, 0), slant = P(-1, 1, 0, 0);
  EXPECT_EQ(holds(below, S(0, 0, -1, 1), S(0, 0, 1, 1), S(0, 0, 1.01f, 1),
                  B(v(0, 0, -2), v(1, 1, 0)), B(v(0, 0, 0.1f), v(1, 1, 1)), P(0, 0, 1, -1),
                  P(0, 0, 1, 1), P(0, 1, 0, 0), P(0, 0, -1, 0), P(0, 0, -1, -0.5f)) +
                holds(slant, B(v(1, -1, 0), v(2, 0.5f, 1)), B(v(0, 0.5f, 0), v(1, 2, 1)),
                      B(v(-2, 0, 0), v(-1, 2, 1))) +
                meets(below, P(0, 0, -1, -0.5f)),
            "IPOIOIPPPOIPO0");
  p = below;
  p.extendAround(v(4, 4, 3));
  EXPECT_EQ(p.getOffset(), 3.0f);
  p.extendAround(S(0, 0, 10, 1));
  p.makeEmpty();
  EXPECT_EQ(p.getOffset(), 3.0f);
  // A transformed plane keeps its points and its inside.
  const sxPlane plane = P(1, 2, 3, 4);
  sxVec3 onPlane[3], axis, other, deep;
  axis.cross(plane.normal, v(0, 0, 1));
  axis.normalize();
  other.cross(plane.normal, axis);
  onPlane[0].scale(plane.offset, plane.normal);
  onPlane[1].addScaled(onPlane[0], 3.0f, axis);
  onPlane[2].addScaled(onPlane[0], -2.0f, other);
  deep.scale(plane.offset - 1.0f, plane.normal);
  for (const sxMatrix& m : {Built().hpr(20, 30, 40).thenScale(2, 2, 2).thenTrans(1, -2, 3),
                            Built().scale(1, 3, 0.5f).thenRot(30, 1, 1, 0).thenTrans(0, 4, 0)}) {
    p.xform(plane, m);
    EXPECT_NEAR(p.normal.length(), 1.0f, 1e-6f);
    for (const sxVec3& q : onPlane) EXPECT_NEAR(p.normal.dot(q * m), p.offset, 1e-4f);
    EXPECT_EQ(p.contains(deep * m), V::INSIDE);
    EXPECT_EQ(p.getNegOctant(), p.normal.getOctant());
  }
}

TEST_F(sxVolumeTest, RaysAgainstVolumesTrianglesAndQuads) {
  sxRay r(v(0, 0, 0), v(0, 0, 3), -1.0f);
  sxVec3 end;
  r.getEndPoint(end);
  EXPECT_EQ(end, v(0, 0, 3.4028233e36f));
  r.makeFromPoints(v(1, 1, 1), v(1, 1, 4));
  r.getEndPoint(end);
  EXPECT_EQ(std::tuple(end, R(v(1, 1, 1), v(1, 1, 1)).getLength(),
                       R(v(0, 0, 0), v(0, 1.0000001f, 0)).getLength()),
            std::tuple(v(1, 1, 4), 0.0f, 1.0f));
  EXPECT_EQ(r, R(v(1, 1, 1), v(1, 1, 4)));
  EXPECT_NE(r, R(v(1, 1, 1), v(1, 1, 5)));
  // Against the ground, z <= 0: away, parallel and of no length miss; a
  // ball is hit also behind the start (callers start outside).
  const sxPlane ground = P(0, 0, 1, 0);
  const sxSphere ball = S(0, 10, 0, 2);
  const sxVec3 up = v(0, 0, 1), down = v(0, 0, -1), north = v(0, 1, 0), east = v(1, 0, 0);
  const sxVec3 o = v(0, 0, 0), high = v(0, 0, 5);
  EXPECT_EQ(met(ground, R(high, down, 6), R(high, down, 4), R(high, down, -1), R(high, up, -1),
                R(high, east, -1), R(high, down, 0)) +
                meets(ground, R(high, down, 6)) +
                met(ball, R(o, north, 8), R(o, north, 7.9f), R(o, v(0, 1, 0.21f), -1),
                    R(o, north, 0), R(v(0, 20, 0), north, 1)) +
                met(unitBox, R(v(-1, 0.5f, 0.5f), east, 1), R(v(-1, 1.5f, 0.5f), east, -1),
                    R(v(2, 0.5f, 0.5f), east, -1), R(v(-1, -1, -1), v(1, 1, 1), -1),
                    R(v(0.5f, 0.5f, 0.5f), east, 0)) +
                met(sxBox(), R(o, east, -1)),
            "101000110001100100");
  // Three-valued: a ray from inside that never leaves is inside.
  const sxVec3 diagonal = v(1, 1, 1), start = v(0.1f, 0.1f, 0.1f);
  EXPECT_EQ(holds(ground, R(v(0, 0, -1), east, -1), R(high, down, 6), R(high, down, 4),
                  R(v(0, 0, -5), up, 4)) +
                holds(ball, R(v(0, 20, 0), north, 1), R(v(0, 9, 0), north, 1),
                      R(v(0, 9, 0), north, 5), R(v(0, 9, 0), north, -1)) +
                holds(unitBox, R(start, diagonal, 1), R(start, diagonal, 2), R(start, diagonal, -1),
                      R(v(0, 1, 0.5f), east, 1)),
            "IPOIOIPPIPPI");

  const sxMatrix m = Built().scale(2, 2, 2).thenTrans(1, 0, 0);
  r = R(v(0, 0, 0), v(0, 3, 0));
  r.xform(m);
  r.getEndPoint(end);
  EXPECT_EQ(std::tuple(r.getStartPoint(), r.getDirection(), end),
            std::tuple(v(1, 0, 0), v(0, 1, 0), v(1, 6, 0)));
  r = R(v(0, 0, 0), v(1, 0, 0), -1.0f);
  r.xform(r, m);
  EXPECT_TRUE(r.isUnbounded());
  // Triangles and quadrilaterals in z = 0; a miss leaves the hit point.
  const sxVec3 a(0, 0, 0), b(2, 0, 0), c(0, 2, 0), d(2, 2, 0), above = v(0.5f, 0.5f, 3);
  sxVec3 hit(9, 9, 9);
  EXPECT_FLOAT_EQ(R(above, down, 5).intersects(a, b, c, hit), 3.0f);
  EXPECT_TRUE(hit.almostEqual(v(0.5f, 0.5f, 0), 1e-6f));
  hit.set(9, 9, 9);
  const sxRay corner(v(1.5f, 1.5f, 3), down, 5.0f);
  EXPECT_EQ(corner.intersects(a, b, c, hit), -1.0f);
  EXPECT_EQ(hit, v(9, 9, 9));
  EXPECT_FLOAT_EQ(corner.intersects(a, b, d, c, hit), 3.0f);
  EXPECT_TRUE(hit.almostEqual(v(1.5f, 1.5f, 0), 1e-6f));
  // Too short, away, parallel, beside the quadrilateral: -1.
  EXPECT_EQ(where({R(above, down, 2.9f).intersects(a, b, c, hit) == -1.0f,
                   R(above, up, -1).intersects(a, b, c, hit) == -1.0f,
                   R(above, east, -1).intersects(a, b, c, hit) == -1.0f,
                   R(v(2.5f, 1, 3), down, -1).intersects(a, b, d, c, hit) == -1.0f},
                  "01"),
            "1111");
  // The nearer of the two triangles' hits wins for a folded quadrilateral.
  const sxRay side(v(-1, 0.2f, 0.5f), east, -1.0f);
  const sxVec3 p0(0, 0, 0), p1(0, 0, 1), p2(2, 1, 1), p3(1, 1, 0);
  const float t = side.intersects(p0, p1, p2, p3, hit);
  EXPECT_GE(t, 0.0f);
  const float t1 = side.intersects(p0, p1, p2, hit), t2 = side.intersects(p0, p2, p3, hit);
  EXPECT_EQ(t, t1 < 0 ? t2 : t2 < 0 ? t1 : std::min(t1, t2));
}

TEST_F(sxVolumeTest, DispatchCopiesAndEmptiness) {
  std::unique_ptr<sxVolume> volumes[] = {
      std::make_unique<sxPlane>(v(0, 0, 1), 0.0f), std::make_unique<sxBox>(unitBox),
      std::make_unique<sxSphere>(v(0, 0, 0), 1.0f), std::make_unique<sxFrustum>()};
  static_cast<sxFrustum&>(*volumes[3]).makePersp(-1, 1, -1, 1, 1, 10);
  sxArena arena;
  for (const auto& vol : volumes) {
    const std::unique_ptr<sxVolume> copy(vol->createCopy());
    EXPECT_TRUE(copy && copy->getType() == vol->getType());
    const sxVolume* disposable = vol->createDisposableCopy(&arena);
    EXPECT_TRUE(disposable && arena.inRange(disposable) && disposable->getType() == vol->getType());
    EXPECT_EQ(vol->createDisposableCopy(nullptr), nullptr);
    // The generic forms reach the typed ones, which the type names.
    for (const auto& w : volumes) {
      const sxVolume& other = *w;
      auto same = [&](const auto& kind, V::TYPE type) {
        EXPECT_EQ(other.getType(), type);
        EXPECT_EQ(vol->contains(other), vol->contains(kind));
        EXPECT_EQ(vol->intersects(other), vol->intersects(kind));
      };
      if (auto* kind = dynamic_cast<const sxPlane*>(&other)) same(*kind, V::PLANE);
      if (auto* kind = dynamic_cast<const sxBox*>(&other)) same(*kind, V::BOX);
      if (auto* kind = dynamic_cast<const sxSphere*>(&other)) same(*kind, V::SPHERE);
      if (auto* kind = dynamic_cast<const sxFrustum*>(&other)) same(*kind, V::FRUSTUM);
      EXPECT_TRUE(vol->intersects(other)) << vol->getType() << " " << w->getType();
    }
  }
  sxSphere s = S(5, 5, 5, 1);
  s.copy(*volumes[1]);  // another kind: nothing
  EXPECT_EQ(s, S(5, 5, 5, 1));
  s.copy(*volumes[2]);
  static_cast<sxVolume&>(s).extendAround(static_cast<const sxVolume&>(S(3, 0, 0, 1)));
  EXPECT_FLOAT_EQ(s.radius, 2.5f);
  sxVec3 center(7, 7, 7);
  volumes[0]->getCenter(center);
  EXPECT_EQ(center, v(7, 7, 7));
  // Empty volumes meet nothing, on either side.
  const sxSphere empty, everything = S(0, 0, 0, 1e6f);
  const sxVolume &none = empty, &all = everything;
  EXPECT_EQ(meets(none, all) + meets(all, none, sxBox(), sxFrustum(), unitBox), "00001");
}

class sxFrustumTest : public testing::Test {
 protected:
  void SetUp() override { sxSetSqrtMethod(SXSQRT_TABLE_4K); }
};

TEST_F(sxFrustumTest, MadeInEyeSpace) {
  sxFrustum f;
  ASSERT_TRUE(f.makePersp(-1, 2, -0.5f, 0.5f, 1, 10));
  EXPECT_FALSE(f.isOrtho() || f.isSymmetrical());
  // Corner bits: 1 right, 2 top, 4 far. Looking along +Y with Z up.
  EXPECT_EQ(std::pair(f.getCorner(0), f.getCorner(5)), std::pair(v(-1, 1, -0.5f), v(20, 10, -5)));
  EXPECT_EQ(holds(f, v(0, 5, 0), v(0, 0.5f, 0), v(-5.1f, 5, 0)), "IOO");
  EXPECT_TRUE(f.getPlane(sxFrustum::FACE_NEAR).getNormal().almostEqual(v(0, -1, 0), 1e-6f));
  ASSERT_TRUE(f.makeFOV(90, 60, 2, 100));
  EXPECT_TRUE(f.isSymmetrical());
  float l, r, b, t;
  f.getNearPlaneCoords(l, r, b, t);
  EXPECT_FLOAT_EQ(t, 2.0f * std::tan(30.0f * 3.14159265f / 180.0f));
  ASSERT_TRUE(f.makeOrtho(-1, 1, -1, 1, 0, 10));
  EXPECT_TRUE(f.isOrtho() && f.getCorner(7) == v(1, 10, 1));
  sxVec3 center;
  f.getCenter(center);
  EXPECT_TRUE(center.almostEqual(v(0, 5, 0), 1e-5f));
  // Bad parameters leave it empty.
  EXPECT_TRUE(!f.makePersp(-1, 1, -1, 1, 0, 10) && f.isEmpty());
  EXPECT_EQ(holds(f, v(0, 5, 0), S(0, 5, 0, 100)), "OO");
  const float nan = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(where({f.makePersp(1, -1, -1, 1, 1, 5), f.makePersp(-1, 1, -1, 1, 5, 5),
                   f.makeOrtho(-1, 1, 1, 1, 1, 5), f.makeOrtho(-1, nan, -1, 1, 1, 5),
                   f.makeFOV(180, 60, 1, 10), f.makeFOV(90, 0, 1, 10)},
                  "01"),
            "000000");
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
        const float inside = slack(p * toEye);
        in |= inside > 1e-3f;
        out |= inside < -1e-3f;
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
      sxVec3 center = mid + v(uni(-reach, reach), uni(-reach, reach), uni(-reach, reach));
      float radius = std::exp(uni(std::log(0.05f), std::log(reach)));
      if (i % 3 == 0) {  // small volumes within the view, to see the inside answer often
        const float y = uni(n, f), k = ortho ? 1.0f : y / n;
        center = v(uni(l, r) * k, y, uni(b, t) * k) * toWorld;
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
        points.push_back(center + v(half.x * uni(-1, 1), half.y * uni(-1, 1), half.z * uni(-1, 1)));
      check(box, points, 1);
    }
  }
  for (const auto& kind : results)
    for (int count : kind) EXPECT_GT(count, 100);
  EXPECT_GT(cutByEdges, 0);
}

TEST_F(sxFrustumTest, RaysFrustaPlanesAndOtherVolumes) {
  sxFrustum f, inner, away;
  f.makePersp(-1, 1, -1, 1, 1, 10);
  inner.makePersp(-0.5f, 0.5f, -0.5f, 0.5f, 2, 8);
  const sxVec3 o = v(0, 0, 0), north = v(0, 1, 0);
  EXPECT_EQ(meets(f, R(o, north, 2), R(o, north, 0.5f)) +
                met(f, R(o, v(0, -1, 0), -1), R(v(5, 0, 0), north, 3)),
            "1000");
  EXPECT_EQ(holds(f, R(o, north, -1), R(v(0, 2, 0), north, 3), inner) + holds(inner, f), "PIIP");
  away.xform(f, Built().xyz(0, 0, 30));
  EXPECT_EQ(holds(f, away) + met(f, away), "O0");
  // Frusta side by side whose bounding boxes overlap but which do not meet:
  // one looks along +Y within |x| <= y, the other along +X within
  // |y + 3| <= x - 3, so y <= x - 6 there.
  sxMatrix m = Built().rot(-90, 0, 0, 1).thenTrans(3, -3, 0);
  away.xform(f, m);
  sxBox boundsA, boundsB;
  boundsA.extendAround(f);
  boundsB.extendAround(away);
  ASSERT_TRUE(boundsA.intersects(boundsB));
  EXPECT_EQ(holds(f, away) + meets(f, away), "O0");
  m.postTrans(-6, 6, 0);
  away.xform(f, m);
  EXPECT_EQ(holds(f, away) + meets(f, away), "P1");

  // A sphere and a box beside the frustum's corner, within its bounding
  // sphere and the reach of two faces, do not touch it.
  const sxSphere nearCorner = S(-11.5f, 11.5f, 0, 1);
  const sxBox boxNearCorner(v(-12, 10.5f, -1), v(-11, 12, 1));
  EXPECT_EQ(meets(f, nearCorner, boxNearCorner), "00");
  EXPECT_EQ(
      holds(f, P(0, 1, 0, 5), P(0, 1, 0, 0.5f)) +
          heldBy(f, P(0, 1, 0, 10), P(0, 1, 0, 0.5f), S(0, 5, 0, 20), S(0, 5, 0, 2), nearCorner,
                 B(v(-20, 0, -20), v(20, 20, 20)), B(v(-1, 5, -1), v(1, 6, 1)), boxNearCorner),
      "POIOIPOIPO");
  sxSphere s;
  sxBox box;
  s.extendAround(f);
  box.extendAround(f);
  for (int c = 0; c < 8; ++c) {
    EXPECT_LE(s.center.distance(f.getCorner(c)), s.radius * 1.0001f);
    EXPECT_EQ(box.contains(f.getCorner(c)), V::INSIDE);
  }
  f.extendAround(v(100, 100, 100));
  EXPECT_EQ(f.contains(v(100, 100, 100)), V::OUTSIDE);
}

}  // namespace
