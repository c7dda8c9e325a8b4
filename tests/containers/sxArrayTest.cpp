#include <gtest/gtest.h>
#include <sx/containers/sxArray.h>
#include <sx/math/sxVecArrays.h>
#include <sx/object/sxMemory.h>
#include <sx/persist/sxEntry.h>
#include <sx/persist/sxFile.h>

#include <cstring>
#include <string>
#include <vector>

#include "support/sxTestFiles.h"
#include "support/sxTestHolder.h"

namespace {

const char* const fixedNames[sxArray::numDataTypes] = {
    "sxUShortArray", "sxUByteVec3Array", "sxUByteVec4Array", "sxIntArray",   "sxFloatArray",
    "sxVec2Array",   "sxVec3Array",      "sxVec4Array",      "sxDoubleArray"};

// Element bytes that differ in every position, so that a swap or shift
// shows.
void fill(sxArray* a) {
  auto* p = static_cast<unsigned char*>(a->getData());
  for (unsigned i = 0; i < a->getSize(); ++i) p[i] = static_cast<unsigned char>(i * 13 + 1);
  if (a->getType() == sxArray::TYPE_DOUBLE)
    for (int i = 0; i < a->getNum(); ++i) static_cast<double*>(a->getData())[i] = 1.5 * i - 7;
}

TEST(Array, CreationByNameAndElementSizes) {
  const int sizes[sxArray::numDataTypes] = {2, 3, 4, 4, 4, 8, 12, 16, 8};
  for (int t = 0; t < sxArray::numDataTypes; ++t) {
    sxArray* a = sxCreateArray(fixedNames[t], 3);
    ASSERT_NE(a, nullptr) << fixedNames[t];
    EXPECT_EQ(a->getType(), t);
    EXPECT_EQ(a->getElemSize(), sizes[t]);
    EXPECT_EQ(a->getNum(), 3);
    EXPECT_EQ(a->getSize(), unsigned(3 * sizes[t]));
    EXPECT_FALSE(a->isGrowable());
    a->ref();
    a->unRef();
    std::string growable = fixedNames[t];
    growable.insert(growable.size() - 5, "G");
    sxArray* g = sxCreateArray(growable.c_str(), 4);
    ASSERT_NE(g, nullptr) << growable;
    EXPECT_EQ(g->getType(), t);
    ASSERT_TRUE(g->isGrowable());
    EXPECT_EQ(static_cast<sxGrowableArray*>(g)->getNum(), 0);
    EXPECT_EQ(g->getNum(), 4) << "the allocated count";
    g->ref();
    g->unRef();
  }
  EXPECT_EQ(sxCreateArray("sxVec5Array", 3), nullptr);
  EXPECT_EQ(sxCreateArray(nullptr, 3), nullptr);

  sxArray* v = sxCreateArray("sxVec3GArray", 4);
  auto* bytes = static_cast<const unsigned char*>(v->getData());
  for (int i = 0; i < 48; ++i) ASSERT_EQ(bytes[i], 0) << "zeroed elements";
  v->ref();
  v->unRef();
  EXPECT_EQ(sxArray::getElemSize(sxArray::DATA_TYPE(9)), 0);
}

TEST(Array, CopiesAndReferenceCounts) {
  std::size_t before = sxMemory::getSize();
  auto* a = new sxArray(5, sxArray::TYPE_VEC2);
  fill(a);
  a->ref();
  a->ref();
  sxArray copy(*a);
  EXPECT_EQ(copy.getRefCount(), 0);
  EXPECT_NE(copy.getData(), a->getData());
  EXPECT_EQ(std::memcmp(copy.getData(), a->getData(), 40), 0);
  sxArray assigned(1, sxArray::TYPE_INT);
  assigned.ref();
  assigned = *a;
  EXPECT_EQ(assigned.getRefCount(), 1) << "assignment keeps the count";
  EXPECT_EQ(assigned.getType(), sxArray::TYPE_VEC2);
  a->enableDynamic(true);
  EXPECT_TRUE(a->isDynamic());
  EXPECT_EQ(a->getType(), sxArray::TYPE_VEC2) << "the dynamic bit is not part of the type";
  a->unRef();
  EXPECT_EQ(a->getRefCount(), 1);
  a->unRef();
  copy.setSize(0);
  assigned.setSize(0);
  EXPECT_EQ(sxMemory::getSize(), before) << "the last unRef freed the array";

  sxArray* c = sxCreateArrayCopy("sxIntGArray", nullptr);
  ASSERT_NE(c, nullptr);
  EXPECT_EQ(c->getType(), sxArray::TYPE_INT);
  EXPECT_EQ(c->getNum(), 0);
  c->ref();
  c->unRef();
  sxArray source(3, sxArray::TYPE_FLOAT);
  fill(&source);
  c = sxCreateArrayCopy("sxFloatArray", &source);
  EXPECT_EQ(std::memcmp(c->getData(), source.getData(), 12), 0);
  c->ref();
  c->unRef();
  c = sxCreateArrayCopy("sxUShortArray", &source);
  EXPECT_EQ(c->getType(), sxArray::TYPE_USHORT);
  EXPECT_EQ(c->getNum(), 3);
  EXPECT_EQ(std::memcmp(c->getData(), source.getData(), 6), 0) << "as many bytes as fit";
  c->ref();
  c->unRef();
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
  EXPECT_EQ(g.getNum(), 5);
  int third = 0x03030303, sixth = 0x06060606;
  EXPECT_EQ(g.getIndex(&third), 2);
  EXPECT_EQ(g.getIndex(&sixth), -1) << "only used elements are searched";
  // Removing element 2 of 5 moves numUsed - 2 - 1 = 2 bytes, not elements.
  g.removeElem(&third);
  EXPECT_EQ(g.getNum(), 4);
  EXPECT_EQ(p[2], 0x03030404);
  EXPECT_EQ(p[3], 0x04040404);
  int fourth = 0x04040404, fifth = 0x05050505;
  g.removeElem(&fourth);  // the last used element: only the count changes
  EXPECT_EQ(g.getNum(), 3);
  EXPECT_EQ(p[3], fourth);
  g.removeElem(&fifth);  // not in use: nothing changes
  EXPECT_EQ(g.getNum(), 3);
  g.grow(2);
  EXPECT_EQ(g.getSize(), 8u) << "grow shrinks to the exact size";
  EXPECT_EQ(static_cast<int*>(g.getData())[1], 0x02020202);
  g.reset();
  EXPECT_EQ(g.getNum(), 0);
  EXPECT_EQ(g.getIndex(&fifth), -1);
}

TEST(Array, TypedView) {
  sxArray a(4, sxArray::TYPE_VEC3);
  sxTArray<sxVec3> vectors(&a);
  ASSERT_TRUE(vectors.isValid());
  EXPECT_EQ(vectors.getNum(), 4);
  vectors[2].y = 5.5f;
  EXPECT_EQ(static_cast<float*>(a.getData())[7], 5.5f);
  vectors[3] = sxVec3(1.0f, 2.0f, 3.0f);
  EXPECT_EQ(static_cast<float*>(a.getData())[11], 3.0f);
  sxArray colours(2, sxArray::TYPE_UBYTEVEC4);
  sxTArray<sxUByteVec4> rgba(&colours);
  rgba[1] = sxUByteVec4(1, 2, 3, 4);
  EXPECT_EQ(static_cast<unsigned char*>(colours.getData())[7], 4);
  EXPECT_FALSE(sxTArray<sxUByteVec3>(&colours).isValid());
  sxTArray<float> wrong(&a);
  EXPECT_FALSE(wrong.isValid());
  EXPECT_EQ(wrong.getNum(), 0);
}

// Every element type in an entry: its size and the values back.
TEST(Array, ElementEncodingsRoundTrip) {
  sxFile f;
  int tag = f.newTag("T");
  const int bytesOf3[sxArray::numDataTypes] = {6, 9, 12, 12, 12, 24, 36, 48, 24};
  for (int t = 0; t < sxArray::numDataTypes; ++t) {
    sxArray a(3, sxArray::DATA_TYPE(t));
    fill(&a);
    sxEntry* e = f.newEntry(tag);
    a.write(e);
    EXPECT_EQ(e->getDataSize(), bytesOf3[t]) << t;
    sxArray back(3, sxArray::DATA_TYPE(t));
    e->reset();
    back.read(e);
    EXPECT_EQ(std::memcmp(back.getData(), a.getData(), a.getSize()), 0) << t;
  }
  // After one byte of other data, ints take 3 padding bytes and 12 bytes.
  sxArray ints(3, sxArray::TYPE_INT);
  sxEntry* e = f.newEntry(tag);
  e->writeByte(1);
  ints.write(e);
  EXPECT_EQ(e->getDataSize(), 16);
}

TEST(Array, SharedInFilesAndReadBackShared) {
  sxTempDir dir;
  std::string path = dir.file("arrays.sx");
  sxTestHolder::initClass();
  auto* shared = new sxArray(3, sxArray::TYPE_VEC3);
  fill(shared);
  shared->enableDynamic(true);
  auto* growable = new sxGrowableArray(10, sxArray::TYPE_FLOAT);
  growable->setNum(2);
  auto* root = new sxBase;
  root->ref();
  sxTestHolder* holders[3];
  for (auto*& h : holders) {
    h = new sxTestHolder;
    root->addAttribute(h);
  }
  holders[0]->setArray(shared);
  holders[1]->setArray(shared);
  holders[2]->setArray(growable);
  {
    sxFile f;
    ASSERT_TRUE(f.create(path.c_str()));
    root->write(&f, nullptr);
    int arrays = 0;
    for (int i = 0; i < f.getNumEntries(); ++i)
      if (f.getEntry(i)->getTag() == f.findTag("sxArray")) ++arrays;
    EXPECT_EQ(arrays, 2) << "one entry per array, however often it is referred to";
    EXPECT_EQ(f.findEntry(static_cast<const void*>(shared))->getVersion(), 0x01020006u);
    ASSERT_TRUE(f.write());
  }
  root->unRef();

  sxFile f;
  ASSERT_TRUE(f.open(path.c_str(), "r"));
  auto* back = new sxBase;
  back->ref();
  f.getEntry(0)->setHandle(back);
  ASSERT_NE(back->read(&f, f.getEntry(0)), nullptr);
  f.close();
  ASSERT_EQ(back->getAttribList()->getNum(), 3);
  auto holder = [&](int i) { return static_cast<sxTestHolder*>((*back->getAttribList())[i]); };
  sxArray* a0 = holder(0)->getArray();
  ASSERT_NE(a0, nullptr);
  EXPECT_EQ(a0, holder(1)->getArray());
  EXPECT_EQ(a0->getRefCount(), 2);
  EXPECT_TRUE(a0->isDynamic());
  EXPECT_EQ(a0->getNum(), 3);
  sxArray* a2 = holder(2)->getArray();
  ASSERT_NE(a2, nullptr);
  EXPECT_EQ(a2->getNum(), 10) << "written with all 10 elements";
  EXPECT_FALSE(a2->isGrowable());
  EXPECT_FALSE(a2->isDynamic());
  back->unRef();

  // A reference of -1 reads as no array.
  sxFile g;
  sxEntry* e = g.newEntry(g.newTag("T"));
  e->writeInt(-1);
  e->reset();
  EXPECT_EQ(sxArray::readRef(&g, e), nullptr);
}

TEST(Array, AGrowableArrayReadsWithAllElementsInUse) {
  sxFile f;
  sxEntry* e = f.newEntry(f.newTag("T"));
  sxArray source(4, sxArray::TYPE_DOUBLE);
  fill(&source);
  source.write(e);
  e->reset();
  sxGrowableArray g(4, sxArray::TYPE_DOUBLE);
  g.read(e);
  EXPECT_EQ(g.getNum(), 4);
  EXPECT_EQ(static_cast<double*>(g.getData())[3], 1.5 * 3 - 7);
}

}  // namespace
