#include <gtest/gtest.h>
#include <sx/math/sxBox.h>
#include <sx/math/sxFrustum.h>
#include <sx/math/sxMatrix.h>
#include <sx/math/sxPlane.h>
#include <sx/math/sxRay.h>
#include <sx/math/sxScalar.h>
#include <sx/math/sxSphere.h>
#include <sx/math/sxVolume.h>
#include <sx/persist/sxEntry.h>

#include <vector>

#include "math/sxMathFileTestUtil.h"

namespace {

using Bytes = std::vector<unsigned char>;

void expectSamePlane(const sxPlane& a, const sxPlane& b) {
  EXPECT_EQ(a.normal, b.normal);
  EXPECT_EQ(a.offset, b.offset);
  EXPECT_EQ(a.octant, b.octant);
}

// Field by field, exactly.
void expectSameFrustum(const sxFrustum& a, const sxFrustum& b) {
  EXPECT_EQ(a.isEmpty(), b.isEmpty());
  EXPECT_EQ(a.isOrtho(), b.isOrtho());
  for (int i = 0; i < 6; ++i) expectSamePlane(a.getPlane(i), b.getPlane(i));
  for (int i = 0; i < sxFrustum::numEdges; ++i)
    expectSamePlane(a.getEdgePlane(i), b.getEdgePlane(i));
  for (int i = 0; i < sxFrustum::numCorners; ++i) EXPECT_EQ(a.getCorner(i), b.getCorner(i));
  // An empty sphere is empty wherever its center was left.
  if (a.isEmpty() && b.isEmpty()) {
    EXPECT_TRUE(a.getBoundingSphere().isEmpty());
    EXPECT_TRUE(b.getBoundingSphere().isEmpty());
  } else {
    EXPECT_EQ(a.getBoundingSphere(), b.getBoundingSphere());
  }
  float al, ar, ab, at, bl, br, bb, bt;
  a.getNearPlaneCoords(al, ar, ab, at);
  b.getNearPlaneCoords(bl, br, bb, bt);
  EXPECT_EQ(al, bl);
  EXPECT_EQ(ar, br);
  EXPECT_EQ(ab, bb);
  EXPECT_EQ(at, bt);
  EXPECT_EQ(a.getNear(), b.getNear());
  EXPECT_EQ(a.getFar(), b.getFar());
}

sxFrustum movedPerspective() {
  sxFrustum f;
  EXPECT_TRUE(f.makePersp(-1.0f, 1.5f, -0.5f, 0.75f, 0.5f, 200.0f));
  sxMatrix m;
  m.makeHPR(30.0f, -10.0f, 5.0f);
  m.postTrans(3.0f, -4.0f, 12.0f);
  f.xform(m);
  return f;
}

TEST(VolumePersistence, EveryKindRoundTripsThroughAFileOnDisk) {
  const sxSphere sphere(sxVec3(1.0f, -2.0f, 3.5f), 4.25f);
  const sxBox box(sxVec3(-1.0f, -2.0f, -3.0f), sxVec3(4.0f, 5.5f, 6.0f));
  const sxPlane plane(sxVec3(-1.0f, 2.0f, -2.0f), 7.5f);
  ASSERT_EQ(plane.getNegOctant(), sxVec3::OCTANT_NPN);
  const sxFrustum persp = movedPerspective();
  sxFrustum ortho;
  ASSERT_TRUE(ortho.makeOrtho(-2.0f, 2.0f, -1.0f, 1.0f, -5.0f, 5.0f));
  const sxFrustum empty;
  const sxSphere emptySphere;
  const sxVolume* written[] = {&sphere, &box, &plane, &persp, &ortho, &empty, &emptySphere};
  const sxRay ray(sxVec3(0.5f, 1.0f, 1.5f), sxVec3(1.0f, 2.0f, 2.0f), 9.0f);

  sxSphere readSphere, readEmptySphere(sxVec3(1.0f, 1.0f, 1.0f), 1.0f);
  sxBox readBox;
  sxPlane readPlane;
  sxFrustum readPersp, readOrtho, readEmpty = movedPerspective();
  sxVolume* read[] = {&readSphere, &readBox,   &readPlane,      &readPersp,
                      &readOrtho,  &readEmpty, &readEmptySphere};
  sxRay readRay;
  sxRoundTripThroughFile(
      [&](sxEntry* e) {
        for (const sxVolume* v : written) v->write(e);
        ray.write(e);
      },
      [&](sxEntry* e) {
        for (sxVolume* v : read) v->read(e);
        readRay.read(e);
      });
  EXPECT_EQ(readSphere, sphere);
  EXPECT_TRUE(readEmptySphere.isEmpty());
  EXPECT_EQ(readBox.getMin(), box.getMin());
  EXPECT_EQ(readBox.getMax(), box.getMax());
  expectSamePlane(readPlane, plane);
  expectSameFrustum(readPersp, persp);
  expectSameFrustum(readOrtho, ortho);
  expectSameFrustum(readEmpty, empty);
  EXPECT_EQ(readRay, ray);
}

TEST(VolumePersistence, SphereBoxPlaneAndRayLayouts) {
  sxMemoryEntry f;
  sxSphere(sxVec3(1.0f, 2.0f, 3.0f), 4.0f).write(f.entry);
  EXPECT_EQ(f.bytes(), sxNativeBytes({1.0f, 2.0f, 3.0f, 4.0f}));

  sxMemoryEntry g;
  sxBox(sxVec3(-1.0f, -2.0f, -3.0f), sxVec3(1.0f, 2.0f, 3.0f)).write(g.entry);
  EXPECT_EQ(g.bytes(), sxNativeBytes({-1.0f, -2.0f, -3.0f, 1.0f, 2.0f, 3.0f}));

  sxMemoryEntry h;
  sxPlane(sxVec3(0.0f, -1.0f, 0.0f), 2.5f).write(h.entry);
  Bytes plane = sxNativeBytes({0.0f, -1.0f, 0.0f, 2.5f});
  sxAppend(plane, sxNativeBytes({int(sxVec3::OCTANT_PNP)}));
  EXPECT_EQ(h.bytes(), plane) << "normal, offset, octant as an int";

  sxMemoryEntry r;
  sxRay(sxVec3(1.0f, 2.0f, 3.0f), sxVec3(0.0f, 0.0f, -1.0f), 5.0f).write(r.entry);
  EXPECT_EQ(r.bytes(), sxNativeBytes({1.0f, 2.0f, 3.0f, 0.0f, 0.0f, -1.0f, 5.0f}));
}

TEST(VolumePersistence, FrustumLayout) {
  const sxFrustum f = movedPerspective();
  sxMemoryEntry m;
  f.write(m.entry);
  const Bytes bytes = m.bytes();
  ASSERT_EQ(bytes.size(), 504u) << "18 planes of 20 bytes, 8 corners, a sphere, 6 floats, 2 bools";

  // Its parts, each as it writes itself, in order.
  sxMemoryEntry parts;
  for (int i = 0; i < 6; ++i) f.getPlane(i).write(parts.entry);
  for (int i = 0; i < sxFrustum::numEdges; ++i) f.getEdgePlane(i).write(parts.entry);
  for (int i = 0; i < sxFrustum::numCorners; ++i) f.getCorner(i).write(parts.entry);
  f.getBoundingSphere().write(parts.entry);
  float l, r, b, t;
  f.getNearPlaneCoords(l, r, b, t);
  const float made[6] = {l, r, b, t, f.getNear(), f.getFar()};
  parts.entry->writeFloats(made, 6);
  parts.entry->writeBool(false);
  parts.entry->writeBool(false);
  EXPECT_EQ(bytes, parts.bytes());

  sxFrustum ortho;
  ASSERT_TRUE(ortho.makeOrtho(-1.0f, 1.0f, -1.0f, 1.0f, 0.0f, 1.0f));
  sxMemoryEntry o;
  ortho.write(o.entry);
  const Bytes orthoBytes = o.bytes();
  EXPECT_EQ(Bytes(orthoBytes.end() - 8, orthoBytes.end()), sxNativeBytes({1, 0}))
      << "ortho, not empty";
  sxMemoryEntry e;
  sxFrustum().write(e.entry);
  const Bytes emptyBytes = e.bytes();
  EXPECT_EQ(Bytes(emptyBytes.end() - 8, emptyBytes.end()), sxNativeBytes({0, 1})) << "empty";
}

// Rebuilding the derived planes and the sphere would go through sxSqrt, so
// a reader with another square-root method would get another frustum.
TEST(VolumePersistence, FrustumComesBackExactlyUnderAnotherSquareRootMethod) {
  const SXSQRT_METHOD before = sxGetSqrtMethod();
  sxSetSqrtMethod(SXSQRT_TABLE_256);
  const sxFrustum coarse = movedPerspective();
  sxMemoryEntry m;
  coarse.write(m.entry);
  sxSetSqrtMethod(SXSQRT_HARDWARE);
  const sxFrustum fine = movedPerspective();
  ASSERT_NE(fine.getBoundingSphere().radius, coarse.getBoundingSphere().radius)
      << "the methods must give different frusta for this test to tell";
  m.entry->reset();
  sxFrustum back;
  back.read(m.entry);
  sxSetSqrtMethod(before);
  expectSameFrustum(back, coarse);
}

TEST(VolumePersistence, TruncatedRecordsReadTheEndOfDataValues) {
  sxMemoryEntry s;
  sxSphere(sxVec3(1.0f, 2.0f, 3.0f), 4.0f).write(s.entry);
  sxSphere sphere;
  sphere.read(s.truncated(12));
  EXPECT_EQ(sphere.center, sxVec3(1.0f, 2.0f, 3.0f));
  EXPECT_TRUE(sphere.isEmpty()) << "the radius reads as -1";

  sxMemoryEntry b;
  sxBox(sxVec3(1.0f, 2.0f, 3.0f), sxVec3(4.0f, 5.0f, 6.0f)).write(b.entry);
  sxBox box;
  box.read(b.truncated(16));
  EXPECT_EQ(box.getMin(), sxVec3(1.0f, 2.0f, 3.0f));
  EXPECT_EQ(box.getMax(), sxVec3(4.0f, -1.0f, -1.0f));

  sxMemoryEntry p;
  sxPlane(sxVec3(1.0f, 0.0f, 0.0f), 2.0f).write(p.entry);
  sxPlane plane;
  plane.read(p.truncated(16));
  EXPECT_EQ(plane.normal, sxVec3(1.0f, 0.0f, 0.0f));
  EXPECT_EQ(plane.offset, 2.0f);
  EXPECT_EQ(int(plane.octant), -1);

  sxMemoryEntry r;
  sxRay(sxVec3(1.0f, 2.0f, 3.0f), sxVec3(0.0f, 1.0f, 0.0f), 5.0f).write(r.entry);
  sxRay ray;
  ray.read(r.truncated(24));
  EXPECT_EQ(ray.direction, sxVec3(0.0f, 1.0f, 0.0f));
  EXPECT_TRUE(ray.isUnbounded()) << "the length reads as -1";
}

// The empty flag comes last and reads as true past the end.
TEST(VolumePersistence, TruncatedFrustumComesBackEmpty) {
  const sxFrustum made = movedPerspective();
  sxMemoryEntry m;
  made.write(m.entry);
  for (int keep : {500, 250, 0}) {
    sxFrustum f = movedPerspective();
    f.read(m.truncated(keep));
    EXPECT_TRUE(f.isEmpty()) << keep;
    expectSameFrustum(f, sxFrustum());
  }
  sxFrustum whole;
  whole.read(m.truncated(504));
  EXPECT_FALSE(whole.isEmpty());
}

TEST(VolumePersistence, NoEntryLeavesTheVolumeAlone) {
  sxSphere s(sxVec3(1.0f, 2.0f, 3.0f), 4.0f);
  sxVolume& v = s;
  v.read(nullptr);
  v.write(nullptr);
  EXPECT_EQ(s, sxSphere(sxVec3(1.0f, 2.0f, 3.0f), 4.0f));
  sxFrustum f = movedPerspective();
  f.read(nullptr);
  f.write(nullptr);
  expectSameFrustum(f, movedPerspective());
  sxRay ray(sxVec3(1.0f, 2.0f, 3.0f), sxVec3(0.0f, 1.0f, 0.0f), 5.0f);
  ray.read(nullptr);
  ray.write(nullptr);
  EXPECT_EQ(ray.length, 5.0f);
}

}  // namespace
