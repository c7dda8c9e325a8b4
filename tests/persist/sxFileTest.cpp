#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <cstring>
#include <string>
#include <vector>

#include "support/sxTestFiles.h"

// The layout of the header, tags and directory is guarded by the reference
// files of the byte-order test; here the file's operations and errors.
namespace {

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

TEST(File, OpenAndWriteReportEachKindOfFailure) {
  sxTempDir dir;
  writeThree(dir.file("ok.sx"));
  std::vector<unsigned char> header(96, 0);
  sxPut32(header, 0, sxFile::magic);
  sxWriteBytes(dir.file("empty.sx"), {});
  sxWriteBytes(dir.file("junk.sx"), std::vector<unsigned char>(200, 0x42));
  sxWriteBytes(dir.file("noentries.sx"), header);  // a valid header, nothing more
  header.push_back(0);
  sxWriteBytes(dir.file("97.sx"), header);
  header.resize(50);
  sxWriteBytes(dir.file("short.sx"), header);
  const struct {
    std::string path;
    const char* mode;
    sxFile::FILE_ERROR error;
  } cases[] = {{"", "r", sxFile::ERR_OPEN},
               {dir.file("ok.sx"), "w", sxFile::ERR_OPEN},  // only r and rw are modes
               {dir.file("missing.sx"), "r", sxFile::ERR_OPEN},
               {dir.file("empty.sx"), "r", sxFile::ERR_EMPTY},
               {dir.file("junk.sx"), "r", sxFile::ERR_MAGIC},
               {dir.file("noentries.sx"), "r", sxFile::ERR_READ},
               {dir.file("short.sx"), "r", sxFile::ERR_READ}};
  for (const auto& c : cases) {
    sxFile f;
    EXPECT_FALSE(f.open(c.path.empty() ? nullptr : c.path.c_str(), c.mode)) << c.path;
    EXPECT_EQ(f.getLastError(), c.error) << c.path;
    EXPECT_FALSE(f.isOpen());
    EXPECT_EQ(f.getNumEntries(), 0) << "a failed open discards what was read";
  }
  EXPECT_FALSE(sxFile::isSolmaxFormat(dir.file("noentries.sx").c_str()));
  EXPECT_TRUE(sxFile::isSolmaxFormat(dir.file("97.sx").c_str()));

  sxFile f;
  EXPECT_FALSE(f.write());
  EXPECT_EQ(f.getLastError(), sxFile::ERR_NOT_OPEN);
  ASSERT_TRUE(f.open(dir.file("ok.sx").c_str(), "r"));
  EXPECT_FALSE(f.write());
  EXPECT_EQ(f.getLastError(), sxFile::ERR_READ_ONLY);
  f.close();
  EXPECT_FALSE(f.readEntry(nullptr));
  EXPECT_EQ(f.getLastError(), sxFile::ERR_NOT_OPEN);
}

// A loaded file's directory and tags, entries without data, and writing an
// opened file again.
TEST(File, DirectoryTagsAndRewritingAnOpenedFile) {
  sxTempDir dir;
  std::string path = dir.file("three.sx");
  writeThree(path);
  sxFile f;
  ASSERT_TRUE(f.open(path.c_str(), "rw"));
  ASSERT_EQ(f.getNumEntries(), 3);
  EXPECT_EQ(f.getNumTags(), 2);
  EXPECT_STREQ(f.getTagDesc(1), "B");
  EXPECT_EQ(f.getTagDesc(2), nullptr);
  EXPECT_EQ(f.getTagDesc(-1), nullptr);
  EXPECT_EQ(f.getEntry(2)->getDirNum(), -1) << "loaded entries keep dirNum -1";
  EXPECT_EQ(f.getEntry(2)->getData(), nullptr) << "data are read on demand";
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

  EXPECT_FALSE(f.readEntry(f.newEntry(0)));
  EXPECT_EQ(f.getLastError(), sxFile::ERR_NO_DATA);
  f.newEntry(t)->writeDouble(6.5);
  // Entries 0..2 were never loaded; writing loads them first. The empty
  // entry 3 cannot be loaded, which is noted but does not stop the write.
  ASSERT_TRUE(f.write());
  EXPECT_EQ(f.getLastError(), sxFile::ERR_NO_DATA);
  f.close();

  ASSERT_TRUE(f.open(path.c_str(), "r"));
  ASSERT_EQ(f.getNumEntries(), 5);
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(f.readEntry(f.getEntry(i)));
    EXPECT_EQ(f.getEntry(i)->readInt(), 100 + i);
  }
  EXPECT_EQ(f.getEntry(3)->getDataSize(), 0);
  ASSERT_TRUE(f.readEntry(f.getEntry(4)));
  EXPECT_EQ(f.getEntry(4)->readDouble(), 6.5);
}

