#include <gtest/gtest.h>
#include <sx/math/sxMatrix.h>
#include <sx/math/sxUByteVec.h>
#include <sx/math/sxVec2.h>
#include <sx/math/sxVec3.h>
#include <sx/math/sxVec4.h>
#include <sx/persist/sxEntry.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "math/sxMathFileTestUtil.h"

namespace {

using Bytes = std::vector<unsigned char>;

TEST(VecPersistence, EveryValueTypeRoundTripsThroughAFileOnDisk) {
  const sxVec2 v2(1.5f, -2.25f);
  const sxVec3 v3(3.0e-20f, -4.0f, 5.125f);
  const sxVec4 v4(-0.0f, 6.5f, 1.0e30f, -7.75f);
  const sxUByteVec3 c3(1, 128, 255);
  const sxUByteVec4 c4(0, 17, 200, 254);
  float raw[16];
  for (int i = 0; i < 16; ++i) raw[i] = 0.5f * float(i) - 3.0f;
  const sxMatrix m(raw, sxMatrix::PROJECTIVE | sxMatrix::ROTATION);
  sxRoundTripThroughFile(
      [&](sxEntry* e) {
        // Byte colours between the float vectors, so that the floats after
        // them must skip padding.
        c3.write(e);
        v2.write(e);
        c4.write(e);
        c3.write(e);
        v3.write(e);
        v4.write(e);
        m.write(e);
      },
      [&](sxEntry* e) {
        sxVec2 r2;
        sxVec3 r3;
        sxVec4 r4;
        sxUByteVec3 rc3, rc3b;
        sxUByteVec4 rc4;
        sxMatrix rm;
        rc3.read(e);
        r2.read(e);
        rc4.read(e);
        rc3b.read(e);
        r3.read(e);
        r4.read(e);
        rm.read(e);
        EXPECT_EQ(r2, v2);
        EXPECT_EQ(r3, v3);
        EXPECT_EQ(r4, v4);
        EXPECT_TRUE(std::signbit(r4.x)) << "-0 stays -0";
        EXPECT_EQ(rc3, c3);
        EXPECT_EQ(rc3b, c3);
        EXPECT_EQ(rc4, c4);
        EXPECT_EQ(rm, m);
        EXPECT_EQ(rm.getType(), m.getType());
      });
}

TEST(VecPersistence, FloatVectorsAreTheirComponentsAsConsecutiveFloats) {
  sxMemoryEntry f;
  f.entry->writeByte(9);
  sxVec3(1.0f, -2.0f, 3.5f).write(f.entry);
  Bytes expected = {9, 0, 0, 0};
  sxAppend(expected, sxNativeBytes({1.0f, -2.0f, 3.5f}));
  EXPECT_EQ(f.bytes(), expected) << "aligned to 4, then 12 bytes";

  sxMemoryEntry g;
  sxVec2(0.25f, 8.0f).write(g.entry);
  sxVec4(1.0f, 2.0f, 3.0f, 4.0f).write(g.entry);
  Bytes both = sxNativeBytes({0.25f, 8.0f, 1.0f, 2.0f, 3.0f, 4.0f});
  EXPECT_EQ(g.bytes(), both) << "8 bytes, then 16";
}

TEST(VecPersistence, ByteColoursAreRawChunksWithoutAlignment) {
  sxMemoryEntry f;
  f.entry->writeByte(9);
  sxUByteVec3(10, 20, 30).write(f.entry);
  EXPECT_EQ(f.bytes(), (Bytes{9, 10, 20, 30}));
  sxUByteVec4(40, 50, 60, 70).write(f.entry);
  EXPECT_EQ(f.bytes(), (Bytes{9, 10, 20, 30, 40, 50, 60, 70}));

  f.entry->reset();
  EXPECT_EQ(f.entry->readByte(), 9);
  sxUByteVec4 c4;
  c4.read(f.entry);
  EXPECT_EQ(c4, sxUByteVec4(10, 20, 30, 40)) << "read from position 1, not aligned";
  EXPECT_EQ(f.entry->getCursor(), 5);
}

TEST(VecPersistence, MatrixIsItsTypeThenSixteenFloats) {
  float raw[16];
  for (int i = 0; i < 16; ++i) raw[i] = float(i) + 0.5f;
  const sxMatrix m(raw, sxMatrix::ROTATION | sxMatrix::TRANSLATION);
  sxMemoryEntry f;
  f.entry->writeShort(7);
  m.write(f.entry);
  Bytes expected = sxNativeBytes({short(7)});
  expected.resize(4);  // padding before the int
  sxAppend(expected, sxNativeBytes({int(sxMatrix::ROTATION | sxMatrix::TRANSLATION)}));
  sxAppend(expected, sxNativeBytes(raw, 16));
  EXPECT_EQ(f.bytes(), expected) << "short, padding, type, the values in storage order";
}

// The type word is whatever the file says, even where identifying the
// values would give another one.
TEST(VecPersistence, MatrixTypeIsTakenAsRead) {
  sxMemoryEntry f;
  const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  f.entry->writeInt(sxMatrix::ROTATION | sxMatrix::TRANSLATION);
  f.entry->writeFloats(identity, 16);
  f.entry->writeInt(sxMatrix::UNKNOWN);
  f.entry->writeFloats(identity, 16);
  f.entry->reset();

  sxMatrix m;
  m.read(f.entry);
  EXPECT_EQ(m.getType(), unsigned(sxMatrix::ROTATION | sxMatrix::TRANSLATION));
  EXPECT_EQ(m, sxMatrix());
  m.read(f.entry);
  EXPECT_EQ(m.getType(), unsigned(sxMatrix::UNKNOWN)) << "not identified as the identity";
}

TEST(VecPersistence, TruncatedFloatVectorsReadMinusOnePastTheEnd) {
  sxMemoryEntry f;
  sxVec4(1.0f, 2.0f, 3.0f, 4.0f).write(f.entry);
  sxVec4 v(9.0f, 9.0f, 9.0f, 9.0f);
  v.read(f.truncated(6));  // one whole float and half of the next
  EXPECT_EQ(v, sxVec4(1.0f, -1.0f, -1.0f, -1.0f));

  sxVec2 empty(5.0f, 5.0f);
  empty.read(f.truncated(0));
  EXPECT_EQ(empty, sxVec2(-1.0f, -1.0f));
  sxVec3 three(5.0f, 5.0f, 5.0f);
  sxEntry* twoFloats = f.truncated(8);
  three.read(twoFloats);
  EXPECT_EQ(three, sxVec3(1.0f, 2.0f, -1.0f));
  EXPECT_EQ(twoFloats->getCursor(), 8) << "the cursor stays at the end";
}

// A chunk copies the bytes that remain; nothing at all past the end.
TEST(VecPersistence, TruncatedByteColoursKeepWhatIsMissing) {
  sxMemoryEntry f;
  sxUByteVec4(1, 2, 3, 4).write(f.entry);
  sxUByteVec4 c(9, 9, 9, 9);
  c.read(f.truncated(2));
  EXPECT_EQ(c, sxUByteVec4(1, 2, 9, 9));
  sxUByteVec3 none(7, 7, 7);
  none.read(f.truncated(0));
  EXPECT_EQ(none, sxUByteVec3(7, 7, 7));
}

TEST(VecPersistence, TruncatedMatrixReadsTheEndOfDataValues) {
  sxMemoryEntry f;
  sxMatrix().write(f.entry);
  sxMatrix m;
  m.read(f.truncated(4 + 8));  // the type and two values
  EXPECT_EQ(m.getType(), unsigned(sxMatrix::IDENTITY));
  EXPECT_EQ(m[0][0], 1.0f);
  EXPECT_EQ(m[0][1], 0.0f);
  EXPECT_EQ(m[0][2], -1.0f);
  EXPECT_EQ(m[3][3], -1.0f);

  sxMatrix none;
  none.read(f.truncated(0));
  EXPECT_EQ(none.getType(), 0xFFFFFFFFu) << "the int -1";
  EXPECT_EQ(none[2][2], -1.0f);
  // Such a type word is general to the products: the full product is
  // taken, not a short path that would skip elements.
  sxMatrix product;
  product.mult(none, none);
  EXPECT_EQ(product[0][0], 4.0f);
}

TEST(VecPersistence, NoEntryLeavesTheValueAlone) {
  sxVec3 v(1.0f, 2.0f, 3.0f);
  v.read(nullptr);
  v.write(nullptr);
  EXPECT_EQ(v, sxVec3(1.0f, 2.0f, 3.0f));
  sxUByteVec3 c(1, 2, 3);
  c.read(nullptr);
  EXPECT_EQ(c, sxUByteVec3(1, 2, 3));
  sxMatrix m;
  m.makeXYZ(1.0f, 2.0f, 3.0f);
  m.read(nullptr);
  m.write(nullptr);
  EXPECT_EQ(m.getType(), unsigned(sxMatrix::TRANSLATION));
  EXPECT_EQ(m[3][1], 2.0f);
}

}  // namespace
