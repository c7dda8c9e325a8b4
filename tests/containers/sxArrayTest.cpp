#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <algorithm>
#include <tuple>
#include <vector>

// Arrays in files, shared and of every element type, are covered by the
// reference scene of the byte-order test.
namespace {

using Bytes = std::vector<unsigned char>;

// Element bytes that differ in every position, so that a swap or shift
// shows.
void fill(sxArray* a) {
  auto* p = static_cast<unsigned char*>(a->getData());
  for (unsigned i = 0; i < a->getSize(); ++i) p[i] = static_cast<unsigned char>(i * 13 + 1);
}

// The first n element bytes (all of them by default).
Bytes bytes(const sxArray& a, unsigned n = ~0u) {
  auto* p = static_cast<const unsigned char*>(a.getData());
  return Bytes(p, p + std::min(n, a.getSize()));
}

TEST(Array, CreationByNameCopiesReferenceCountsAndTypedViews) {
  sxRef<sxArray> g(sxCreateArray("sxVec3GArray", 4));
  ASSERT_NE(g, nullptr);
  ASSERT_EQ((std::tuple{g->getType(), g->isGrowable(), g->getNum()}),
            (std::tuple{sxArray::TYPE_VEC3, true, 4}))
      << "the allocated count";
  EXPECT_EQ(static_cast<sxGrowableArray*>(g.get())->getNum(), 0);
  EXPECT_EQ(bytes(*g), Bytes(48, 0)) << "zeroed elements";
  EXPECT_EQ(sxCreateArray("sxVec5Array", 3), nullptr);
  EXPECT_EQ(sxCreateArray(nullptr, 3), nullptr);
  EXPECT_EQ(sxArray::getElemSize(sxArray::DATA_TYPE(9)), 0);

  std::size_t before = sxMemory::getSize();
  auto* a = new sxArray(5, sxArray::TYPE_VEC2);
  fill(a);
  a->ref();
  a->ref();
  sxArray copy(*a);
  EXPECT_EQ(copy.getRefCount(), 0);
  EXPECT_NE(copy.getData(), a->getData());
  EXPECT_EQ(bytes(copy), bytes(*a));
  sxArray assigned(1, sxArray::TYPE_INT);
  assigned.ref();
  assigned = *a;
  EXPECT_EQ((std::tuple{assigned.getRefCount(), assigned.getType()}),
            (std::tuple{1, sxArray::TYPE_VEC2}))
      << "assignment keeps the count";
  a->enableDynamic(true);
  EXPECT_EQ(a->getType(), sxArray::TYPE_VEC2) << "the dynamic bit is not part of the type";
  a->unRef();
  EXPECT_EQ(a->getRefCount(), 1);
  a->unRef();
  copy.setSize(0);
  assigned.setSize(0);
  EXPECT_EQ(sxMemory::getSize(), before) << "the last unRef freed the array";

  sxRef<sxArray> c(sxCreateArrayCopy("sxIntGArray", nullptr));
  ASSERT_NE(c, nullptr);
  EXPECT_EQ(c->getNum(), 0);
  sxArray source(3, sxArray::TYPE_FLOAT);
  fill(&source);
  c = sxCreateArrayCopy("sxDoubleArray", &source);
  EXPECT_EQ(bytes(*c, 12), bytes(source)) << "all of a smaller source";
  c = sxCreateArrayCopy("sxUShortArray", &source);
  EXPECT_EQ((std::tuple{c->getType(), c->getNum()}), (std::tuple{sxArray::TYPE_USHORT, 3}));
  EXPECT_EQ(bytes(*c), bytes(source, 6)) << "as many bytes as fit";

  // Typed views of arrays of their own element type only.
  sxTArray<sxVec3> vectors(g.get());
  EXPECT_EQ((std::tuple{vectors.isValid(), vectors.getNum()}), (std::tuple{true, 4}));
  vectors[3] = sxVec3(1.0f, 2.0f, 3.0f);
  EXPECT_EQ(static_cast<float*>(g->getData())[11], 3.0f);
  sxArray colours(2, sxArray::TYPE_UBYTEVEC4);
  sxTArray<sxUByteVec4> rgba(&colours);
  rgba[1] = sxUByteVec4(1, 2, 3, 4);
  EXPECT_EQ(static_cast<unsigned char*>(colours.getData())[7], 4);
  EXPECT_FALSE(sxTArray<sxUByteVec3>(&colours).isValid());
  sxTArray<float> wrong(g.get());
  EXPECT_EQ((std::tuple{wrong.isValid(), wrong.getNum()}), (std::tuple{false, 0}));
}

TEST(GrowableArray, GrowIndexAndTheShortMove) {
  sxGrowableArray g(sxArray::TYPE_INT);
  g.grow(0);
  EXPECT_EQ(g.sxArray::getNum(), 1) << "grow(0) leaves capacity 1";
  g.grow(6);
  EXPECT_EQ(g.getSize(), 24u);
  int* p = static_cast<int*>(g.getData());
  for (int i = 0; i < 6; ++i) p[i] = 0x01010101 * (i + 1);
  g.setNum(5);
  int third = 0x03030303, fourth = 0x04040404, fifth = 0x05050505, sixth = 0x06060606;
  EXPECT_EQ(g.getIndex(&third), 2);
  EXPECT_EQ(g.getIndex(&sixth), -1) << "only used elements are searched";
  // Removing element 2 of 5 moves numUsed - 2 - 1 = 2 bytes, not elements.
  g.removeElem(&third);
  EXPECT_EQ((std::tuple{g.getNum(), p[2], p[3]}), (std::tuple{4, 0x03030404, fourth}));
  g.removeElem(&fourth);  // the last used element: only the count changes
  EXPECT_EQ((std::tuple{g.getNum(), p[3]}), (std::tuple{3, fourth}));
  g.removeElem(&fifth);  // not in use: nothing changes
  EXPECT_EQ(g.getNum(), 3);
  g.grow(2);
  EXPECT_EQ((std::tuple{g.getSize(), static_cast<int*>(g.getData())[1]}),
            (std::tuple{8u, 0x02020202}))
      << "grow shrinks to the exact size";
  g.reset();
  EXPECT_EQ(g.getIndex(&fifth), -1);

  // A growable array reads with all its elements in use.
  sxFile f;
  sxEntry* e = f.newEntry(f.newTag("T"));
  sxArray source(4, sxArray::TYPE_DOUBLE);
  fill(&source);
  source.write(e);
  e->reset();
  sxGrowableArray back(4, sxArray::TYPE_DOUBLE);
  back.read(e);
  EXPECT_EQ(back.getNum(), 4);
  EXPECT_EQ(bytes(back), bytes(source));
}

}  // namespace