TEST(File, RemovedEntriesAndEntriesByHandle) {
  sxFile f;
  int t = f.newTag("T");
  sxEntry* e[3];
  for (int i = 0; i < 3; ++i) e[i] = f.newEntry(t);
  EXPECT_TRUE(f.removeEntry(e[0]));
  ASSERT_EQ(f.getNumEntries(), 2);
  EXPECT_EQ(f.getEntry(0), e[2]) << "the last moves into the hole";
  EXPECT_EQ(e[2]->getDirNum(), 2) << "the stored dirNum is not changed";
  EXPECT_EQ(f.findNextEntry(t, e[2]), e[1]);
  EXPECT_TRUE(f.removeEntry(nullptr));
  // An entry of another file leaves that file.
  sxFile other;
  sxEntry* foreign = other.newEntry(other.newTag("X"));
  EXPECT_TRUE(f.removeEntry(foreign));
  EXPECT_EQ(other.getNumEntries(), 0);

  int objects[3];
  auto find = [&](int i) { return f.findEntry(static_cast<const void*>(&objects[i])); };
  auto withHandle = [&](int i) {
    sxEntry* entry = f.newEntry(t);
    entry->setHandle(&objects[i]);
    return entry;
  };
  sxEntry* a = withHandle(0);
  EXPECT_EQ(find(0), a);
  sxEntry* b = withHandle(1);
  EXPECT_EQ(find(1), b);
  b->setHandle(&objects[2]);
  EXPECT_EQ(find(1), nullptr);
  EXPECT_EQ(find(2), b);
  // Two entries of one handle: the last in the directory is found.
  sxEntry* c = withHandle(0);
  EXPECT_EQ(find(0), c);
  f.removeEntry(c);
  EXPECT_EQ(find(0), a);
  f.removeEntry(a);
  EXPECT_EQ(find(0), nullptr);
}

// Run-length encoding is used only where it pays: not under 10 bytes and
// not where the stream would be no smaller. Either way the data come back.
TEST(File, RunLengthEncodingWhereItPays) {
  sxTempDir dir;
  std::string path = dir.file("rle.sx");
  std::vector<unsigned char> runs(300, 0xAB), alternating;
  for (int i = 0; i < 10; ++i) runs.push_back(static_cast<unsigned char>(i));
  for (int i = 0; i < 40; ++i) alternating.push_back(static_cast<unsigned char>(i & 1));
  const std::vector<unsigned char> data[3] = {{1, 2, 3, 4, 5, 6, 7, 8, 9}, runs, alternating};
  const sxEntry::COMPRESSION stored[3] = {sxEntry::NO_COMPRESSION, sxEntry::RUN_LENGTH,
                                          sxEntry::NO_COMPRESSION};
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
    for (int i = 0; i < 3; ++i) EXPECT_EQ(f.getEntry(i)->getCompression(), stored[i]) << i;
  }
  sxFile f;
  ASSERT_TRUE(f.open(path.c_str(), "r"));
  for (int i = 0; i < 3; ++i) {
    sxEntry* e = f.getEntry(i);
    EXPECT_EQ(e->getCompression(), stored[i]) << i;
    ASSERT_TRUE(f.readEntry(e));
    EXPECT_EQ(std::vector<unsigned char>(e->getData(), e->getData() + e->getDataSize()), data[i]);
  }
}

}  // namespace
