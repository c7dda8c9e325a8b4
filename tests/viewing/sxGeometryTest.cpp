#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <limits>

#include "support/sxThroughFile.h"

namespace {

sxArray* makeArray(sxArray::DATA_TYPE type, std::initializer_list<float> values) {
  const int per = sxArray::getElemSize(type) / 4;
  auto* a = new sxArray(int(values.size()) / per, type);
  std::copy(values.begin(), values.end(), static_cast<float*>(a->getData()));
  return a;
}

sxArray* makeIndices(const std::array<int, 3>& values) {
  auto* a = new sxArray(int(values.size()), sxArray::TYPE_INT);
  std::copy(values.begin(), values.end(), static_cast<int*>(a->getData()));
  return a;
}

}  // namespace

// The bounds leave out positions that are not finite and are placed by the
// transforms above; arrays of the wrong element type are refused; copies
// and clones share the arrays.
TEST(sxGeometry, BoundsFromPositionsAndSharedCopies) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  sxRef<sxTransform> root(new sxTransform);
  root->setXYZ(10.0f, 0.0f, 0.0f);
  auto* g = new sxGeometry;
  root->addChild(g);
  EXPECT_TRUE(g->anyTravFlags(sxGeometry::CONTENT_GEOMETRY));
  sxRef<sxArray> flat(makeArray(sxArray::TYPE_VEC2, {0, 0}));
  EXPECT_FALSE(g->setArray(sxGeometry::POSITIONS, flat.get()));
  ASSERT_TRUE(g->setArray(sxGeometry::POSITIONS,
                          makeArray(sxArray::TYPE_VEC3, {-1, 0, 0, 1, 0, 0, nan, 5, 5, 0, 1, 0})));
  EXPECT_EQ(g->getBox().getMin(), sxVec3(-1, 0, 0));
  EXPECT_EQ(g->getBox().getMax(), sxVec3(1, 1, 0));
  sxSphere bounds;
  root->getBoundingVolume(bounds);
  EXPECT_NEAR(bounds.getCenter().x, 10.0f, 1e-5f);
  EXPECT_NEAR(bounds.getRadius(), std::sqrt(1.25f), 1e-5f);

  for (bool cloning : {false, true}) {
    sxRef<sxGroup> other(cloning ? root->makeClone() : root->makeCopy());
    auto* copy = static_cast<sxGeometry*>(other->getChild(0));
    EXPECT_EQ(copy->getArray(sxGeometry::POSITIONS), g->getArray(sxGeometry::POSITIONS));
    EXPECT_TRUE(copy->anyTravFlags(sxGeometry::CONTENT_GEOMETRY));
    EXPECT_EQ(copy->getSphere(), g->getSphere());
  }
  EXPECT_EQ(g->getArray(sxGeometry::POSITIONS)->getRefCount(), 1);
}

// Through a scene file an array shared by two geometries comes back shared;
// a geometry whose indices name missing positions comes back without
// arrays (and the arrays it refused are freed with the file).
TEST(sxGeometry, SharedArraysThroughAFileAndHostileIndices) {
  sxRef<sxGroup> root(new sxGroup);
  sxArray* positions = makeArray(sxArray::TYPE_VEC3, {0, 0, 0, 1, 0, 0, 0, 1, 0});
  sxArray* normals = makeArray(sxArray::TYPE_VEC3, {0, 0, 1, 0, 0, 1, 0, 0, 1});
  for (const std::array<int, 3>& indices : {std::array{0, 1, 2}, {2, 1, 0}, {0, 1, 3}}) {
    auto* g = new sxGeometry;
    g->setArray(sxGeometry::POSITIONS, positions);
    g->setArray(sxGeometry::NORMALS, normals);
    g->setArray(sxGeometry::INDICES, makeIndices(indices));
    root->addChild(g);
  }
  EXPECT_FALSE(static_cast<sxGeometry*>(root->getChild(2))->isValid());

  sxRef<sxGroup> back = sxThroughFile<sxGroup>(root.get());
  ASSERT_TRUE(back);
  ASSERT_EQ(back->getNumChildren(), 3);
  auto* a = static_cast<sxGeometry*>(back->getChild(0));
  auto* b = static_cast<sxGeometry*>(back->getChild(1));
  auto* bad = static_cast<sxGeometry*>(back->getChild(2));
  EXPECT_EQ(a->getNumPrimitives(), 1);
  EXPECT_EQ(a->getArray(sxGeometry::POSITIONS), b->getArray(sxGeometry::POSITIONS));
  EXPECT_EQ(a->getArray(sxGeometry::NORMALS), b->getArray(sxGeometry::NORMALS));
  EXPECT_NE(a->getArray(sxGeometry::INDICES), b->getArray(sxGeometry::INDICES));
  EXPECT_EQ(static_cast<int*>(b->getArray(sxGeometry::INDICES)->getData())[0], 2);
  EXPECT_EQ(a->getSphere(), static_cast<sxGeometry*>(root->getChild(0))->getSphere());
  for (int i = 0; i < sxGeometry::numAttributes; ++i)
    EXPECT_EQ(bad->getArray(sxGeometry::ATTRIBUTE(i)), nullptr);
  EXPECT_TRUE(bad->getSphere().isEmpty());
}
