#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/sxCycles.h"
#include "support/sxTestFiles.h"
#include "support/sxTestHolder.h"
#include "support/sxThroughFile.h"

// Damaged and hostile files give their error code or a null result, never an
// access out of bounds, a hang, a leak or a crash (checked under ASan too).
namespace {

// Where the directory record of an entry starts in a file of two tags;
// its fields: tag at 4, offset at 8, compression at 12, size at 16.
constexpr std::size_t record(int entry) {
  return sxFile::headerSize + 2 * sxFile::tagRecordSize + entry * sxFile::directoryRecordSize;
}

// Opens the bytes as a file, loads every entry (one that does not load is
// a read error, or has no data) and imports the root.
void readEverything(const std::string& path) {
  sxFile f;
  const bool opened = f.open(path.c_str(), "r");
  for (int i = 0; opened && i < f.getNumEntries(); ++i) {
    sxEntry* e = f.getEntry(i);
    const auto failure = e->getDataSize() > 0 ? sxFile::ERR_READ : sxFile::ERR_NO_DATA;
    EXPECT_TRUE(f.readEntry(e) || f.getLastError() == failure) << path << " entry " << i;
  }
  sxRef<sxBase> root(sxLoader::importFile(path.c_str()));
  if (root && root->getRefCount() > 1) sxKeepCycle(root.get());
}

// A root (entry 0) referring to refs, claiming `count` attributes and followed
// by `trailing` zero bytes; a plain object (entry 1) and an array (entry 2).
std::string handMade(const sxTempDir& dir, const char* name, const std::vector<int>& refs,
                     int count = -1, int trailing = 0) {
  std::string path = dir.file(name);
  sxWriteFile(path, [&](sxFile& f) {
    int base = f.newTag("sxBase");
    sxEntry* root = f.newEntry(base);
    sxWriteObject(root, "root", refs, count);
    for (int i = 0; i < trailing; ++i) root->writeByte(0);
    sxWriteObject(f.newEntry(base), "plain", {});
    sxEntry* a = f.newEntry(f.newTag("sxArray"));
    a->writeShort(sxArray::TYPE_INT);
    for (int v : {2, 11, 22}) a->writeInt(v);
  });
  return path;
}

// The number of attributes the imported root read, -1 without a root.
int importedAttributes(const std::string& path) {
  sxRef<sxBase> root(sxLoader::importFile(path.c_str()));
  return root ? sxNumAttributes(root.get()) : -1;
}

// A group holding an array: no cycles, which a cut file would leave
// unreachable.
TEST(HostileFiles, EveryTruncationOfARealFileAndTheFuzzerFindings) {
  sxTempDir dir;
  sxTestHolder::initClass();
  sxRef<sxGroup> g(new sxGroup);
  auto* h = new sxTestHolder;
  h->setArray(new sxArray(50, sxArray::TYPE_VEC3));
  g->addAttribute(h);
  ASSERT_TRUE(sxLoader::exportFile(g.get(), dir.file("full.sx").c_str()));
  const std::vector<unsigned char> bytes = sxReadBytes(dir.file("full.sx"));
  const std::string cut = dir.file("cut.sx");
  for (std::size_t n = 0; n < bytes.size(); n += (n < 1200 ? 1 : 7)) {
    sxWriteBytes(cut, {bytes.begin(), bytes.begin() + long(n)});
    sxFile f;
    if (n < 96 + 2 * 68 + 3 * 24) {
      EXPECT_FALSE(f.open(cut.c_str(), "r")) << n;
      EXPECT_EQ(f.getLastError(), n == 0 ? sxFile::ERR_EMPTY : sxFile::ERR_READ) << n;
    }
    readEverything(cut);
  }
  // Inputs that the fuzzer found, kept as they were: a compression code that
  // is neither 0 nor 1 reads the data raw.
  const std::string path = std::string(SXCORE_TEST_DATA) + "/fuzz-compression-65536.sx";
  sxFile f;
  ASSERT_TRUE(f.open(path.c_str(), "r"));
  int found = 0;
  for (int i = 0; i < f.getNumEntries(); ++i) found += f.getEntry(i)->getCompression() == 65536;
  EXPECT_GT(found, 0);
  readEverything(path);
  // An attribute count larger than the references that follow, with the
  // data ending inside the next aligned int: reading stops there.
  testing::internal::CaptureStdout();
  readEverything(std::string(SXCORE_TEST_DATA) + "/fuzz-attribute-count-hang.sx");
  // A scene that names itself among its traits: the reader leaves it out of
  // the list, and the root comes back alive all the same.
  const std::string self = std::string(SXCORE_TEST_DATA) + "/fuzz-root-in-own-trait-list.sx";
  sxRef<sxBase> root(sxLoader::importFile(self.c_str()));
  testing::internal::GetCapturedStdout();
  ASSERT_TRUE(root);
  EXPECT_TRUE(root->isOfType(sxScene::getClassType()));
}

TEST(HostileFiles, DamagedHeadersTablesRecordsReferencesAndStreams) {
  sxTempDir dir;
  const std::vector<unsigned char> good = sxReadBytes(handMade(dir, "base.sx", {1}));
  const std::string bad = dir.file("bad.sx");
  auto openDamaged = [&](std::size_t at, std::uint32_t value) {
    std::vector<unsigned char> bytes = good;
    sxPut32(bytes, at, value);
    sxWriteBytes(bad, bytes);
    sxFile f;
    bool ok = f.open(bad.c_str(), "r");
    readEverything(bad);
    return ok ? sxFile::ERR_NONE : f.getLastError();
  };
  EXPECT_EQ(openDamaged(0, 0x12345678), sxFile::ERR_MAGIC);
  // An entry count of 0, huge or negative; a huge tag count; a tag index
  // that is not its position.
  const std::pair<std::size_t, std::uint32_t> tables[] = {
      {72, 0}, {72, 0x7FFFFFFF}, {72, 0x80000000}, {76, 0x7FFFFFFF}, {96 + 68, 5}};
  for (auto [at, value] : tables) EXPECT_EQ(openDamaged(at, value), sxFile::ERR_READ) << at;
  // Directory records: a tag index past the table, raw data taken as a stream,
  // an unknown compression, a size past the end, a negative offset and, last,
  // an offset past the end: the file opens, the entries fail or read as null.
  const std::pair<std::size_t, std::uint32_t> records[] = {
      {4, 77}, {12, 1}, {12, 65536}, {16, 0x7FFFFFFF}, {8, 0xFFFFFF00}, {8, 0x7FFFFF00}};
  for (auto [field, value] : records)
    EXPECT_EQ(openDamaged(record(1) + field, value), sxFile::ERR_NONE) << field;
  sxFile f;
  ASSERT_TRUE(f.open(bad.c_str(), "r"));
  EXPECT_TRUE(!f.readEntry(f.getEntry(1)) && f.getLastError() == sxFile::ERR_READ);
  EXPECT_EQ(importedAttributes(bad), 0) << "the unreadable object reads as null";
  // So does an object whose name length reaches past its entry.
  EXPECT_EQ(openDamaged(sxGet32(good, record(1) + 8), 1000000), sxFile::ERR_NONE);
  EXPECT_EQ(importedAttributes(bad), 0);
  // References out of range and to the array's entry read as null.
  std::string path = handMade(dir, "refs.sx", {1, 3, -7, 2, 0x7FFFFFFF, 1});
  sxRef<sxBase> root(sxLoader::importFile(path.c_str()));
  ASSERT_TRUE(root && sxNumAttributes(root.get()) == 2);
  EXPECT_EQ(sxAttribute(root.get(), 0), sxAttribute(root.get(), 1));
  // A huge attribute count ends with the data, also when the data end in
  // the middle of an aligned int.
  for (int trailing : {0, 2})
    EXPECT_EQ(importedAttributes(handMade(dir, "count.sx", {1}, 0x7FFFFFFF, trailing)), 1)
        << trailing;
  // Run-length streams that overrun, as the plain object's data.
  auto streamFile = [&](std::vector<unsigned char> stream, std::uint32_t dataSize) {
    std::vector<unsigned char> bytes = good;
    std::uint32_t offset = std::uint32_t(bytes.size());
    sxPut32(bytes, offset, std::uint32_t(stream.size()));
    bytes.insert(bytes.end(), stream.begin(), stream.end());
    sxPut32(bytes, record(1) + 8, offset);
    sxPut32(bytes, record(1) + 12, 1);
    sxPut32(bytes, record(1) + 16, dataSize);
    sxWriteBytes(bad, bytes);
    sxFile f;
    EXPECT_TRUE(f.open(bad.c_str(), "r"));
    const bool ok = f.readEntry(f.getEntry(1));
    EXPECT_TRUE(ok ? f.getEntry(1)->getDataSize() == int(dataSize)
                   : f.getLastError() == sxFile::ERR_READ);
    return ok;
  };
  EXPECT_TRUE(streamFile({4, 'a', 2, 'b', 0}, 6));
  EXPECT_FALSE(streamFile({200, 'a', 200, 'b', 0}, 300)) << "decodes past the data";
  EXPECT_FALSE(streamFile({4, 'a', 2, 'b'}, 6)) << "no end mark";
  EXPECT_FALSE(streamFile({4, 'a', 2}, 6)) << "cut within a pair";
  EXPECT_FALSE(streamFile({4, 'a', 0}, 0x7FFFFFFF)) << "cannot fill the claimed size";
  EXPECT_TRUE(streamFile({2, 'a', 0}, 4)) << "a short stream leaves zeros";
}

// An array reference to an object's entry, an object reference to an array's,
// an array of an unknown type or with more elements than its entry holds.
TEST(HostileFiles, ArraysAndObjectsAreNotConfused) {
  sxTestHolder::initClass();
  sxRef<sxBase> root = sxImportWritten([](sxFile& f) {
    int holder = f.newTag("sxTestHolder");
    int array = f.newTag("sxArray");
    // The root has no array; its holders' arrays are entries 5 (unknown type),
    // 6 (too many elements), 0 (an object) and 7 (a good, dynamic array).
    for (int ref : {-1, 5, 6, 0, 7}) {
      sxEntry* h = f.newEntry(holder);
      sxWriteObject(h, nullptr, ref < 0 ? std::vector<int>{1, 2, 3, 4} : std::vector<int>{});
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
  });
  auto* typed = dynamic_cast<sxTestHolder*>(root.get());
  ASSERT_NE(typed, nullptr);
  EXPECT_EQ(typed->getArray(), nullptr);
  ASSERT_EQ(sxNumAttributes(typed), 4);
  auto arrayOf = [&](int i) {
    return static_cast<sxTestHolder*>(sxAttribute(typed, i))->getArray();
  };
  for (int i = 0; i < 3; ++i) EXPECT_EQ(arrayOf(i), nullptr) << i;
  sxArray* a = arrayOf(3);
  ASSERT_NE(a, nullptr);
  EXPECT_EQ((std::tuple{a->isDynamic(), static_cast<int*>(a->getData())[0], a->getRefCount()}),
            (std::tuple{true, 42, 1}));
}

}  // namespace
