#include <gtest/gtest.h>
#include <sx/kernel/sxKernel.h>
#include <sx/persist/sxEntry.h>
#include <sx/persist/sxFile.h>

#include <cstring>
#include <string>
#include <vector>

#include "support/sxTestFiles.h"

namespace {

// A file of three entries tagged "A", "B", "A", each holding one int.
void writeThree(const std::string& path) {
  sxFile f;
  ASSERT_TRUE(f.create(path.c_str()));
  int a = f.newTag("A"), b = f.newTag("B");
  int tags[3] = {a, b, a};
  for (int i = 0; i < 3; ++i) {
    sxEntry* e = f.newEntry(tags[i]);
    e->writeInt(100 + i);
    e->setVersion(unsigned(i));
  }
  ASSERT_TRUE(f.write());
}

TEST(File, OpenReportsEachKindOfFailure) {
  sxTempDir dir;
  sxFile f;
  EXPECT_FALSE(f.open(nullptr, "r"));
  EXPECT_EQ(f.getLastError(), sxFile::ERR_OPEN);
  writeThree(dir.file("ok.sx"));
  EXPECT_FALSE(f.open(dir.file("ok.sx").c_str(), "w"));
  EXPECT_EQ(f.getLastError(), sxFile::ERR_OPEN) << "only r and rw are modes";
  EXPECT_FALSE(f.open(dir.file("missing.sx").c_str(), "r"));
  EXPECT_EQ(f.getLastError(), sxFile::ERR_OPEN);

  sxWriteBytes(dir.file("empty.sx"), {});
  EXPECT_FALSE(f.open(dir.file("empty.sx").c_str(), "r"));
  EXPECT_EQ(f.getLastError(), sxFile::ERR_EMPTY);

  std::vector<unsigned char> junk(200, 0x42);
  sxWriteBytes(dir.file("junk.sx"), junk);
  EXPECT_FALSE(f.open(dir.file("junk.sx").c_str(), "r"));
  EXPECT_EQ(f.getLastError(), sxFile::ERR_MAGIC);

  // A valid header with no entries and no tags, and one cut short.
  std::vector<unsigned char> header(96, 0);
  sxPut32(header, 0, sxFile::magic);
  sxWriteBytes(dir.file("noentries.sx"), header);
  EXPECT_FALSE(f.open(dir.file("noentries.sx").c_str(), "r"));
  EXPECT_EQ(f.getLastError(), sxFile::ERR_READ);
  EXPECT_FALSE(sxFile::isSolmaxFormat(dir.file("noentries.sx").c_str()));
  header.push_back(0);
  sxWriteBytes(dir.file("97.sx"), header);
  EXPECT_TRUE(sxFile::isSolmaxFormat(dir.file("97.sx").c_str()));
  header.resize(50);
  sxWriteBytes(dir.file("short.sx"), header);
  EXPECT_FALSE(f.open(dir.file("short.sx").c_str(), "r"));
  EXPECT_EQ(f.getLastError(), sxFile::ERR_READ);
  EXPECT_FALSE(f.isOpen());
  EXPECT_EQ(f.getNumEntries(), 0) << "a failed open discards what was read";
}

TEST(File, WriteNeedsAFileOpenForWriting) {
  sxTempDir dir;
  writeThree(dir.file("a.sx"));
  sxFile f;
  EXPECT_FALSE(f.write());
  EXPECT_EQ(f.getLastError(), sxFile::ERR_NOT_OPEN);
  ASSERT_TRUE(f.open(dir.file("a.sx").c_str(), "r"));
  EXPECT_FALSE(f.write());
  EXPECT_EQ(f.getLastError(), sxFile::ERR_READ_ONLY);
  f.close();
  EXPECT_FALSE(f.readEntry(nullptr));
  EXPECT_EQ(f.getLastError(), sxFile::ERR_NOT_OPEN);
}

TEST(File, LayoutDirectoryAndRoundTrip) {
  sxTempDir dir;
  std::string path = dir.file("three.sx");
  writeThree(path);
  std::vector<unsigned char> bytes = sxReadBytes(path);
  // Header, two tags, then data from 96 + 2 x 68 + 3 x 112 on.
  ASSERT_GE(bytes.size(), 96u + 136 + 336 + 12);
  EXPECT_EQ(sxGet32(bytes, 0), sxFile::magic);
  EXPECT_EQ(sxGet32(bytes, 4), sxGetVersion());
  EXPECT_EQ(sxGet32(bytes, 72), 3u);
  EXPECT_EQ(sxGet32(bytes, 76), 2u);
  EXPECT_EQ(sxGet32(bytes, 96 + 68), 1u) << "tag index equals its position";
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(&bytes[96 + 68 + 4])), "B");
  std::size_t dirStart = 96 + 136;
  EXPECT_EQ(sxGet32(bytes, dirStart + 24 + 8), 96u + 136 + 336 + 4) << "second data block";
  EXPECT_EQ(sxGet32(bytes, dirStart + 48 + 4), 0u) << "third entry's tag";
  for (std::size_t i = dirStart + 72; i < 96 + 136 + 336; ++i)
    ASSERT_EQ(bytes[i], 0) << "reserved directory room is zero";

  sxFile f;
  ASSERT_TRUE(f.open(path.c_str(), "r"));
  EXPECT_FALSE(f.isByteSwapped());
  ASSERT_EQ(f.getNumEntries(), 3);
  EXPECT_EQ(f.getNumTags(), 2);
  EXPECT_STREQ(f.getTagDesc(1), "B");
  EXPECT_EQ(f.getTagDesc(2), nullptr);
  EXPECT_EQ(f.getTagDesc(-1), nullptr);
  EXPECT_EQ(f.getEntry(3), nullptr);
  EXPECT_EQ(f.getEntry(2)->getDirNum(), -1) << "loaded entries keep dirNum -1";
  EXPECT_EQ(f.getEntry(2)->getData(), nullptr) << "data are read on demand";
  sxEntry* e2 = f.getEntry(2);
  ASSERT_TRUE(f.readEntry(e2));
  EXPECT_EQ(e2->readInt(), 102);
  EXPECT_EQ(e2->getVersion(), 2u);
  EXPECT_EQ(f.findEntry(0), f.getEntry(0));
  EXPECT_EQ(f.findNextEntry(0, f.getEntry(0)), f.getEntry(2));
  EXPECT_EQ(f.findNextEntry(0, f.getEntry(2)), nullptr);
  EXPECT_EQ(f.findNextEntry(0, nullptr), f.getEntry(0));
  EXPECT_EQ(f.findEntry("B"), f.getEntry(1));
  EXPECT_EQ(f.findEntry("C"), nullptr);
  EXPECT_EQ(f.findEntry(5), nullptr);
  EXPECT_EQ(f.findTag("A"), 0);
  EXPECT_EQ(f.findTag("Z"), -1);
  EXPECT_EQ(f.newEntry(7), nullptr) << "unknown tag";
}

