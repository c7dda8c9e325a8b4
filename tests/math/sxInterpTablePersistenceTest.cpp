#include <gtest/gtest.h>
#include <sx/math/sxInterpTable.h>
#include <sx/math/sxQuat.h>
#include <sx/math/sxVec3.h>
#include <sx/math/sxVec4.h>
#include <sx/persist/sxEntry.h>

#include <climits>
#include <initializer_list>
#include <utility>
#include <vector>

#include "math/sxMathFileTestUtil.h"

namespace {

using Bytes = std::vector<unsigned char>;

// Reads the table from an entry made by hand: the count, then the floats.
template <class Table>
void readStored(sxMemoryEntry& f, Table& t, int count, std::initializer_list<float> floats) {
  f.entry->writeInt(count);
  f.entry->writeFloats(floats.begin(), int(floats.size()));
  f.entry->reset();
  t.read(f.entry);
}

// The table holds exactly these (param, value) pairs, in this order.
void expectKeys(const sxFloatInterpTable& t, std::initializer_list<std::pair<float, float>> keys) {
  ASSERT_EQ(t.getNum(), int(keys.size()));
  int i = 0;
  for (const auto& [param, value] : keys) {
    EXPECT_EQ(t.getParam(i), param) << i;
    EXPECT_EQ(t.getValue(i), value) << i;
    ++i;
  }
}

bool sameQuat(const sxQuat& a, const sxQuat& b) {
  return a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w;
}

TEST(InterpTablePersistence, EveryTableRoundTripsThroughAFileOnDisk) {
  sxFloatInterpTable floats;
  floats.add(2.0f, 40.0f);
  floats.add(-1.0f, 10.0f);
  floats.add(0.5f, 25.0f);
  sxVec3InterpTable vec3s;
  vec3s.add(1.0f, sxVec3(1.0f, 2.0f, 3.0f));
  vec3s.add(0.0f, sxVec3(-1.0f, -2.0f, -3.0f));
  sxVec4InterpTable vec4s;
  vec4s.add(0.25f, sxVec4(0.1f, 0.2f, 0.3f, 0.4f));
  sxQuatInterpTable quats;
  quats.add(0.0f, sxQuat(0.0f, 0.0f, 0.0f, 1.0f));
  quats.add(3.0f, sxQuat(0.0f, 0.0f, 0.70710677f, 0.70710677f));
  const sxFloatInterpTable none;

  sxFloatInterpTable floatsBack, noneBack;
  noneBack.add(1.0f, 1.0f);
  sxVec3InterpTable vec3sBack;
  sxVec4InterpTable vec4sBack;
  sxQuatInterpTable quatsBack;
  sxRoundTripThroughFile(
      [&](sxEntry* e) {
        floats.write(e);
        vec3s.write(e);
        none.write(e);
        vec4s.write(e);
        quats.write(e);
      },
      [&](sxEntry* e) {
        floatsBack.read(e);
        vec3sBack.read(e);
        noneBack.read(e);
        vec4sBack.read(e);
        quatsBack.read(e);
      });
  expectKeys(floatsBack, {{-1.0f, 10.0f}, {0.5f, 25.0f}, {2.0f, 40.0f}});
  ASSERT_EQ(vec3sBack.getNum(), 2);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(vec3sBack.getParam(i), vec3s.getParam(i));
    EXPECT_EQ(vec3sBack.getValue(i), vec3s.getValue(i));
  }
  EXPECT_EQ(noneBack.getNum(), 0) << "reading empties the table first";
  ASSERT_EQ(vec4sBack.getNum(), 1);
  EXPECT_EQ(vec4sBack.getParam(0), 0.25f);
  EXPECT_EQ(vec4sBack.getValue(0), sxVec4(0.1f, 0.2f, 0.3f, 0.4f));
  ASSERT_EQ(quatsBack.getNum(), 2);
  EXPECT_EQ(quatsBack.getParam(1), 3.0f);
  EXPECT_TRUE(sameQuat(quatsBack.getValue(1), quats.getValue(1)));
  EXPECT_EQ(floatsBack.get(1.25f), floats.get(1.25f));
}

