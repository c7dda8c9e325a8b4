#include <sx/sxCore.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <memory>

namespace {

using V = sxVolume;

class sxVolumeTest : public testing::Test {
 protected:
  void SetUp() override { sxSetSqrtMethod(SXSQRT_HARDWARE); }
  const sxBox unitBox{sxVec3(0, 0, 0), sxVec3(1, 1, 1)};
};

TEST_F(sxVolumeTest, SphereGrowsAndContains) {
  sxSphere s;
  EXPECT_TRUE(s.isEmpty());
  s.extendAround(sxVec3(1, 2, 3));
  EXPECT_EQ(s, sxSphere(sxVec3(1, 2, 3), 0.0f));
  s.extendAround(sxVec3(1, 2, 3));  // the center of a point sphere
  EXPECT_EQ(s, sxSphere(sxVec3(1, 2, 3), 0.0f));
  s.extendAround(sxVec3(3, 2, 3));
  EXPECT_EQ(s, sxSphere(sxVec3(2, 2, 3), 1.0f));
  s.extendAround(sxVec3(2.5f, 2, 3));  // inside: nothing changes
  EXPECT_EQ(s, sxSphere(sxVec3(2, 2, 3), 1.0f));
  s.setRadius(-3.0f);
  EXPECT_EQ(s.radius, 0.0f);
  EXPECT_FALSE(s.isEmpty());

  const sxSphere unit(sxVec3(0, 0, 0), 1.0f);
  EXPECT_EQ(unit.contains(sxVec3(1, 0, 0)), V::INSIDE);
  EXPECT_EQ(unit.contains(sxVec3(1, 0.001f, 0)), V::OUTSIDE);
  EXPECT_EQ(unit.contains(sxSphere(sxVec3(2.0001f, 0, 0), 1.0f)), V::OUTSIDE);
  EXPECT_EQ(unit.contains(sxSphere(sxVec3(0.5f, 0, 0), 0.4f)), V::INSIDE);
  EXPECT_EQ(unit.contains(sxSphere(sxVec3(0.5f, 0, 0), 0.5f)), V::PARTIAL);  // strict
  EXPECT_EQ(unit.contains(sxSphere(sxVec3(0, 0, 0), 2.0f)), V::PARTIAL);
  EXPECT_LE(unit, sxSphere(sxVec3(9, 9, 9), 1.0f));
  EXPECT_GE(unit, sxSphere(sxVec3(9, 9, 9), 0.5f));

  // Boxes: corners within the radius, or no point within it.
  EXPECT_EQ(unit.contains(sxBox(sxVec3(-0.5f, -0.5f, -0.5f), sxVec3(0.5f, 0.5f, 0.5f))), V::INSIDE);
  EXPECT_EQ(unit.contains(sxBox(sxVec3(-0.6f, -0.6f, -0.6f), sxVec3(0.6f, 0.6f, 0.6f))),
            V::PARTIAL);
  EXPECT_EQ(unit.contains(sxBox(sxVec3(0.8f, 0.8f, 0), sxVec3(2, 2, 1))), V::OUTSIDE);
  EXPECT_EQ(unit.contains(sxBox(sxVec3(0.7f, 0.7f, 0), sxVec3(2, 2, 1))), V::PARTIAL);
  EXPECT_EQ(unit.contains(sxBox()), V::OUTSIDE);
  // A sphere never holds a half space.
  EXPECT_EQ(unit.contains(sxPlane(sxVec3(0, 0, 1), -1.0f)), V::PARTIAL);
  EXPECT_EQ(unit.contains(sxPlane(sxVec3(0, 0, 1), -1.01f)), V::OUTSIDE);
}

TEST_F(sxVolumeTest, SphereExtendsAroundOtherVolumes) {
  sxSphere s(sxVec3(0, 0, 0), 1.0f);
  s.extendAround(sxSphere(sxVec3(4, 0, 0), 1.0f));
  EXPECT_FLOAT_EQ(s.radius, 3.0f);
  s.extendAround(sxSphere(sxVec3(1, 0, 0), 0.5f));  // inside
  EXPECT_FLOAT_EQ(s.radius, 3.0f);
  s.extendAround(sxSphere(sxVec3(1, 0, 0), 10.0f));  // swallows it
  EXPECT_EQ(s, sxSphere(sxVec3(1, 0, 0), 10.0f));
  s.extendAround(sxSphere());
  EXPECT_EQ(s.radius, 10.0f);
  sxSphere empty;
  empty.extendAround(sxSphere(sxVec3(1, 1, 1), 2.0f));
  EXPECT_EQ(empty, sxSphere(sxVec3(1, 1, 1), 2.0f));

  sxSphere around;
  around.extendAround(unitBox);
  for (int octant = 0; octant < 8; ++octant) {
    sxVec3 corner;
    unitBox.getCorner(static_cast<sxVec3::OCTANT>(octant), corner);
    EXPECT_LE(around.center.distance(corner), around.radius * 1.00001f);
  }
  around.makeEmpty();
  around.extendAround(sxRay(sxVec3(0, 0, 0), sxVec3(0, 0, 4)));
  EXPECT_EQ(around, sxSphere(sxVec3(0, 0, 2), 2.0f));
  const sxVec3 points[3] = {{0, 0, 0}, {2, 0, 0}, {1, 0, 0}};
  around.makeEmpty();
  static_cast<sxVolume&>(around).extendAround(points, 3);
  EXPECT_EQ(around, sxSphere(sxVec3(1, 0, 0), 1.0f));
}

TEST_F(sxVolumeTest, SphereTransform) {
  sxSphere s(sxVec3(1, 0, 0), 2.0f);
  sxMatrix m;
  s.xform(m);
  EXPECT_EQ(s, sxSphere(sxVec3(1, 0, 0), 2.0f));
  m.makeRot(90, 0, 0, 1);
  m.postTrans(0, 0, 5);
  s.xform(m);
  EXPECT_TRUE(s.center.almostEqual(sxVec3(0, 1, 5), 1e-6f));
  EXPECT_EQ(s.radius, 2.0f);
  m.makeScale(3, 3, 3);
  s.xform(m);
  EXPECT_FLOAT_EQ(s.radius, 6.0f);
  // Only the Z axis measures the scale.
  m.makeScale(10, 10, 1);
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
  b.extendAround(sxVec3(1, 2, 3));
  EXPECT_EQ(b.getMin(), sxVec3(1, 2, 3));
  EXPECT_EQ(b.getMax(), sxVec3(1, 2, 3));
  b.extendAround(sxVec3(-1, 5, 3));
  EXPECT_EQ(b.getMin(), sxVec3(-1, 2, 3));
  EXPECT_EQ(b.getMax(), sxVec3(1, 5, 3));

  sxVec3 corner(7, 7, 7);
  const sxBox box(sxVec3(0, 1, 2), sxVec3(3, 4, 5));
  box.getCorner(sxVec3::OCTANT_PPP, corner);
  EXPECT_EQ(corner, sxVec3(3, 4, 5));
  box.getCorner(sxVec3::OCTANT_NPN, corner);
  EXPECT_EQ(corner, sxVec3(0, 4, 2));
  box.getCorner(static_cast<sxVec3::OCTANT>(8), corner);
  EXPECT_EQ(corner, sxVec3(0, 4, 2));
  sxVec3 c;
  box.getCenter(c);
  EXPECT_EQ(c, sxVec3(1.5f, 2.5f, 3.5f));

  EXPECT_EQ(unitBox.contains(sxVec3(1, 1, 1)), V::INSIDE);
  EXPECT_EQ(unitBox.contains(sxVec3(1, 1, 1.0001f)), V::OUTSIDE);
  EXPECT_EQ(unitBox.contains(sxBox(sxVec3(0, 0, 0), sxVec3(1, 1, 1))), V::INSIDE);
  EXPECT_EQ(unitBox.contains(sxBox(sxVec3(1, 1, 1), sxVec3(2, 2, 2))), V::PARTIAL);
  EXPECT_EQ(unitBox.contains(sxBox(sxVec3(1.1f, 0, 0), sxVec3(2, 1, 1))), V::OUTSIDE);
  EXPECT_EQ(unitBox.contains(sxSphere(sxVec3(0.5f, 0.5f, 0.5f), 0.5f)), V::INSIDE);
  EXPECT_EQ(unitBox.contains(sxSphere(sxVec3(2, 2, 2), 1.74f)), V::PARTIAL);
  EXPECT_EQ(unitBox.contains(sxSphere(sxVec3(2, 2, 2), 1.72f)), V::OUTSIDE);
  EXPECT_EQ(unitBox.contains(sxPlane(sxVec3(1, 0, 0), 0.0f)), V::PARTIAL);
  EXPECT_EQ(unitBox.contains(sxPlane(sxVec3(1, 0, 0), -0.1f)), V::OUTSIDE);

  sxBox grown = unitBox;
  grown.extendAround(sxSphere(sxVec3(3, 0, 0), 1.0f));
  EXPECT_EQ(grown.getMax(), sxVec3(4, 1, 1));
  grown.extendAround(sxBox(sxVec3(-2, 0, 0), sxVec3(0, 0, 5)));
  EXPECT_EQ(grown.getMax(), sxVec3(4, 1, 5));
  grown.extendAround(sxBox());
  grown.extendAround(sxSphere());
  grown.extendAround(sxPlane());
  EXPECT_EQ(grown.getMax(), sxVec3(4, 1, 5));
}

TEST_F(sxVolumeTest, BoxTransformIsTheBoxOfTheCorners) {
  sxMatrix m;
  m.makeRot(45, 0, 0, 1);
  m.postTrans(10, 0, 0);
  sxBox b(sxVec3(-1, -1, -1), sxVec3(1, 1, 1));
  b.xform(m);
  const float r = std::sqrt(2.0f);
  EXPECT_TRUE(b.getMin().almostEqual(sxVec3(10 - r, -r, -1), 1e-5f));
  EXPECT_TRUE(b.getMax().almostEqual(sxVec3(10 + r, r, 1), 1e-5f));
  // A projective matrix goes corner by corner.
  sxMatrix p;
  p[3][3] = 2.0f;
  p.identifyType();
  b.xform(sxBox(sxVec3(-2, 0, 2), sxVec3(2, 4, 6)), p);
  EXPECT_EQ(b.getMin(), sxVec3(-1, 0, 1));
  EXPECT_EQ(b.getMax(), sxVec3(1, 2, 3));
  sxBox empty;
  empty.xform(m);
  EXPECT_TRUE(empty.isEmpty());
}

TEST_F(sxVolumeTest, PlaneConstructionAndTests) {
  sxPlane p;
  EXPECT_EQ(p.getNormal(), sxVec3(0, 0, 1));
  EXPECT_EQ(p.getNegOctant(), sxVec3::OCTANT_PPP);
  p.make(sxVec3(0, 0, 5), sxVec3(0, 0, 2));
  EXPECT_EQ(p.getNormal(), sxVec3(0, 0, 1));
  EXPECT_EQ(p.getOffset(), 5.0f);
  EXPECT_EQ(p.contains(sxVec3(0, 0, 5)), V::INSIDE);
  EXPECT_EQ(p.contains(sxVec3(0, 0, 5.001f)), V::OUTSIDE);
  EXPECT_EQ(p.pointDistance(sxVec3(0, 0, 5)), -10.0f);
  EXPECT_EQ(p[2], 1.0f);
  EXPECT_EQ(p[3], 5.0f);
  EXPECT_EQ(p[-1], 5.0f);
  p.make(sxVec3(-3, 0, -4), 2.0f);
  EXPECT_TRUE(p.getNormal().almostEqual(sxVec3(-0.6f, 0, -0.8f), 1e-6f));
  EXPECT_EQ(p.getNegOctant(), sxVec3::OCTANT_NPN);
  p.make(sxVec3(0, 0, 1), sxVec3(1, 0, 1), sxVec3(0, 1, 1));
  EXPECT_EQ(p.getNormal(), sxVec3(0, 0, 1));
  EXPECT_EQ(p.getOffset(), 1.0f);
  p.setNormal(0, 3, 0);
  EXPECT_EQ(p.getNormal(), sxVec3(0, 1, 0));
  EXPECT_EQ(p.getOffset(), 1.0f);

  const sxPlane below(sxVec3(0, 0, 1), 0.0f);  // z <= 0
  EXPECT_EQ(below.contains(sxSphere(sxVec3(0, 0, -1), 1.0f)), V::INSIDE);
  EXPECT_EQ(below.contains(sxSphere(sxVec3(0, 0, 1), 1.0f)), V::PARTIAL);
  EXPECT_EQ(below.contains(sxSphere(sxVec3(0, 0, 1.01f), 1.0f)), V::OUTSIDE);
  EXPECT_EQ(below.contains(sxBox(sxVec3(0, 0, -2), sxVec3(1, 1, 0))), V::INSIDE);
  EXPECT_EQ(below.contains(sxBox(sxVec3(0, 0, 0.1f), sxVec3(1, 1, 1))), V::OUTSIDE);
  // Slanted: the octant picks the corners.
  const sxPlane slant(sxVec3(-1, 1, 0), 0.0f);  // y <= x
  EXPECT_EQ(slant.contains(sxBox(sxVec3(1, -1, 0), sxVec3(2, 0.5f, 1))), V::INSIDE);
  EXPECT_EQ(slant.contains(sxBox(sxVec3(0, 0.5f, 0), sxVec3(1, 2, 1))), V::PARTIAL);
  EXPECT_EQ(slant.contains(sxBox(sxVec3(-2, 0, 0), sxVec3(-1, 2, 1))), V::OUTSIDE);
  // Half spaces against half spaces.
  EXPECT_EQ(below.contains(sxPlane(sxVec3(0, 0, 1), -1.0f)), V::INSIDE);
  EXPECT_EQ(below.contains(sxPlane(sxVec3(0, 0, 1), 1.0f)), V::PARTIAL);
  EXPECT_EQ(below.contains(sxPlane(sxVec3(0, 1, 0), 0.0f)), V::PARTIAL);
  EXPECT_EQ(below.contains(sxPlane(sxVec3(0, 0, -1), 0.0f)), V::PARTIAL);  // share z = 0
  EXPECT_EQ(below.contains(sxPlane(sxVec3(0, 0, -1), -0.5f)), V::OUTSIDE);
  EXPECT_FALSE(below.intersects(sxPlane(sxVec3(0, 0, -1), -0.5f)));

  sxPlane grow = below;
  grow.extendAround(sxVec3(4, 4, 3));
  EXPECT_EQ(grow.getOffset(), 3.0f);
  EXPECT_EQ(grow.getOffset(), 3.0f);
  grow.extendAround(sxSphere(sxVec3(0, 0, 10), 1.0f));
  grow.makeEmpty();
  EXPECT_EQ(grow.getOffset(), 3.0f);
}

TEST_F(sxVolumeTest, PlaneTransformKeepsItsPoints) {
  const sxPlane plane(sxVec3(1, 2, 3), 4.0f);
  sxVec3 onPlane[3];
  sxVec3 axis;
  axis.cross(plane.normal, sxVec3(0, 0, 1));
  axis.normalize();
  sxVec3 other;
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
    for (const sxVec3& p : onPlane) {
      sxVec3 q;
      q.xformPt(p, m);
      EXPECT_NEAR(moved.normal.dot(q), moved.offset, 1e-4f);
    }
    // The inside stays inside.
    sxVec3 deep, q;
    deep.scale(plane.offset - 1.0f, plane.normal);
    q.xformPt(deep, m);
    EXPECT_EQ(moved.contains(q), V::INSIDE);
    EXPECT_EQ(moved.getNegOctant(), moved.normal.getOctant());
  }
}