TEST(File, EntriesWithoutDataAndRewritingAnOpenedFile) {
  sxTempDir dir;
  std::string path = dir.file("rw.sx");
  writeThree(path);
  sxFile f;
  ASSERT_TRUE(f.open(path.c_str(), "rw"));
  EXPECT_FALSE(f.readEntry(f.newEntry(0)));
  EXPECT_EQ(f.getLastError(), sxFile::ERR_NO_DATA);
  sxEntry* added = f.newEntry(f.newTag("C"));
  added->writeDouble(6.5);
  // Entries 0..2 were never loaded; writing loads them first. The empty
  // entry 3 cannot be loaded, which is noted but does not stop the write.
  ASSERT_TRUE(f.write());
  EXPECT_EQ(f.getLastError(), sxFile::ERR_NO_DATA);
  f.close();

  ASSERT_TRUE(f.open(path.c_str(), "r"));
  ASSERT_EQ(f.getNumEntries(), 5);
  EXPECT_EQ(f.getNumTags(), 3);
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(f.readEntry(f.getEntry(i)));
    EXPECT_EQ(f.getEntry(i)->readInt(), 100 + i);
  }
  EXPECT_EQ(f.getEntry(3)->getDataSize(), 0);
  ASSERT_TRUE(f.readEntry(f.getEntry(4)));
  EXPECT_EQ(f.getEntry(4)->readDouble(), 6.5);
}

TEST(File, RemoveEntryMovesTheLastIntoItsPlace) {
  sxFile f;
  int t = f.newTag("T");
  sxEntry* e[3];
  for (int i = 0; i < 3; ++i) e[i] = f.newEntry(t);
  EXPECT_TRUE(f.removeEntry(e[0]));
  ASSERT_EQ(f.getNumEntries(), 2);
  EXPECT_EQ(f.getEntry(0), e[2]);
  EXPECT_EQ(e[2]->getDirNum(), 2) << "the stored dirNum is not changed";
  EXPECT_EQ(f.findNextEntry(t, e[2]), e[1]);
  EXPECT_TRUE(f.removeEntry(nullptr));

  // An entry of another file leaves that file.
  sxFile other;
  sxEntry* foreign = other.newEntry(other.newTag("X"));
  EXPECT_TRUE(f.removeEntry(foreign));
  EXPECT_EQ(other.getNumEntries(), 0);
}

TEST(File, EntriesByHandle) {
  sxFile f;
  int t = f.newTag("T");
  int objects[3];
  auto find = [&](int i) { return f.findEntry(static_cast<const void*>(&objects[i])); };
  sxEntry* a = f.newEntry(t);
  a->setHandle(&objects[0]);
  EXPECT_EQ(find(0), a);
  EXPECT_EQ(find(1), nullptr);
  sxEntry* b = f.newEntry(t);
  b->setHandle(&objects[1]);
  EXPECT_EQ(find(1), b);
  b->setHandle(&objects[2]);
  EXPECT_EQ(find(1), nullptr);
  EXPECT_EQ(find(2), b);
  // Two entries of one handle: the last in the directory is found.
  sxEntry* c = f.newEntry(t);
  c->setHandle(&objects[0]);
  EXPECT_EQ(find(0), c);
  f.removeEntry(c);
  EXPECT_EQ(find(0), a);
  f.removeEntry(a);
  EXPECT_EQ(find(0), nullptr);
}

