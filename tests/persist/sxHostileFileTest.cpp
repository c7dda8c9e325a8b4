#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <string>
#include <vector>

#include "support/sxCycles.h"
#include "support/sxTestFiles.h"
#include "support/sxTestHolder.h"

// Damaged and hostile files: each gives its error code or a null result,
// never an access out of bounds, a hang, a leak or a crash (the suite also
// runs under AddressSanitizer).
namespace {

// Opens the bytes as a file, loads every entry and imports the root.
void readEverything(const std::string& path) {
  sxFile f;
  if (f.open(path.c_str(), "r")) {
    for (int i = 0; i < f.getNumEntries(); ++i) f.readEntry(f.getEntry(i));
  }
  if (sxBase* root = sxLoader::importFile(path.c_str())) {
    root->ref();
    if (root->getRefCount() > 1) sxKeepCycle(root);
    root->unRef();
  }
}

// A file with a root object (entry 0) whose record is given by `fill`,
// one more plain object (entry 1) and an array entry (entry 2).
template <class Fill>
std::string handMade(const sxTempDir& dir, const char* name, Fill fill) {
  std::string path = dir.file(name);
  sxFile f;
  f.create(path.c_str());
  int base = f.newTag("sxBase");
  int array = f.newTag("sxArray");
  sxEntry* root = f.newEntry(base);
  fill(root);
  sxEntry* plain = f.newEntry(base);
  plain->writeInt(6);
  plain->writeString("plain");
  plain->writeShort(0);
  plain->writeInt(0);
  sxEntry* a = f.newEntry(array);
  a->writeShort(sxArray::TYPE_INT);
  a->writeInt(2);
  a->writeInt(11);
  a->writeInt(22);
  f.write();
  return path;
}

// The root's name, flags and attribute references.
auto rootWithReferences(std::vector<int> refs) {
  return [refs](sxEntry* e) {
    e->writeInt(5);
    e->writeString("root");
    e->writeShort(0);
    e->writeInt(int(refs.size()));
    for (int r : refs) e->writeInt(r);
  };
}

int numAttributes(const sxBase* obj) {
  return obj->getAttribList() ? obj->getAttribList()->getNum() : 0;
}

// Imports the file and returns the number of attributes its root read, or
// -1 when there is no root.
int importedAttributes(const std::string& path) {
  sxBase* root = sxLoader::importFile(path.c_str());
  if (!root) return -1;
  int n = numAttributes(root);
  root->ref();
  root->unRef();
  return n;
}

// A group holding an array: no cycles, which a cut file would leave
// unreachable.
TEST(HostileFiles, EveryTruncationOfARealFile) {
  sxTempDir dir;
  sxTestHolder::initClass();
  sxGroup* g = new sxGroup;
  g->ref();
  auto* h = new sxTestHolder;
  h->setArray(new sxArray(50, sxArray::TYPE_VEC3));
  g->addAttribute(h);
  ASSERT_TRUE(sxLoader::exportFile(g, dir.file("full.sx").c_str()));
  g->unRef();
  std::vector<unsigned char> bytes = sxReadBytes(dir.file("full.sx"));
  for (std::size_t n = 0; n < bytes.size(); n += (n < 1200 ? 1 : 7)) {
    std::vector<unsigned char> cut(bytes.begin(), bytes.begin() + long(n));
    sxWriteBytes(dir.file("cut.sx"), cut);
    sxFile f;
    bool opened = f.open(dir.file("cut.sx").c_str(), "r");
    if (n == 0) {
      EXPECT_EQ(f.getLastError(), sxFile::ERR_EMPTY);
    }
    if (n > 0 && n < 96 + 2 * 68 + 3 * 24) {
      EXPECT_FALSE(opened) << n;
      EXPECT_EQ(f.getLastError(), sxFile::ERR_READ) << n;
    }
    if (opened) {
      for (int i = 0; i < f.getNumEntries(); ++i)
        if (!f.readEntry(f.getEntry(i))) {
          EXPECT_EQ(f.getLastError(), sxFile::ERR_READ);
        }
    }
    f.close();
    readEverything(dir.file("cut.sx"));
  }
}

TEST(HostileFiles, DamagedHeadersAndTables) {
  sxTempDir dir;
  std::string path = handMade(dir, "base.sx", rootWithReferences({1}));
  std::vector<unsigned char> good = sxReadBytes(path);
  auto openDamaged = [&](std::size_t at, std::uint32_t value) {
    std::vector<unsigned char> bytes = good;
    sxPut32(bytes, at, value);
    sxWriteBytes(dir.file("bad.sx"), bytes);
    sxFile f;
    bool ok = f.open(dir.file("bad.sx").c_str(), "r");
    readEverything(dir.file("bad.sx"));
    return ok ? sxFile::ERR_NONE : f.getLastError();
  };
  EXPECT_EQ(openDamaged(0, 0x12345678), sxFile::ERR_MAGIC);
  EXPECT_EQ(openDamaged(72, 0), sxFile::ERR_READ) << "no entries";
  EXPECT_EQ(openDamaged(72, 0x7FFFFFFF), sxFile::ERR_READ) << "huge entry count";
  EXPECT_EQ(openDamaged(72, 0x80000000), sxFile::ERR_READ) << "negative entry count";
  EXPECT_EQ(openDamaged(76, 0x7FFFFFFF), sxFile::ERR_READ) << "huge tag count";
  EXPECT_EQ(openDamaged(96 + 68, 5), sxFile::ERR_READ) << "tag index not its position";

  // Directory records: tag indices past the table, offsets and sizes past
  // the end of the file, a negative offset. The file opens; the entries
  // fail to load or read as null objects.
  std::size_t dirAt = 96 + 2 * 68;
  EXPECT_EQ(openDamaged(dirAt + 24 + 4, 77), sxFile::ERR_NONE);
  EXPECT_EQ(openDamaged(dirAt + 24 + 8, 0x7FFFFF00), sxFile::ERR_NONE);
  EXPECT_EQ(openDamaged(dirAt + 24 + 8, 0xFFFFFF00), sxFile::ERR_NONE);
  EXPECT_EQ(openDamaged(dirAt + 24 + 16, 0x7FFFFFFF), sxFile::ERR_NONE);
  EXPECT_EQ(openDamaged(dirAt + 24 + 12, 1), sxFile::ERR_NONE) << "raw data taken as a stream";
  EXPECT_EQ(openDamaged(dirAt + 24 + 12, 65536), sxFile::ERR_NONE) << "an unknown compression";

  std::vector<unsigned char> bytes = good;
  sxPut32(bytes, dirAt + 24 + 8, 0x7FFFFF00);
  sxWriteBytes(dir.file("offset.sx"), bytes);
  sxFile f;
  ASSERT_TRUE(f.open(dir.file("offset.sx").c_str(), "r"));
  EXPECT_FALSE(f.readEntry(f.getEntry(1)));
  EXPECT_EQ(f.getLastError(), sxFile::ERR_READ);
  EXPECT_EQ(importedAttributes(dir.file("offset.sx")), 0) << "the unreadable object reads as null";
}

// Inputs that the fuzzer found, kept as they were.
TEST(HostileFiles, FuzzerFindings) {
  // A compression code that is neither 0 nor 1 reads the data raw.
  std::string path = std::string(SXCORE_TEST_DATA) + "/fuzz-compression-65536.sx";
  sxFile f;
  ASSERT_TRUE(f.open(path.c_str(), "r"));
  bool found = false;
  for (int i = 0; i < f.getNumEntries(); ++i) {
    sxEntry* e = f.getEntry(i);
    if (e->getCompression() != 65536) continue;
    found = true;
    EXPECT_TRUE(f.readEntry(e) || f.getLastError() == sxFile::ERR_READ);
  }
  EXPECT_TRUE(found);
  readEverything(path);

  // An attribute count larger than the references that follow, with the
  // data ending inside the next aligned int: reading stops there.
  testing::internal::CaptureStdout();
  readEverything(std::string(SXCORE_TEST_DATA) + "/fuzz-attribute-count-hang.sx");
  testing::internal::GetCapturedStdout();
}

TEST(HostileFiles, RunLengthStreamsThatOverrun) {
  sxTempDir dir;
  auto streamFile = [&](std::vector<unsigned char> stream, std::uint32_t dataSize) {
    std::string path = handMade(dir, "rle.sx", rootWithReferences({}));
    std::vector<unsigned char> bytes = sxReadBytes(path);
    std::size_t dirAt = 96 + 2 * 68;
    std::uint32_t offset = std::uint32_t(bytes.size());
    sxPut32(bytes, offset, std::uint32_t(stream.size()));
    bytes.insert(bytes.end(), stream.begin(), stream.end());
    sxPut32(bytes, dirAt + 24 + 8, offset);
    sxPut32(bytes, dirAt + 24 + 12, 1);
    sxPut32(bytes, dirAt + 24 + 16, dataSize);
    sxWriteBytes(path, bytes);
    sxFile f;
    EXPECT_TRUE(f.open(path.c_str(), "r"));
    bool ok = f.readEntry(f.getEntry(1));
    EXPECT_EQ(ok ? sxFile::ERR_NONE : f.getLastError(), ok ? sxFile::ERR_NONE : sxFile::ERR_READ);
    if (ok) {
      EXPECT_EQ(f.getEntry(1)->getDataSize(), int(dataSize));
    }
    return ok;
  };
  EXPECT_TRUE(streamFile({4, 'a', 2, 'b', 0}, 6));
  EXPECT_FALSE(streamFile({200, 'a', 200, 'b', 0}, 300)) << "decodes past the data";
  EXPECT_FALSE(streamFile({4, 'a', 2, 'b'}, 6)) << "no end mark";
  EXPECT_FALSE(streamFile({4, 'a', 2}, 6)) << "cut within a pair";
  EXPECT_FALSE(streamFile({4, 'a', 0}, 0x7FFFFFFF)) << "cannot fill the claimed size";
  EXPECT_TRUE(streamFile({2, 'a', 0}, 4)) << "a short stream leaves zeros";
}

TEST(HostileFiles, ReferencesStringsAndCountsOutOfRange) {
  sxTempDir dir;
  // References out of range and to the array's entry read as null.
  std::string path = handMade(dir, "refs.sx", rootWithReferences({1, 3, -7, 2, 0x7FFFFFFF, 1}));
  sxBase* root = sxLoader::importFile(path.c_str());
  ASSERT_NE(root, nullptr);
  ASSERT_EQ(numAttributes(root), 2);
  EXPECT_EQ((*root->getAttribList())[0], (*root->getAttribList())[1]);
  root->ref();
  root->unRef();

  // A name length past the entry: that object reads as null.
  path = handMade(dir, "name.sx", rootWithReferences({1}));
  std::vector<unsigned char> bytes = sxReadBytes(path);
  std::size_t dirAt = 96 + 2 * 68;
  sxPut32(bytes, sxGet32(bytes, dirAt + 24 + 8), 1000000);
  sxWriteBytes(path, bytes);
  EXPECT_EQ(importedAttributes(path), 0);

  // A huge attribute count ends with the data, also when the data end in
  // the middle of an aligned int.
  for (int trailing : {0, 2}) {
    path = handMade(dir, "count.sx", [trailing](sxEntry* e) {
      e->writeInt(0);
      e->writeShort(0);
      e->writeInt(0x7FFFFFFF);
      e->writeInt(1);
      for (int i = 0; i < trailing; ++i) e->writeByte(0);
    });
    EXPECT_EQ(importedAttributes(path), 1) << trailing;
  }
}

// An array reference to an object's entry, an object reference to an
// array's entry, an array of an unknown type or with more elements than its
// entry holds.
TEST(HostileFiles, ArraysAndObjectsAreNotConfused) {
  sxTempDir dir;
  sxTestHolder::initClass();
  std::string path = dir.file("confused.sx");
  {
    sxFile f;
    f.create(path.c_str());
    int holder = f.newTag("sxTestHolder");
    int array = f.newTag("sxArray");
    sxEntry* root = f.newEntry(holder);
    root->writeInt(0);
    root->writeShort(0);
    root->writeInt(4);
    for (int r : {1, 2, 3, 4}) root->writeInt(r);
    root->writeInt(-1);  // no array of its own
    // Holders whose array references point at entries 5 (unknown type),
    // 6 (too many elements), 0 (an object) and 7 (a good, dynamic array).
    for (int ref : {5, 6, 0, 7}) {
      sxEntry* h = f.newEntry(holder);
      h->writeInt(0);
      h->writeShort(0);
      h->writeInt(0);
      h->writeInt(ref);
    }
    const int arrays[3][3] = {
        {12, 1, 0}, {sxArray::TYPE_VEC4, 0x10000000, 0}, {sxArray::TYPE_INT | 0x8000, 1, 42}};
    for (const auto& a : arrays) {
      sxEntry* e = f.newEntry(array);
      e->writeShort(short(a[0]));
      e->writeInt(a[1]);
      e->writeInt(a[2]);
    }
    ASSERT_TRUE(f.write());
  }
  sxBase* root = sxLoader::importFile(path.c_str());
  ASSERT_NE(root, nullptr);
  root->ref();
  auto* typed = dynamic_cast<sxTestHolder*>(root);
  ASSERT_NE(typed, nullptr);
  EXPECT_EQ(typed->getArray(), nullptr);
  ASSERT_EQ(numAttributes(root), 4);
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(static_cast<sxTestHolder*>((*root->getAttribList())[i])->getArray(), nullptr) << i;
  sxArray* a = static_cast<sxTestHolder*>((*root->getAttribList())[3])->getArray();
  ASSERT_NE(a, nullptr);
  EXPECT_TRUE(a->isDynamic());
  EXPECT_EQ(static_cast<int*>(a->getData())[0], 42);
  EXPECT_EQ(a->getRefCount(), 1);
  root->unRef();
}

}  // namespace
