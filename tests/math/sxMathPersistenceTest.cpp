#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <climits>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "support/sxTestFiles.h"

// Every mathematical type through its own read and write. The byte layout
// and byte order are guarded by the reference files (persist/ByteOrder);
// these tests check that a value comes back bit for bit, and that missing,
// damaged or absent data leave it safe.
namespace {

using Bytes = std::vector<unsigned char>;

// Entries exist only inside a file; one that is never opened serves.
struct MemoryEntry {
  sxFile file;
  sxEntry* entry = file.newEntry(file.newTag("sxMathTest"));
  Bytes bytes() const { return {entry->getData(), entry->getData() + entry->getDataSize()}; }
  // A fresh entry holding the first n bytes of this one, as in a cut file.
  sxEntry* cut(int n) {
    sxEntry* e = file.newEntry(entry->getTag());
    if (n > 0) e->setData(entry->getData(), n);
    return e;
  }
};

// One value of a type and a start value that differs from it in every
// field: `reread` lets an object holding the start value read from one
// entry and write itself into another; `keep` lets a copy of the value read
// and write without an entry, then write itself into the entry given.
struct Case {
  std::string name;
  std::function<void(sxEntry*)> write;
  std::function<void(sxEntry* from, sxEntry* to)> reread;
  std::function<void(sxEntry*)> keep;
};

template <class T>
Case makeCase(const char* name, const T& value, const T& start) {
  return {name, [value](sxEntry* e) { value.write(e); },
          [start](sxEntry* from, sxEntry* to) {
            T v = start;
            v.read(from);
            v.write(to);
          },
          [value](sxEntry* to) {
            T v = value;
            v.read(nullptr);
            v.write(nullptr);
            v.write(to);
          }};
}

sxFrustum movedPerspective() {
  sxFrustum f;
  f.makePersp(-1.0f, 1.5f, -0.5f, 0.75f, 0.5f, 200.0f);
  sxMatrix m;
  m.makeHPR(30.0f, -10.0f, 5.0f);
  m.postTrans(3.0f, -4.0f, 12.0f);
  f.xform(m);
  return f;
}

template <class Table, class V>
Table table(std::initializer_list<std::pair<float, V>> keys) {
  Table t;
  for (const auto& [param, value] : keys) t.add(param, value);
  return t;
}

// Byte colours stand between the float values, so that the values after
// them must be aligned again.
std::vector<Case> everyType() {
  float raw[16];
  for (int i = 0; i < 16; ++i) raw[i] = 0.5f * float(i) - 3.0f;
  sxFrustum ortho;
  ortho.makeOrtho(-2.0f, 2.0f, -1.0f, 1.0f, -5.0f, 5.0f);
  const sxVec3 one(1.0f, 1.0f, 1.0f);
  return {
      makeCase("vec2", sxVec2(1.5f, -2.25f), sxVec2(9.0f, 9.0f)),
      makeCase("colour3", sxUByteVec3(1, 128, 255), sxUByteVec3(7, 7, 7)),
      makeCase("vec3", sxVec3(3.0e-20f, -4.0f, 5.125f), one),
      makeCase("colour4", sxUByteVec4(0, 17, 200, 254), sxUByteVec4(7, 7, 7, 7)),
      makeCase("vec4 with -0", sxVec4(-0.0f, 6.5f, 1.0e30f, -7.75f), sxVec4(1, 1, 1, 1)),
      // A type word that identifying the values would not give.
      makeCase("matrix", sxMatrix(raw, sxMatrix::PROJECTIVE | sxMatrix::ROTATION), sxMatrix()),
      makeCase("sphere", sxSphere(sxVec3(1.0f, -2.0f, 3.5f), 4.25f), sxSphere(one, 1.0f)),
      makeCase("empty sphere", sxSphere(), sxSphere(one, 1.0f)),
      makeCase("box", sxBox(sxVec3(-1, -2, -3), sxVec3(4, 5.5f, 6)), sxBox(one, one)),
      makeCase("plane", sxPlane(sxVec3(-1.0f, 2.0f, -2.0f), 7.5f), sxPlane()),
      makeCase("ray", sxRay(sxVec3(0.5f, 1, 1.5f), sxVec3(1, 2, 2), 9.0f), sxRay(one, one, 1.0f)),
      makeCase("frustum", movedPerspective(), sxFrustum()),
      makeCase("ortho frustum", ortho, movedPerspective()),
      makeCase("empty frustum", sxFrustum(), movedPerspective()),
      makeCase("float table",
               table<sxFloatInterpTable, float>({{2.0f, 40.0f}, {-1.0f, 10.0f}, {0.5f, 25.0f}}),
               table<sxFloatInterpTable, float>({{9.0f, 9.0f}})),
      makeCase("empty table", sxFloatInterpTable(),
               table<sxFloatInterpTable, float>({{1.0f, 1.0f}})),
      makeCase("vec3 table",
               table<sxVec3InterpTable, sxVec3>({{1.0f, sxVec3(1, 2, 3)}, {0.0f, -one}}),
               sxVec3InterpTable()),
      makeCase("vec4 table",
               table<sxVec4InterpTable, sxVec4>({{0.25f, sxVec4(0.1f, 0.2f, 0.3f, 0.4f)}}),
               sxVec4InterpTable()),
      makeCase("quat table",
               table<sxQuatInterpTable, sxQuat>(
                   {{0.0f, sxQuat(0, 0, 0, 1)}, {3.0f, sxQuat(0, 0, 0.6f, 0.8f)}}),
               sxQuatInterpTable()),
  };
}

// All values in one entry of a file on disk, written under a coarse square
// root and read under the hardware one: the frustum's derived planes and
// sphere are stored, not rebuilt through sxSqrt.
TEST(MathPersistence, EveryTypeRoundTripsThroughAFileBitForBit) {
  const SXSQRT_METHOD before = sxGetSqrtMethod();
  sxSetSqrtMethod(SXSQRT_TABLE_256);
  const std::vector<Case> cases = everyType();
  const float coarseRadius = movedPerspective().getBoundingSphere().radius;
  sxTempDir dir;
  const std::string path = dir.file("math.sx");
  {
    sxFile out;
    ASSERT_TRUE(out.create(path.c_str()));
    sxEntry* e = out.newEntry(out.newTag("sxMathTest"));
    for (const Case& c : cases) c.write(e);
    ASSERT_TRUE(out.write());
  }
  sxSetSqrtMethod(SXSQRT_HARDWARE);
  ASSERT_NE(movedPerspective().getBoundingSphere().radius, coarseRadius)
      << "the methods must give different frusta for this test to tell";
  sxFile in;
  ASSERT_TRUE(in.open(path.c_str(), "r"));
  sxEntry* loaded = in.getEntry(0);
  ASSERT_TRUE(in.readEntry(loaded));
  for (const Case& c : cases) {
    MemoryEntry written, back;
    c.write(written.entry);
    c.reread(loaded, back.entry);
    EXPECT_EQ(back.bytes(), written.bytes()) << c.name;
  }
  EXPECT_EQ(loaded->getCursor(), loaded->getDataSize()) << "the readers stop where the writers did";
  sxSetSqrtMethod(before);
}

// Without an entry nothing is read or written; cut records never read past
// their data.
TEST(MathPersistence, NoEntryOrACutRecordStaysInBounds) {
  for (const Case& c : everyType()) {
    MemoryEntry full, kept;
    c.write(full.entry);
    c.keep(kept.entry);
    EXPECT_EQ(kept.bytes(), full.bytes()) << c.name;
    const int size = full.entry->getDataSize();
    for (int n = 0; n < size; ++n) {
      sxEntry* cut = full.cut(n);
      MemoryEntry sink;
      c.reread(cut, sink.entry);
      EXPECT_LE(cut->getCursor(), n) << c.name << " cut to " << n;
    }
  }
}

// Past the end a float reads -1, an int -1 and a bool true: a cut frustum
// comes back empty, a cut sphere empty, a cut ray unbounded; a cut matrix
// has the type word -1, which the products take as a general matrix.
TEST(MathPersistence, CutRecordsReadAsEmptyOrGeneral) {
  MemoryEntry f;
  movedPerspective().write(f.entry);
  for (int keep : {500, 250, 0}) {
    sxFrustum back = movedPerspective();
    back.read(f.cut(keep));
    EXPECT_TRUE(back.isEmpty()) << keep;
    EXPECT_EQ(back.getCorner(0), sxVec3(0, 0, 0)) << keep << ": what was read is cleared";
    EXPECT_EQ(back.getFar(), 0.0f) << keep;
  }
  MemoryEntry s, r;
  sxSphere(sxVec3(1, 2, 3), 4).write(s.entry);
  sxRay(sxVec3(1, 2, 3), sxVec3(0, 1, 0), 5).write(r.entry);
  sxSphere sphere;
  sphere.read(s.cut(12));
  EXPECT_TRUE(sphere.isEmpty());
  sxRay ray;
  ray.read(r.cut(24));
  EXPECT_TRUE(ray.isUnbounded());

  sxMatrix none;
  none.read(f.cut(0));
  EXPECT_EQ(none.getType(), 0xFFFFFFFFu);
  sxMatrix product;
  product.mult(none, none);
  EXPECT_EQ(product[0][0], 4.0f) << "the full product, not a short path";
}

// Keys are added one by one on loading: out of order they come back sorted,
// a repeated key goes where add puts it, and a count larger than the data
// hold is cut to the whole keys there, without growing the table.
TEST(MathPersistence, InterpTableKeysAreAddedAsLoaded) {
  auto load = [](sxFloatInterpTable& t, int count, std::initializer_list<float> floats) {
    MemoryEntry m;
    m.entry->writeInt(count);
    m.entry->writeFloats(floats.begin(), int(floats.size()));
    m.entry->reset();
    t.read(m.entry);
    return m.entry->getCursor() == m.entry->getDataSize();
  };
  sxFloatInterpTable t;
  load(t, 3, {2.0f, 200.0f, 0.0f, 0.0f, 1.0f, 100.0f});
  ASSERT_EQ(t.getNum(), 3);
  EXPECT_EQ(t.getParam(0), 0.0f);
  EXPECT_EQ(t.get(1.5f), 150.0f);
  load(t, 3, {0.0f, 10.0f, 1.0f, 20.0f, 0.0f, 30.0f});
  ASSERT_EQ(t.getNum(), 2);
  EXPECT_EQ(t.getValue(1), 30.0f) << "a repeated key stores into the last entry";
  for (int count : {INT_MAX, INT_MAX / 8, 1000}) {
    sxFloatInterpTable fresh;
    EXPECT_TRUE(load(fresh, count, {5.0f, 1.0f, 6.0f, 2.0f})) << count;
    EXPECT_EQ(fresh.getNum(), 2) << count;
    EXPECT_LE(fresh.getCapacity(), 4) << count;
  }
}

}  // namespace