TEST(InterpTablePersistence, CountThenEachParamFollowedByTheValueFloats) {
  sxFloatInterpTable floats;
  floats.add(1.0f, 20.0f);
  floats.add(0.0f, 10.0f);
  sxMemoryEntry f;
  floats.write(f.entry);
  Bytes expected = sxNativeBytes({2});
  sxAppend(expected, sxNativeBytes({0.0f, 10.0f, 1.0f, 20.0f}));
  EXPECT_EQ(f.bytes(), expected);

  sxVec3InterpTable vec3s;
  vec3s.add(0.5f, sxVec3(1.0f, 2.0f, 3.0f));
  sxMemoryEntry g;
  vec3s.write(g.entry);
  expected = sxNativeBytes({1});
  sxAppend(expected, sxNativeBytes({0.5f, 1.0f, 2.0f, 3.0f}));
  EXPECT_EQ(g.bytes(), expected);

  sxVec4InterpTable vec4s;
  vec4s.add(0.5f, sxVec4(1.0f, 2.0f, 3.0f, 4.0f));
  sxMemoryEntry h;
  vec4s.write(h.entry);
  expected = sxNativeBytes({1});
  sxAppend(expected, sxNativeBytes({0.5f, 1.0f, 2.0f, 3.0f, 4.0f}));
  EXPECT_EQ(h.bytes(), expected);

  sxQuatInterpTable quats;
  quats.add(0.5f, sxQuat(1.0f, 2.0f, 3.0f, 4.0f));
  sxMemoryEntry q;
  quats.write(q.entry);
  EXPECT_EQ(q.bytes(), expected) << "x, y, z, w like a four-vector";
}

TEST(InterpTablePersistence, UnsortedKeysAreSortedOnLoading) {
  sxMemoryEntry f;
  sxFloatInterpTable t;
  readStored(f, t, 3, {2.0f, 200.0f, 0.0f, 0.0f, 1.0f, 100.0f});
  expectKeys(t, {{0.0f, 0.0f}, {1.0f, 100.0f}, {2.0f, 200.0f}});
  EXPECT_EQ(t.get(1.5f), 150.0f);
}

// Loading adds key by key, so a repeated key follows add's rule: its value
// goes into the last entry.
TEST(InterpTablePersistence, RepeatedKeysLoadAsAddStoresThem) {
  sxMemoryEntry f;
  sxFloatInterpTable t;
  readStored(f, t, 3, {0.0f, 10.0f, 1.0f, 20.0f, 0.0f, 30.0f});
  expectKeys(t, {{0.0f, 10.0f}, {1.0f, 30.0f}});
}

TEST(InterpTablePersistence, TruncatedTablesReadOnlyWholeKeys) {
  sxVec3InterpTable t;
  for (int i = 0; i < 3; ++i) t.add(float(i), sxVec3(float(i), 1.0f, 2.0f));
  sxMemoryEntry f;
  t.write(f.entry);
  ASSERT_EQ(f.entry->getDataSize(), 4 + 3 * 16);

  sxVec3InterpTable back;
  back.read(f.truncated(4 + 2 * 16 + 8));  // half of the third key
  ASSERT_EQ(back.getNum(), 2);
  EXPECT_EQ(back.getParam(1), 1.0f);
  EXPECT_EQ(back.getValue(1), sxVec3(1.0f, 1.0f, 2.0f));

  back.read(f.truncated(0));
  EXPECT_EQ(back.getNum(), 0) << "the count reads as -1: no keys";
}

// A damaged count asks for more keys than the entry holds: only those it
// holds are read, and the table grows no further than they need.
TEST(InterpTablePersistence, HostileCountIsCutToTheData) {
  for (int count : {INT_MAX, INT_MAX / 20, 1000}) {
    sxMemoryEntry f;
    sxVec4InterpTable t;
    readStored(f, t, count, {5.0f, 1.0f, 2.0f, 3.0f, 4.0f, 6.0f, 7.0f, 8.0f, 9.0f, 10.0f});
    ASSERT_EQ(t.getNum(), 2) << count;
    EXPECT_EQ(t.getValue(0), sxVec4(1.0f, 2.0f, 3.0f, 4.0f));
    EXPECT_EQ(t.getValue(1), sxVec4(7.0f, 8.0f, 9.0f, 10.0f));
    EXPECT_LE(t.getCapacity(), 4);
    EXPECT_EQ(f.entry->getCursor(), f.entry->getDataSize());
  }
}

TEST(InterpTablePersistence, NoEntryLeavesTheTableAlone) {
  sxFloatInterpTable t;
  t.add(1.0f, 2.0f);
  t.read(nullptr);
  t.write(nullptr);
  ASSERT_EQ(t.getNum(), 1);
  EXPECT_EQ(t.getValue(0), 2.0f);
}

}  // namespace