TEST_F(sxVolumeTest, RaysAgainstPlanesAndSpheres) {
  sxRay r(sxVec3(0, 0, 0), sxVec3(0, 0, 3), -1.0f);
  EXPECT_EQ(r.getDirection(), sxVec3(0, 0, 1));
  sxVec3 end;
  r.getEndPoint(end);
  EXPECT_EQ(end, sxVec3(0, 0, 3.4028233e36f));
  r.makeFromPoints(sxVec3(1, 1, 1), sxVec3(1, 1, 4));
  r.getEndPoint(end);
  EXPECT_EQ(end, sxVec3(1, 1, 4));
  EXPECT_EQ(sxRay(sxVec3(1, 1, 1), sxVec3(1, 1, 1)).getLength(), 0.0f);
  EXPECT_EQ(sxRay(sxVec3(0, 0, 0), sxVec3(0, 1.0000001f, 0)).getLength(), 1.0f);
  EXPECT_EQ(r, sxRay(sxVec3(1, 1, 1), sxVec3(1, 1, 4)));
  EXPECT_NE(r, sxRay(sxVec3(1, 1, 1), sxVec3(1, 1, 5)));

  const sxPlane ground(sxVec3(0, 0, 1), 0.0f);
  const sxRay down(sxVec3(0, 0, 5), sxVec3(0, 0, -1), 6.0f);
  EXPECT_TRUE(down.intersects(ground));
  EXPECT_FALSE(sxRay(sxVec3(0, 0, 5), sxVec3(0, 0, -1), 4.0f).intersects(ground));
  EXPECT_TRUE(sxRay(sxVec3(0, 0, 5), sxVec3(0, 0, -1), -1.0f).intersects(ground));
  EXPECT_FALSE(sxRay(sxVec3(0, 0, 5), sxVec3(0, 0, 1), -1.0f).intersects(ground));  // away
  EXPECT_FALSE(sxRay(sxVec3(0, 0, 5), sxVec3(1, 0, 0), -1.0f).intersects(ground));  // parallel
  EXPECT_FALSE(sxRay(sxVec3(0, 0, 5), sxVec3(0, 0, -1), 0.0f).intersects(ground));
  // Three-valued: the ray from inside the half space that never leaves it.
  EXPECT_EQ(ground.contains(sxRay(sxVec3(0, 0, -1), sxVec3(1, 0, 0), -1.0f)), V::INSIDE);
  EXPECT_EQ(ground.contains(down), V::PARTIAL);
  EXPECT_EQ(ground.contains(sxRay(sxVec3(0, 0, 5), sxVec3(0, 0, -1), 4.0f)), V::OUTSIDE);
  EXPECT_EQ(ground.contains(sxRay(sxVec3(0, 0, -5), sxVec3(0, 0, 1), 4.0f)), V::INSIDE);

  const sxSphere ball(sxVec3(0, 10, 0), 2.0f);
  EXPECT_TRUE(sxRay(sxVec3(0, 0, 0), sxVec3(0, 1, 0), 8.0f).intersects(ball));
  EXPECT_FALSE(sxRay(sxVec3(0, 0, 0), sxVec3(0, 1, 0), 7.9f).intersects(ball));
  EXPECT_FALSE(sxRay(sxVec3(0, 0, 0), sxVec3(0, 1, 0.21f), -1.0f).intersects(ball));
  EXPECT_FALSE(sxRay(sxVec3(0, 0, 0), sxVec3(0, 1, 0), 0.0f).intersects(ball));
  // Behind the start counts as hit: callers start outside.
  EXPECT_TRUE(sxRay(sxVec3(0, 20, 0), sxVec3(0, 1, 0), 1.0f).intersects(ball));
  EXPECT_EQ(ball.contains(sxRay(sxVec3(0, 20, 0), sxVec3(0, 1, 0), 1.0f)), V::OUTSIDE);
  EXPECT_EQ(ball.contains(sxRay(sxVec3(0, 9, 0), sxVec3(0, 1, 0), 1.0f)), V::INSIDE);
  EXPECT_EQ(ball.contains(sxRay(sxVec3(0, 9, 0), sxVec3(0, 1, 0), 5.0f)), V::PARTIAL);
  EXPECT_EQ(ball.contains(sxRay(sxVec3(0, 9, 0), sxVec3(0, 1, 0), -1.0f)), V::PARTIAL);
}

