#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <array>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "support/sxReferenceScene.h"
#include "support/sxTestFiles.h"

// The layout of files and values is guarded by the reference files (ByteOrder);
// the other tests check the operations and errors of files and entries.
namespace {

void checkDirectory(const std::string& dir, bool writtenBigEndian) {
  bool expectSwapped = writtenBigEndian != sxReference::isBigEndian();
  for (const auto& file : sxReference::files) {
    std::string report;
    bool swapped = !expectSwapped;
    EXPECT_EQ(file.check((dir + "/" + file.name).c_str(), swapped, report), 0) << file.name << "\n"
                                                                               << report;
    EXPECT_EQ(swapped, expectSwapped) << file.name;
  }
}

// A file of three entries tagged "A", "B", "A", each holding one int.
void writeThree(const std::string& path) {
  ASSERT_TRUE(sxWriteFile(path, [](sxFile& f) {
    const int tags[3] = {f.newTag("A"), f.newTag("B"), f.newTag("A")};
    for (int i = 0; i < 3; ++i) {
      sxEntry* e = f.newEntry(tags[i]);
      e->writeInt(100 + i);
      e->setVersion(unsigned(i));
    }
  }));
}

// Reference files that an s390x and an x86-64 machine wrote, and ones written
// here. .ci/bigendian.sh also hands in fresh s390x ones through
// SXCORE_BIGENDIAN_DIR, and checks the reverse direction on s390x.
TEST(ByteOrder, FilesWrittenHereAndOnBigAndLittleEndianMachines) {
  checkDirectory(std::string(SXCORE_TEST_DATA) + "/s390x", true);
  if (const char* fresh = std::getenv("SXCORE_BIGENDIAN_DIR")) checkDirectory(fresh, true);
  checkDirectory(std::string(SXCORE_TEST_DATA) + "/x86_64", false);
  sxTempDir dir;
  for (const auto& file : sxReference::files) ASSERT_TRUE(file.write(dir.file(file.name).c_str()));
  checkDirectory(dir.path, sxReference::isBigEndian());
}

// Each kind of failure to open or write; then a loaded file's directory and
// tags, entries without data, and writing an opened file again.
TEST(File, FailuresDirectoryAndRewritingAnOpenedFile) {
  sxTempDir dir;
  std::string path = dir.file("three.sx");
  writeThree(path);
  std::vector<unsigned char> header(96, 0);
  sxPut32(header, 0, sxFile::magic);
  sxWriteBytes(dir.file("noentries.sx"), header);  // a valid header, nothing more
  header.push_back(0);
  sxWriteBytes(dir.file("97.sx"), header);
  EXPECT_FALSE(sxFile::isSolmaxFormat(dir.file("noentries.sx").c_str()));
  EXPECT_TRUE(sxFile::isSolmaxFormat(dir.file("97.sx").c_str()));
  // Empty, cut and foreign files are among the hostile files.
  auto failedOpen = [](const std::string& p, const char* mode) {
    sxFile f;
    EXPECT_FALSE(f.open(p.empty() ? nullptr : p.c_str(), mode)) << p;
    EXPECT_FALSE(f.isOpen());
    EXPECT_EQ(f.getNumEntries(), 0) << "a failed open discards what was read";
    return f.getLastError();
  };
  EXPECT_EQ(failedOpen("", "r"), sxFile::ERR_OPEN);
  EXPECT_EQ(failedOpen(path, "w"), sxFile::ERR_OPEN) << "only r and rw are modes";
  EXPECT_EQ(failedOpen(dir.file("missing.sx"), "r"), sxFile::ERR_OPEN);
  sxFile f;
  auto error = [&f](bool ok) { return ok ? sxFile::ERR_NONE : f.getLastError(); };
  EXPECT_EQ(error(f.write()), sxFile::ERR_NOT_OPEN);
  ASSERT_TRUE(f.open(path.c_str(), "r"));
  EXPECT_EQ(error(f.write()), sxFile::ERR_READ_ONLY);
  f.close();
  EXPECT_EQ(error(f.readEntry(nullptr)), sxFile::ERR_NOT_OPEN);
  ASSERT_TRUE(f.open(path.c_str(), "rw"));
  ASSERT_EQ((std::tuple{f.getNumEntries(), f.getNumTags()}), (std::tuple{3, 2}));
  EXPECT_STREQ(f.getTagDesc(1), "B");
  EXPECT_TRUE(!f.getTagDesc(2) && !f.getTagDesc(-1)) << "no tags out of range";
  EXPECT_EQ((std::tuple{f.getEntry(2)->getDirNum(), f.getEntry(2)->getData()}),
            (std::tuple<int, const unsigned char*>{-1, nullptr}))
      << "loaded entries keep dirNum -1; data are read on demand";
  EXPECT_EQ(f.findNextEntry(0, f.getEntry(0)), f.getEntry(2));
  EXPECT_EQ(f.findNextEntry(0, f.getEntry(2)), nullptr);
  EXPECT_EQ(f.findEntry("B"), f.getEntry(1));
  EXPECT_EQ(f.findEntry(5), nullptr);
  EXPECT_EQ(f.findTag("Z"), -1);
  EXPECT_EQ(f.newEntry(7), nullptr) << "unknown tag";
  // Tag names are cut to 63 characters, and the long name finds its tag.
  std::string longName(70, 'n');
  int t = f.newTag(longName.c_str());
  EXPECT_EQ(std::strlen(f.getTagDesc(t)), 63u);
  EXPECT_EQ(f.newTag(longName.c_str()), t);
  EXPECT_EQ(error(f.readEntry(f.newEntry(0))), sxFile::ERR_NO_DATA);
  f.newEntry(t)->writeDouble(6.5);
  // Entries 0..2 were never loaded; writing loads them first. The empty
  // entry 3 cannot be loaded, which is noted but does not stop the write.
  ASSERT_TRUE(f.write());
  EXPECT_EQ(f.getLastError(), sxFile::ERR_NO_DATA);
  f.close();
  ASSERT_TRUE(f.open(path.c_str(), "r"));
  ASSERT_EQ(f.getNumEntries(), 5);
  for (int i = 0; i < 3; ++i)
    EXPECT_TRUE(f.readEntry(f.getEntry(i)) && f.getEntry(i)->readInt() == 100 + i) << i;
  EXPECT_EQ(f.getEntry(3)->getDataSize(), 0);
  EXPECT_TRUE(f.readEntry(f.getEntry(4)) && f.getEntry(4)->readDouble() == 6.5);
}

TEST(File, RemovedEntriesAndEntriesByHandle) {
  sxFile f;
  int t = f.newTag("T");
  sxEntry* e[3];
  for (int i = 0; i < 3; ++i) e[i] = f.newEntry(t);
  EXPECT_TRUE(f.removeEntry(e[0]) && f.removeEntry(nullptr));
  ASSERT_EQ(f.getNumEntries(), 2);
  EXPECT_EQ((std::tuple{f.getEntry(0), e[2]->getDirNum(), f.findNextEntry(t, e[2])}),
            (std::tuple{e[2], 2, e[1]}))
      << "the last moves into the hole; its stored dirNum is not changed";
  // An entry of another file leaves that file.
  sxFile other;
  EXPECT_TRUE(f.removeEntry(other.newEntry(other.newTag("X"))) && other.getNumEntries() == 0);
  int objects[3];
  auto find = [&](int i) { return f.findEntry(static_cast<const void*>(&objects[i])); };
  auto withHandle = [&](int i) {
    sxEntry* entry = f.newEntry(t);
    entry->setHandle(&objects[i]);
    return entry;
  };
  sxEntry* a = withHandle(0);
  sxEntry* b = withHandle(1);
  EXPECT_EQ(find(1), b);
  b->setHandle(&objects[2]);
  EXPECT_EQ((std::tuple{find(0), find(1), find(2)}),
            (std::tuple<sxEntry*, sxEntry*, sxEntry*>{a, nullptr, b}));
  // Two entries of one handle: the last in the directory is found.
  sxEntry* c = withHandle(0);
  EXPECT_EQ(find(0), c);
  f.removeEntry(c);
  EXPECT_EQ(find(0), a);
  f.removeEntry(a);
  EXPECT_EQ(find(0), nullptr);
}

// Run-length encoding is asked for but not used where it does not pay:
// under 10 bytes, or where the stream would be no smaller. The data come
// back all the same. (Where it pays, the reference files show it.)
TEST(File, RunLengthEncodingOnlyWhereItPays) {
  sxTempDir dir;
  std::string path = dir.file("rle.sx");
  std::vector<unsigned char> alternating;
  for (int i = 0; i < 40; ++i) alternating.push_back(static_cast<unsigned char>(i & 1));
  const std::vector<unsigned char> data[2] = {{1, 2, 3, 4, 5, 6, 7, 8, 9}, alternating};
  {
    sxFile f;
    ASSERT_TRUE(f.create(path.c_str()));
    int t = f.newTag("R");
    for (const auto& d : data) {
      sxEntry* e = f.newEntry(t);
      e->writeChunk(d.data(), int(d.size()));
      e->setCompression(sxEntry::RUN_LENGTH);
    }
    ASSERT_TRUE(f.write());
    for (int i = 0; i < 2; ++i)
      EXPECT_EQ(f.getEntry(i)->getCompression(), sxEntry::NO_COMPRESSION) << i;
  }
  sxFile f;
  ASSERT_TRUE(f.open(path.c_str(), "r"));
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(f.getEntry(i)->getCompression(), sxEntry::NO_COMPRESSION) << i;
    EXPECT_TRUE(f.readEntry(f.getEntry(i)) && sxEntryBytes(f.getEntry(i)) == data[i]) << i;
  }
}

