#include <sx/sxCore.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

namespace {

using V = sxVolume;
constexpr V::CONTAINMENT IN = V::INSIDE, PART = V::PARTIAL, OUT = V::OUTSIDE;

// Short constructors, so that a table holds a case a line or two a line.
sxVec3 v(float x, float y, float z) {
  return sxVec3(x, y, z);
}
sxSphere S(float x, float y, float z, float r) {
  return sxSphere(v(x, y, z), r);
}
sxBox B(const sxVec3& lo, const sxVec3& hi) {
  return sxBox(lo, hi);
}
sxPlane P(float x, float y, float z, float offset) {
  return sxPlane(v(x, y, z), offset);
}
sxRay R(const sxVec3& start, const sxVec3& dir, float length) {
  return sxRay(start, dir, length);
}

// A run of answers as one letter each, to compare with a row of expected
// letters: Outside, Partial, Inside; 0 and 1 for yes and no.
std::string where(std::initializer_list<V::CONTAINMENT> answers) {
  std::string s;
  for (V::CONTAINMENT c : answers) s += "OPI"[c];
  return s;
}
std::string yes(std::initializer_list<bool> answers) {
  std::string s;
  for (bool b : answers) s += b ? '1' : '0';
  return s;
}

class sxVolumeTest : public testing::Test {
 protected:
  void SetUp() override { sxSetSqrtMethod(SXSQRT_HARDWARE); }
  const sxBox unitBox{v(0, 0, 0), v(1, 1, 1)};
};

TEST_F(sxVolumeTest, SphereGrowsAndContains) {
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
  EXPECT_EQ(s.radius, 0.0f);
  EXPECT_FALSE(s.isEmpty());
  const sxSphere unit = S(0, 0, 0, 1);
  EXPECT_LE(unit, S(9, 9, 9, 1));
  EXPECT_GE(unit, S(9, 9, 9, 0.5f));
  // Strict for spheres; boxes by their corners, or no point within; a
  // sphere never holds a half space.
  EXPECT_EQ(where({unit.contains(v(1, 0, 0)), unit.contains(v(1, 0.001f, 0)),
                   unit.contains(S(2.0001f, 0, 0, 1)), unit.contains(S(0.5f, 0, 0, 0.4f)),
                   unit.contains(S(0.5f, 0, 0, 0.5f)), unit.contains(S(0, 0, 0, 2)),
                   unit.contains(B(v(-0.5f, -0.5f, -0.5f), v(0.5f, 0.5f, 0.5f))),
                   unit.contains(B(v(-0.6f, -0.6f, -0.6f), v(0.6f, 0.6f, 0.6f))),
                   unit.contains(B(v(0.8f, 0.8f, 0), v(2, 2, 1))),
                   unit.contains(B(v(0.7f, 0.7f, 0), v(2, 2, 1))), unit.contains(sxBox()),
                   unit.contains(P(0, 0, 1, -1)), unit.contains(P(0, 0, 1, -1.01f))}),
            "IOOIPPIPOPOPO");
}

TEST_F(sxVolumeTest, SphereExtendsAroundOtherVolumes) {
  sxSphere s = S(0, 0, 0, 1);
  s.extendAround(S(4, 0, 0, 1));
  EXPECT_FLOAT_EQ(s.radius, 3.0f);
  s.extendAround(S(1, 0, 0, 0.5f));  // inside
  EXPECT_FLOAT_EQ(s.radius, 3.0f);
  s.extendAround(S(1, 0, 0, 10));  // swallows it
  EXPECT_EQ(s, S(1, 0, 0, 10));
  s.extendAround(sxSphere());
  EXPECT_EQ(s.radius, 10.0f);
  sxSphere empty;
  empty.extendAround(S(1, 1, 1, 2));
  EXPECT_EQ(empty, S(1, 1, 1, 2));
  sxSphere around;
  around.extendAround(unitBox);
  for (int corner = 0; corner < 8; ++corner)
    EXPECT_LE(around.center.distance(unitBox.cornerOf(corner)), around.radius * 1.00001f);
  around.makeEmpty();
  around.extendAround(sxRay(v(0, 0, 0), v(0, 0, 4)));
  EXPECT_EQ(around, S(0, 0, 2, 2));
  const sxVec3 points[3] = {{0, 0, 0}, {2, 0, 0}, {1, 0, 0}};
  around.makeEmpty();
  static_cast<sxVolume&>(around).extendAround(points, 3);
  EXPECT_EQ(around, S(1, 0, 0, 1));
}

TEST_F(sxVolumeTest, SphereTransform) {
  sxSphere s = S(1, 0, 0, 2);
  sxMatrix m;
  s.xform(m);
  EXPECT_EQ(s, S(1, 0, 0, 2));
  m.makeRot(90, 0, 0, 1);
  m.postTrans(0, 0, 5);
  s.xform(m);
  EXPECT_TRUE(s.center.almostEqual(v(0, 1, 5), 1e-6f));
  EXPECT_EQ(s.radius, 2.0f);
  m.makeScale(3, 3, 3);
  s.xform(m);
  EXPECT_FLOAT_EQ(s.radius, 6.0f);
  m.makeScale(10, 10, 1);  // only the Z axis measures the scale
  s.xform(m);
  EXPECT_FLOAT_EQ(s.radius, 6.0f);
  sxSphere empty;
  m.makeScale(2, 2, 2);
  empty.xform(m);
  EXPECT_TRUE(empty.isEmpty());
}

TEST_F(sxVolumeTest, BoxBasics) {
  sxBox b;
  EXPECT_TRUE(b.isEmpty());
  b.extendAround(v(1, 2, 3));
  EXPECT_EQ(b.getMax(), v(1, 2, 3));
  b.extendAround(v(-1, 5, 3));
  EXPECT_EQ(b.getMin(), v(-1, 2, 3));
  EXPECT_EQ(b.getMax(), v(1, 5, 3));
  sxVec3 corner(7, 7, 7);
  const sxBox box = B(v(0, 1, 2), v(3, 4, 5));
  box.getCorner(sxVec3::OCTANT_PPP, corner);
  EXPECT_EQ(corner, v(3, 4, 5));
  box.getCorner(sxVec3::OCTANT_NPN, corner);
  box.getCorner(static_cast<sxVec3::OCTANT>(8), corner);  // no such octant: unchanged
  EXPECT_EQ(corner, v(0, 4, 2));
  box.getCenter(corner);
  EXPECT_EQ(corner, v(1.5f, 2.5f, 3.5f));
  EXPECT_EQ(where({unitBox.contains(v(1, 1, 1)), unitBox.contains(v(1, 1, 1.0001f)),
                   unitBox.contains(B(v(0, 0, 0), v(1, 1, 1))),
                   unitBox.contains(B(v(1, 1, 1), v(2, 2, 2))),
                   unitBox.contains(B(v(1.1f, 0, 0), v(2, 1, 1))),
                   unitBox.contains(S(0.5f, 0.5f, 0.5f, 0.5f)), unitBox.contains(S(2, 2, 2, 1.74f)),
                   unitBox.contains(S(2, 2, 2, 1.72f)), unitBox.contains(P(1, 0, 0, 0)),
                   unitBox.contains(P(1, 0, 0, -0.1f))}),
            "IOIPOIPOPO");
  sxBox grown = unitBox;
  grown.extendAround(S(3, 0, 0, 1));
  EXPECT_EQ(grown.getMax(), v(4, 1, 1));
  grown.extendAround(B(v(-2, 0, 0), v(0, 0, 5)));
  grown.extendAround(sxBox());
  grown.extendAround(sxSphere());
  grown.extendAround(sxPlane());
  EXPECT_EQ(grown.getMin(), v(-2, -1, -1));
  EXPECT_EQ(grown.getMax(), v(4, 1, 5));
}

TEST_F(sxVolumeTest, BoxTransformIsTheBoxOfTheCorners) {
  sxMatrix m;
  m.makeRot(45, 0, 0, 1);
  m.postTrans(10, 0, 0);
  sxBox b = B(v(-1, -1, -1), v(1, 1, 1));
  b.xform(m);
  const float r = std::sqrt(2.0f);
  EXPECT_TRUE(b.getMin().almostEqual(v(10 - r, -r, -1), 1e-5f));
  EXPECT_TRUE(b.getMax().almostEqual(v(10 + r, r, 1), 1e-5f));
  sxMatrix p;  // a projective matrix goes corner by corner
  p[3][3] = 2.0f;
  p.identifyType();
  b.xform(B(v(-2, 0, 2), v(2, 4, 6)), p);
  EXPECT_EQ(b.getMin(), v(-1, 0, 1));
  EXPECT_EQ(b.getMax(), v(1, 2, 3));
  sxBox empty;
  empty.xform(m);
  EXPECT_TRUE(empty.isEmpty());
}

TEST_F(sxVolumeTest, PlaneConstructionAndTests) {
  sxPlane p;
  EXPECT_EQ(p.getNegOctant(), sxVec3::OCTANT_PPP);
  p.make(v(0, 0, 5), v(0, 0, 2));
  EXPECT_EQ(p.getNormal(), v(0, 0, 1));
  EXPECT_EQ(p.pointDistance(v(0, 0, 5)), -10.0f);
  EXPECT_EQ(p[2], 1.0f);
  EXPECT_EQ(p[3], 5.0f);
  EXPECT_EQ(p[-1], 5.0f);
  EXPECT_EQ(p.contains(v(0, 0, 5)), IN);
  EXPECT_EQ(p.contains(v(0, 0, 5.001f)), OUT);
  p.make(v(-3, 0, -4), 2.0f);
  EXPECT_TRUE(p.getNormal().almostEqual(v(-0.6f, 0, -0.8f), 1e-6f));
  EXPECT_EQ(p.getNegOctant(), sxVec3::OCTANT_NPN);
  p.make(v(0, 0, 1), v(1, 0, 1), v(0, 1, 1));
  EXPECT_EQ(p.getOffset(), 1.0f);
  p.setNormal(0, 3, 0);
  EXPECT_EQ(p.getNormal(), v(0, 1, 0));
  EXPECT_EQ(p.getOffset(), 1.0f);
  // z <= 0; slanted, y <= x, where the octant picks the corners; half
  // spaces against half spaces.
  const sxPlane below = P(0, 0, 1, 0), slant = P(-1, 1, 0, 0);
  EXPECT_EQ(where({below.contains(S(0, 0, -1, 1)), below.contains(S(0, 0, 1, 1)),
                   below.contains(S(0, 0, 1.01f, 1)), below.contains(B(v(0, 0, -2), v(1, 1, 0))),
                   below.contains(B(v(0, 0, 0.1f), v(1, 1, 1))),
                   slant.contains(B(v(1, -1, 0), v(2, 0.5f, 1))),
                   slant.contains(B(v(0, 0.5f, 0), v(1, 2, 1))),
                   slant.contains(B(v(-2, 0, 0), v(-1, 2, 1))), below.contains(P(0, 0, 1, -1)),
                   below.contains(P(0, 0, 1, 1)), below.contains(P(0, 1, 0, 0)),
                   below.contains(P(0, 0, -1, 0)), below.contains(P(0, 0, -1, -0.5f))}),
            "IPOIOIPOIPPPO");
  EXPECT_FALSE(below.intersects(P(0, 0, -1, -0.5f)));
  sxPlane grow = below;
  grow.extendAround(v(4, 4, 3));
  EXPECT_EQ(grow.getOffset(), 3.0f);
  grow.extendAround(S(0, 0, 10, 1));
  grow.makeEmpty();
  EXPECT_EQ(grow.getOffset(), 3.0f);
}

TEST_F(sxVolumeTest, PlaneTransformKeepsItsPoints) {
  const sxPlane plane = P(1, 2, 3, 4);
  sxVec3 onPlane[3], axis, other;
  axis.cross(plane.normal, v(0, 0, 1));
  axis.normalize();
  other.cross(plane.normal, axis);
  onPlane[0].scale(plane.offset, plane.normal);
  onPlane[1].addScaled(onPlane[0], 3.0f, axis);
  onPlane[2].addScaled(onPlane[0], -2.0f, other);
  sxMatrix rigid, skew;
  rigid.makeHPR(20, 30, 40);
  rigid.postScale(2, 2, 2);
  rigid.postTrans(1, -2, 3);
  skew.makeScale(1, 3, 0.5f);
  skew.postRot(30, 1, 1, 0);
  skew.postTrans(0, 4, 0);
  for (const sxMatrix& m : {rigid, skew}) {
    sxPlane moved;
    moved.xform(plane, m);
    EXPECT_NEAR(moved.normal.length(), 1.0f, 1e-6f);
    for (const sxVec3& p : onPlane) EXPECT_NEAR(moved.normal.dot(p * m), moved.offset, 1e-4f);
    sxVec3 deep;  // the inside stays inside
    deep.scale(plane.offset - 1.0f, plane.normal);
    EXPECT_EQ(moved.contains(deep * m), IN);
    EXPECT_EQ(moved.getNegOctant(), moved.normal.getOctant());
  }
}

TEST_F(sxVolumeTest, RaysAgainstPlanesSpheresAndBoxes) {
  sxRay r(v(0, 0, 0), v(0, 0, 3), -1.0f);
  sxVec3 end;
  r.getEndPoint(end);
  EXPECT_EQ(end, v(0, 0, 3.4028233e36f));
  r.makeFromPoints(v(1, 1, 1), v(1, 1, 4));
  r.getEndPoint(end);
  EXPECT_EQ(end, v(1, 1, 4));
  EXPECT_EQ(sxRay(v(1, 1, 1), v(1, 1, 1)).getLength(), 0.0f);
  EXPECT_EQ(sxRay(v(0, 0, 0), v(0, 1.0000001f, 0)).getLength(), 1.0f);
  EXPECT_EQ(r, sxRay(v(1, 1, 1), v(1, 1, 4)));
  EXPECT_NE(r, sxRay(v(1, 1, 1), v(1, 1, 5)));
  // Against the ground, z <= 0: away, parallel and of no length miss; a
  // ball is hit also behind the start (callers start outside).
  const sxPlane ground = P(0, 0, 1, 0);
  const sxSphere ball = S(0, 10, 0, 2);
  const sxVec3 up = v(0, 0, 1), down = v(0, 0, -1), north = v(0, 1, 0), east = v(1, 0, 0);
  EXPECT_EQ(
      yes({R(v(0, 0, 5), down, 6).intersects(ground), ground.intersects(R(v(0, 0, 5), down, 6)),
           R(v(0, 0, 5), down, 4).intersects(ground), R(v(0, 0, 5), down, -1).intersects(ground),
           R(v(0, 0, 5), up, -1).intersects(ground), R(v(0, 0, 5), east, -1).intersects(ground),
           R(v(0, 0, 5), down, 0).intersects(ground), R(v(0, 0, 0), north, 8).intersects(ball),
           R(v(0, 0, 0), north, 7.9f).intersects(ball),
           R(v(0, 0, 0), v(0, 1, 0.21f), -1).intersects(ball),
           R(v(0, 0, 0), north, 0).intersects(ball), R(v(0, 20, 0), north, 1).intersects(ball),
           R(v(-1, 0.5f, 0.5f), east, 1).intersects(unitBox),
           R(v(-1, 1.5f, 0.5f), east, -1).intersects(unitBox),
           R(v(2, 0.5f, 0.5f), east, -1).intersects(unitBox),
           R(v(-1, -1, -1), v(1, 1, 1), -1).intersects(unitBox),
           R(v(0.5f, 0.5f, 0.5f), east, 0).intersects(unitBox),
           R(v(0, 0, 0), east, -1).intersects(sxBox())}),
      "110100010001100100");
  // Three-valued: a ray from inside that never leaves is inside.
  const sxVec3 diagonal = v(1, 1, 1), start = v(0.1f, 0.1f, 0.1f);
  EXPECT_EQ(
      where({ground.contains(R(v(0, 0, -1), east, -1)), ground.contains(R(v(0, 0, 5), down, 6)),
             ground.contains(R(v(0, 0, 5), down, 4)), ground.contains(R(v(0, 0, -5), up, 4)),
             ball.contains(R(v(0, 20, 0), north, 1)), ball.contains(R(v(0, 9, 0), north, 1)),
             ball.contains(R(v(0, 9, 0), north, 5)), ball.contains(R(v(0, 9, 0), north, -1)),
             unitBox.contains(R(start, diagonal, 1)), unitBox.contains(R(start, diagonal, 2)),
             unitBox.contains(R(start, diagonal, -1)),
             unitBox.contains(R(v(0, 1, 0.5f), east, 1))}),
      "IPOIOIPPIPPI");
}

TEST_F(sxVolumeTest, RaysAgainstTrianglesAndQuads) {
  const sxVec3 a(0, 0, 0), b(2, 0, 0), c(0, 2, 0), d(2, 2, 0);
  sxVec3 hit(9, 9, 9);
  const sxRay down(v(0.5f, 0.5f, 3), v(0, 0, -1), 5.0f);
  EXPECT_FLOAT_EQ(down.intersects(a, b, c, hit), 3.0f);
  EXPECT_TRUE(hit.almostEqual(v(0.5f, 0.5f, 0), 1e-6f));
  hit.set(9, 9, 9);
  const sxRay corner(v(1.5f, 1.5f, 3), v(0, 0, -1), 5.0f);
  EXPECT_EQ(corner.intersects(a, b, c, hit), -1.0f);
  EXPECT_EQ(hit, v(9, 9, 9));
  EXPECT_FLOAT_EQ(corner.intersects(a, b, d, c, hit), 3.0f);
  EXPECT_TRUE(hit.almostEqual(v(1.5f, 1.5f, 0), 1e-6f));
  // Too short, away, parallel, beside the quadrilateral: -1.
  EXPECT_EQ(yes({R(v(0.5f, 0.5f, 3), v(0, 0, -1), 2.9f).intersects(a, b, c, hit) == -1.0f,
                 R(v(0.5f, 0.5f, 3), v(0, 0, 1), -1).intersects(a, b, c, hit) == -1.0f,
                 R(v(0.5f, 0.5f, 3), v(1, 0, 0), -1).intersects(a, b, c, hit) == -1.0f,
                 R(v(2.5f, 1, 3), v(0, 0, -1), -1).intersects(a, b, d, c, hit) == -1.0f}),
            "1111");
  // The nearer of the two triangles' hits wins for a folded quadrilateral.
  const sxRay side(v(-1, 0.2f, 0.5f), v(1, 0, 0), -1.0f);
  const sxVec3 p0(0, 0, 0), p1(0, 0, 1), p2(2, 1, 1), p3(1, 1, 0);
  const float t = side.intersects(p0, p1, p2, p3, hit);
  EXPECT_GE(t, 0.0f);
  sxVec3 hit1, hit2;
  const float t1 = side.intersects(p0, p1, p2, hit1), t2 = side.intersects(p0, p2, p3, hit2);
  EXPECT_EQ(t, t1 < 0 ? t2 : t2 < 0 ? t1 : std::min(t1, t2));

  sxMatrix m;
  m.makeScale(2, 2, 2);
  m.postTrans(1, 0, 0);
  sxRay r(v(0, 0, 0), v(0, 3, 0));
  r.xform(m);
  EXPECT_EQ(r.getStartPoint(), v(1, 0, 0));
  EXPECT_EQ(r.getDirection(), v(0, 1, 0));
  r.getEndPoint(hit);
  EXPECT_EQ(hit, v(1, 6, 0));
  sxRay unbounded(v(0, 0, 0), v(1, 0, 0), -1.0f);
  unbounded.xform(unbounded, m);
  EXPECT_TRUE(unbounded.isUnbounded());
}

TEST_F(sxVolumeTest, DispatchCopiesAndEmptiness) {
  std::unique_ptr<sxVolume> volumes[] = {
      std::make_unique<sxPlane>(v(0, 0, 1), 0.0f), std::make_unique<sxBox>(unitBox),
      std::make_unique<sxSphere>(v(0, 0, 0), 1.0f), std::make_unique<sxFrustum>()};
  static_cast<sxFrustum&>(*volumes[3]).makePersp(-1, 1, -1, 1, 1, 10);
  sxArena arena;
  for (const auto& vol : volumes) {
    std::unique_ptr<sxVolume> copy(vol->createCopy());
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->getType(), vol->getType());
    sxVolume* disposable = vol->createDisposableCopy(&arena);
    ASSERT_TRUE(disposable);
    EXPECT_TRUE(arena.inRange(disposable));
    EXPECT_EQ(disposable->getType(), vol->getType());
    EXPECT_EQ(vol->createDisposableCopy(nullptr), nullptr);
    // The generic forms reach the typed ones.
    for (const auto& w : volumes) {
      const sxVolume& other = *w;
      auto same = [&](const auto& kind) {
        EXPECT_EQ(vol->contains(other), vol->contains(kind));
        EXPECT_EQ(vol->intersects(other), vol->intersects(kind));
      };
      switch (w->getType()) {
        case V::PLANE:
          same(static_cast<const sxPlane&>(other));
          break;
        case V::BOX:
          same(static_cast<const sxBox&>(other));
          break;
        case V::SPHERE:
          same(static_cast<const sxSphere&>(other));
          break;
        case V::FRUSTUM:
          same(static_cast<const sxFrustum&>(other));
          break;
      }
      EXPECT_TRUE(vol->intersects(other)) << vol->getType() << " " << w->getType();
    }
  }
  sxSphere s = S(5, 5, 5, 1);
  s.copy(*volumes[1]);  // another kind: nothing
  EXPECT_EQ(s, S(5, 5, 5, 1));
  s.copy(*volumes[2]);
  EXPECT_EQ(s, S(0, 0, 0, 1));
  static_cast<sxVolume&>(s).extendAround(static_cast<const sxVolume&>(S(3, 0, 0, 1)));
  EXPECT_FLOAT_EQ(s.radius, 2.5f);
  sxVec3 center(7, 7, 7);
  volumes[0]->getCenter(center);
  EXPECT_EQ(center, v(7, 7, 7));
  // Empty volumes meet nothing, on either side.
  const sxSphere empty, everything = S(0, 0, 0, 1e6f);
  auto meets = [](const sxVolume& a, const sxVolume& b) { return a.intersects(b); };
  EXPECT_EQ(yes({meets(empty, everything), meets(everything, empty), meets(everything, sxBox()),
                 meets(everything, sxFrustum()), meets(everything, unitBox)}),
            "00001");
}

}  // namespace