TEST_F(sxVolumeTest, RaysAgainstBoxesTrianglesAndQuads) {
  EXPECT_TRUE(sxRay(sxVec3(-1, 0.5f, 0.5f), sxVec3(1, 0, 0), 1.0f).intersects(unitBox));
  EXPECT_FALSE(sxRay(sxVec3(-1, 1.5f, 0.5f), sxVec3(1, 0, 0), -1.0f).intersects(unitBox));
  EXPECT_FALSE(sxRay(sxVec3(2, 0.5f, 0.5f), sxVec3(1, 0, 0), -1.0f).intersects(unitBox));
  EXPECT_TRUE(sxRay(sxVec3(-1, -1, -1), sxVec3(1, 1, 1), -1.0f).intersects(unitBox));
  EXPECT_FALSE(sxRay(sxVec3(0.5f, 0.5f, 0.5f), sxVec3(1, 0, 0), 0.0f).intersects(unitBox));
  EXPECT_FALSE(sxRay(sxVec3(0, 0, 0), sxVec3(1, 0, 0), -1.0f).intersects(sxBox()));
  EXPECT_EQ(unitBox.contains(sxRay(sxVec3(0.1f, 0.1f, 0.1f), sxVec3(1, 1, 1), 1.0f)), V::INSIDE);
  EXPECT_EQ(unitBox.contains(sxRay(sxVec3(0.1f, 0.1f, 0.1f), sxVec3(1, 1, 1), 2.0f)), V::PARTIAL);
  EXPECT_EQ(unitBox.contains(sxRay(sxVec3(0.1f, 0.1f, 0.1f), sxVec3(1, 1, 1), -1.0f)), V::PARTIAL);
  EXPECT_EQ(unitBox.contains(sxRay(sxVec3(0, 1, 0.5f), sxVec3(1, 0, 0), 1.0f)), V::INSIDE);

  const sxVec3 a(0, 0, 0), b(2, 0, 0), c(0, 2, 0), d(2, 2, 0);
  sxVec3 hit(9, 9, 9);
  const sxRay down(sxVec3(0.5f, 0.5f, 3), sxVec3(0, 0, -1), 5.0f);
  EXPECT_FLOAT_EQ(down.intersects(a, b, c, hit), 3.0f);
  EXPECT_TRUE(hit.almostEqual(sxVec3(0.5f, 0.5f, 0), 1e-6f));
  hit.set(9, 9, 9);
  const sxRay corner(sxVec3(1.5f, 1.5f, 3), sxVec3(0, 0, -1), 5.0f);
  EXPECT_EQ(corner.intersects(a, b, c, hit), -1.0f);
  EXPECT_EQ(hit, sxVec3(9, 9, 9));
  EXPECT_FLOAT_EQ(corner.intersects(a, b, d, c, hit), 3.0f);
  EXPECT_TRUE(hit.almostEqual(sxVec3(1.5f, 1.5f, 0), 1e-6f));
  EXPECT_EQ(sxRay(sxVec3(0.5f, 0.5f, 3), sxVec3(0, 0, -1), 2.9f).intersects(a, b, c, hit), -1.0f);
  EXPECT_EQ(sxRay(sxVec3(0.5f, 0.5f, 3), sxVec3(0, 0, 1), -1.0f).intersects(a, b, c, hit), -1.0f);
  EXPECT_EQ(sxRay(sxVec3(0.5f, 0.5f, 3), sxVec3(1, 0, 0), -1.0f).intersects(a, b, c, hit), -1.0f);
  EXPECT_EQ(sxRay(sxVec3(2.5f, 1, 3), sxVec3(0, 0, -1), -1.0f).intersects(a, b, d, c, hit), -1.0f);
  // The nearer of the two triangles' hits wins for a folded quadrilateral.
  const sxRay side(sxVec3(-1, 0.2f, 0.5f), sxVec3(1, 0, 0), -1.0f);
  const sxVec3 p0(0, 0, 0), p1(0, 0, 1), p2(2, 1, 1), p3(1, 1, 0);
  const float t = side.intersects(p0, p1, p2, p3, hit);
  EXPECT_GE(t, 0.0f);
  sxVec3 hit1, hit2;
  const float t1 = side.intersects(p0, p1, p2, hit1), t2 = side.intersects(p0, p2, p3, hit2);
  EXPECT_EQ(t, t1 < 0 ? t2 : t2 < 0 ? t1 : std::min(t1, t2));
}