// Entries exist only inside a file; a file that is never opened serves.
class Entry : public testing::Test {
 protected:
  sxFile file;
  sxEntry* e = file.newEntry(file.newTag("sxTest"));
};

// At the end every reader returns its end value and leaves the cursor, also
// for a value that would reach past the data; runs stop element by element.
TEST_F(Entry, ReadersAtTheEndStringsChunksAndReplacedData) {
  for (unsigned char b : {1, 2, 3}) e->writeByte(b);
  e->reset();
  e->readByte();
  EXPECT_EQ((std::tuple{e->readInt(), e->getCursor()}), (std::tuple{-1, 1}))
      << "an aligned int would be bytes 4..7";
  EXPECT_EQ(e->readShort(), std::bit_cast<short>(std::array<unsigned char, 2>{2, 3}))
      << "shorts are not aligned";
  ASSERT_EQ(e->getCursor(), e->getDataSize());
  EXPECT_EQ(
      (std::tuple{e->readBool(), e->readByte(), e->readShort(), e->readFloat(), e->readDouble()}),
      (std::tuple{true, -1, short(-1), -1.0f, -1.0}));
  char text[4] = {'x', 'x', 'x', 'x'};
  EXPECT_EQ((std::tuple{e->readString(text, 4), e->readChunk(text, 4), text[0]}),
            (std::tuple{-1, -1, 'x'}))
      << "nothing copied past the end";
  EXPECT_EQ(e->getCursor(), e->getDataSize()) << "no reader moves the cursor at the end";
  e->writeFloat(1.5f);
  e->setData(e->getData(), 8);
  e->reset();
  e->readByte();
  float floats[2];
  e->readFloats(floats, 2);
  EXPECT_EQ((std::tuple{floats[0], floats[1]}), (std::tuple{1.5f, -1.0f}));
  EXPECT_EQ(file.newEntry(0)->readInt(), -1) << "an entry without data";
  e = file.newEntry(0);
  e->writeString("abc");
  e->writeString(nullptr);  // writes nothing
  e->writeChunk("\x01\x02\x03\x04\x05", 5);
  EXPECT_EQ(e->getDataSize(), 9);
  e->reset();
  // A bounded copy: stops after the NUL, zero-fills, advances by len.
  char chars[8] = {'z', 'z', 'z', 'z', 'z', 'z', 'z', 'z'};
  EXPECT_EQ(e->readString(chars, 6), 6);
  EXPECT_EQ(std::string(chars, 8), std::string("abc\0\0\0zz", 8));
  // Fewer bytes remain than asked for: only those are copied.
  unsigned char chunk[8] = {};
  EXPECT_EQ(e->readChunk(chunk, 8), 3);
  EXPECT_EQ(std::vector<unsigned char>(chunk, chunk + 8),
            (std::vector<unsigned char>{3, 4, 5, 0, 0, 0, 0, 0}));
  // A string length reaching past the entry copies what is there.
  e->reset();
  char longer[32];
  std::memset(longer, 'q', sizeof longer);
  EXPECT_EQ(e->readString(longer, 32), 9);
  EXPECT_TRUE(std::string(longer) == "abc" && longer[31] == 0);
  EXPECT_EQ(e->readInt(), -1) << "the cursor went past the end";
  // New data are copied and keep the cursor; freeing them keeps the size.
  sxEntry* d = file.newEntry(0);
  for (int v : {1, 2}) d->writeInt(v);
  const int replacement[3] = {7, 8, 9};
  d->setData(replacement, 12);
  EXPECT_EQ((std::tuple{d->getCursor(), d->readInt()}), (std::tuple{8, 9}));
  d->setData(nullptr, 0);
  EXPECT_EQ((std::tuple{d->getData(), d->getDataSize()}), (std::tuple{nullptr, 12}));
  d->reset();
  EXPECT_EQ(d->readInt(), -1);
}

}  // namespace