TEST(File, TagNamesAreCutTo63Characters) {
  sxFile f;
  std::string longName(70, 'n');
  int t = f.newTag(longName.c_str());
  EXPECT_EQ(std::strlen(f.getTagDesc(t)), 63u);
  EXPECT_EQ(f.newTag(longName.c_str()), t) << "the long name finds its own tag";
  EXPECT_EQ(f.newTag("other"), t + 1);
  EXPECT_EQ(f.newTag("other"), t + 1);
}

// Run-length encoding: the stored stream, the fallbacks and decoding.
TEST(File, RunLengthEncoding) {
  sxTempDir dir;
  std::string path = dir.file("rle.sx");
  std::vector<unsigned char> runs(300, 0xAB);
  for (int i = 0; i < 10; ++i) runs.push_back(static_cast<unsigned char>(i));
  std::vector<unsigned char> alternating;
  for (int i = 0; i < 40; ++i) alternating.push_back(static_cast<unsigned char>(i & 1));
  {
    sxFile f;
    ASSERT_TRUE(f.create(path.c_str()));
    int t = f.newTag("R");
    sxEntry* small = f.newEntry(t);
    small->writeChunk("123456789", 9);
    small->setCompression(sxEntry::RUN_LENGTH);
    sxEntry* good = f.newEntry(t);
    good->writeChunk(runs.data(), int(runs.size()));
    good->setCompression(sxEntry::RUN_LENGTH);
    sxEntry* bad = f.newEntry(t);
    bad->writeChunk(alternating.data(), int(alternating.size()));
    bad->setCompression(sxEntry::RUN_LENGTH);
    ASSERT_TRUE(f.write());
    EXPECT_EQ(small->getCompression(), sxEntry::NO_COMPRESSION) << "under 10 bytes";
    EXPECT_EQ(good->getCompression(), sxEntry::RUN_LENGTH);
    EXPECT_EQ(bad->getCompression(), sxEntry::NO_COMPRESSION) << "never smaller";
  }
  std::vector<unsigned char> bytes = sxReadBytes(path);
  std::size_t dirStart = 96 + 68;
  std::uint32_t offset = sxGet32(bytes, dirStart + 24 + 8);
  EXPECT_EQ(sxGet32(bytes, dirStart + 24 + 12), 1u);
  EXPECT_EQ(sxGet32(bytes, dirStart + 24 + 16), 310u) << "the size is uncompressed";
  ASSERT_EQ(sxGet32(bytes, offset), 25u);
  std::vector<unsigned char> stream(bytes.begin() + offset + 4, bytes.begin() + offset + 4 + 25);
  std::vector<unsigned char> expected = {255, 0xAB, 45, 0xAB};
  for (int i = 0; i < 10; ++i) {
    expected.push_back(1);
    expected.push_back(static_cast<unsigned char>(i));
  }
  expected.push_back(0);
  EXPECT_EQ(stream, expected);
  EXPECT_EQ(sxGet32(bytes, dirStart + 12), 0u) << "the 9-byte entry is stored raw";

  sxFile f;
  ASSERT_TRUE(f.open(path.c_str(), "r"));
  ASSERT_TRUE(f.readEntry(f.getEntry(1)));
  EXPECT_EQ(std::vector<unsigned char>(f.getEntry(1)->getData(), f.getEntry(1)->getData() + 310),
            runs);
  ASSERT_TRUE(f.readEntry(f.getEntry(2)));
  EXPECT_EQ(std::memcmp(f.getEntry(2)->getData(), alternating.data(), alternating.size()), 0);
}

TEST(File, BadDirectoryEntryIsReportedAndKept) {
  sxTempDir dir;
  std::string path = dir.file("bad.sx");
  writeThree(path);
  std::vector<unsigned char> bytes = sxReadBytes(path);
  sxPut32(bytes, 96 + 136 + 24 + 8, 0);  // entry 1 at offset 0
  sxPut32(bytes, 96 + 136 + 48 + 4, 9);  // entry 2 of an unknown tag...
  sxPut32(bytes, 96 + 136 + 48 + 8, 0);  // ...at offset 0
  sxWriteBytes(path, bytes);
  sxFile f;
  testing::internal::CaptureStdout();
  bool opened = f.open(path.c_str(), "r");
  std::string out = testing::internal::GetCapturedStdout();
  ASSERT_TRUE(opened);
  EXPECT_EQ(f.getNumEntries(), 3);
  EXPECT_EQ(out, "Bad Directory Entry: 1 tag: B\nBad Directory Entry: 2 tag: (null)\n");
}

}  // namespace
