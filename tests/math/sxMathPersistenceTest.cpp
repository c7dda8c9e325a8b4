#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <climits>
#include <type_traits>
#include <vector>

#include "support/sxReferenceMath.h"

// The values of the reference math file, one of every mathematical type,
// each through its own read and write. Layout and byte order are checked by
// the reference files themselves (persist/ByteOrder); here a value comes
// back bit for bit, and cut or absent data leave the reader safe.
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

template <class T>
Bytes bytesOf(const T& value) {
  MemoryEntry m;
  value.write(m.entry);
  return m.bytes();
}

// The reference values written under a coarse square root and read under
// the hardware one into objects that start out different: the frustum's
// derived planes and sphere are stored, not rebuilt through sxSqrt. Without
// an entry nothing is read or written; cut records never read past their
// data.
TEST(MathPersistence, EveryTypeRoundTripsBitForBitAndStaysInBounds) {
  const SXSQRT_METHOD before = sxGetSqrtMethod();
  sxSetSqrtMethod(SXSQRT_TABLE_256);
  const float coarse = sxReference::math::frustum().getBoundingSphere().radius;
  MemoryEntry all;
  std::vector<Bytes> written;
  sxReference::eachMathValue([&](const auto& value, const char*) {
    value.write(all.entry);
    written.push_back(bytesOf(value));
  });
  sxSetSqrtMethod(SXSQRT_HARDWARE);
  ASSERT_NE(sxReference::math::frustum().getBoundingSphere().radius, coarse)
      << "the methods must give different frusta for this test to tell";
  sxEntry* loaded = all.entry;
  loaded->reset();
  std::size_t i = 0;
  sxReference::eachMathValue([&](const auto& value, const char* name) {
    using T = std::remove_cvref_t<decltype(value)>;
    T back{}, kept = value;
    ASSERT_NE(bytesOf(back), written[i]) << name;
    back.read(loaded);
    EXPECT_EQ(bytesOf(back), written[i++]) << name;
    kept.read(nullptr);
    kept.write(nullptr);
    EXPECT_EQ(bytesOf(kept), bytesOf(value)) << name;
    MemoryEntry full;
    value.write(full.entry);
    for (int n = 0; n < full.entry->getDataSize(); ++n) {
      sxEntry* cut = full.cut(n);
      T{}.read(cut);
      EXPECT_LE(cut->getCursor(), n) << name << " cut to " << n;
    }
  });
  EXPECT_EQ(loaded->getCursor(), loaded->getDataSize()) << "the readers stop where the writers did";
  sxSetSqrtMethod(before);
}

// Past the end a float reads -1, an int -1 and a bool true: a cut frustum
// comes back empty and cleared, a cut sphere empty, a cut ray unbounded; a
// cut matrix has the type word -1, which the products take as a general
// matrix. A table's count larger than its data is cut to the whole keys
// there, and the table does not grow beyond them.
TEST(MathPersistence, CutRecordsReadAsEmptyOrGeneral) {
  MemoryEntry f, s, r;
  sxReference::math::frustum().write(f.entry);
  sxReference::math::sphere.write(s.entry);
  sxReference::math::ray().write(r.entry);
  for (int keep : {500, 250, 0}) {
    sxFrustum back = sxReference::math::frustum();
    back.read(f.cut(keep));
    EXPECT_TRUE(back.isEmpty()) << keep;
    EXPECT_EQ(back.getCorner(0), sxVec3(0, 0, 0)) << keep << ": what was read is cleared";
    EXPECT_EQ(back.getFar(), 0.0f) << keep;
  }
  sxSphere sphere;
  sphere.read(s.cut(12));
  EXPECT_TRUE(sphere.isEmpty());
  sxRay ray;
  ray.read(r.cut(24));
  EXPECT_TRUE(ray.isUnbounded());
  sxMatrix none, product;
  none.read(f.cut(0));
  EXPECT_EQ(none.getType(), 0xFFFFFFFFu);
  product.mult(none, none);
  EXPECT_EQ(product[0][0], 4.0f) << "the full product, not a short path";

  const float keys[4] = {2.0f, 200.0f, 1.0f, 100.0f};
  for (int count : {INT_MAX, INT_MAX / 8, 3}) {
    MemoryEntry m;
    m.entry->writeInt(count);
    m.entry->writeFloats(keys, 4);
    m.entry->reset();
    sxFloatInterpTable t;
    t.read(m.entry);
    ASSERT_EQ(t.getNum(), 2) << count;
    EXPECT_EQ(t.getParam(0), 1.0f) << "keys are added in order as they load";
    EXPECT_LE(t.getCapacity(), 4) << count;
  }
}

}  // namespace