TEST_F(sxVolumeTest, RayTransform) {
  sxMatrix m;
  m.makeScale(2, 2, 2);
  m.postTrans(1, 0, 0);
  sxRay r(sxVec3(0, 0, 0), sxVec3(0, 3, 0));
  r.xform(m);
  EXPECT_EQ(r.getStartPoint(), sxVec3(1, 0, 0));
  EXPECT_EQ(r.getDirection(), sxVec3(0, 1, 0));
  sxVec3 end;
  r.getEndPoint(end);
  EXPECT_EQ(end, sxVec3(1, 6, 0));
  sxRay unbounded(sxVec3(0, 0, 0), sxVec3(1, 0, 0), -1.0f);
  unbounded.xform(unbounded, m);
  EXPECT_TRUE(unbounded.isUnbounded());
}

TEST_F(sxVolumeTest, DispatchCopiesAndEmptiness) {
  std::unique_ptr<sxVolume> volumes[] = {
      std::make_unique<sxPlane>(sxVec3(0, 0, 1), 0.0f), std::make_unique<sxBox>(unitBox),
      std::make_unique<sxSphere>(sxVec3(0, 0, 0), 1.0f), std::make_unique<sxFrustum>()};
  static_cast<sxFrustum&>(*volumes[3]).makePersp(-1, 1, -1, 1, 1, 10);
  sxArena arena;
  for (const auto& v : volumes) {
    std::unique_ptr<sxVolume> copy(v->createCopy());
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->getType(), v->getType());
    sxVolume* disposable = v->createDisposableCopy(&arena);
    ASSERT_TRUE(disposable);
    EXPECT_TRUE(arena.inRange(disposable));
    EXPECT_EQ(disposable->getType(), v->getType());
    EXPECT_EQ(v->createDisposableCopy(nullptr), nullptr);
    // The generic forms reach the typed ones.
    for (const auto& w : volumes) {
      const sxVolume& other = *w;
      auto same = [&](const auto& kind) {
        EXPECT_EQ(v->contains(other), v->contains(kind));
        EXPECT_EQ(v->intersects(other), v->intersects(kind));
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
      EXPECT_TRUE(v->intersects(other)) << v->getType() << " " << w->getType();
    }
  }
  sxSphere s(sxVec3(5, 5, 5), 1.0f);
  s.copy(*volumes[1]);  // another kind: nothing
  EXPECT_EQ(s, sxSphere(sxVec3(5, 5, 5), 1.0f));
  s.copy(*volumes[2]);
  EXPECT_EQ(s, sxSphere(sxVec3(0, 0, 0), 1.0f));
  sxVolume& grown = s;
  grown.extendAround(static_cast<const sxVolume&>(sxSphere(sxVec3(3, 0, 0), 1.0f)));
  EXPECT_FLOAT_EQ(s.radius, 2.5f);
  sxVec3 center(7, 7, 7);
  volumes[0]->getCenter(center);
  EXPECT_EQ(center, sxVec3(7, 7, 7));

  // Empty volumes meet nothing, on either side.
  const sxSphere empty;
  const sxSphere everything(sxVec3(0, 0, 0), 1e6f);
  EXPECT_FALSE(empty.intersects(static_cast<const sxVolume&>(everything)));
  EXPECT_FALSE(everything.intersects(static_cast<const sxVolume&>(empty)));
  EXPECT_FALSE(everything.intersects(static_cast<const sxVolume&>(sxBox())));
  EXPECT_FALSE(everything.intersects(static_cast<const sxVolume&>(sxFrustum())));
  EXPECT_TRUE(everything.intersects(static_cast<const sxVolume&>(unitBox)));
}

}  // namespace
