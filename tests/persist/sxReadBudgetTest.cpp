// A reader holds no more entry data than its file can honestly hold, and a
// root that cannot be read is an error: small hostile files fail fast with
// a message, and sound ones, however well they compress, read in full.

#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <algorithm>
#include <numeric>
#include <string>
#include <vector>

#include "support/sxTestFiles.h"
#include "support/sxThroughFile.h"

namespace {

// A root (entry 0) referring to `copies` plain objects; entry 1 holds `zeros`
// zero bytes run-length encoded (about 1/127 of that on disk), and each
// further entry claims those very bytes again.
std::string zeroBomb(const sxTempDir& dir, int copies, int zeros) {
  const std::string path = dir.file("bomb.sx");
  sxWriteFile(path, [&](sxFile& f) {
    const int tag = f.newTag("sxBase");
    std::vector<int> refs(static_cast<std::size_t>(copies));
    std::iota(refs.begin(), refs.end(), 1);
    sxWriteObject(f.newEntry(tag), nullptr, refs);
    sxEntry* zeroed = f.newEntry(tag);
    const std::vector<unsigned char> data(std::size_t(zeros), 0);
    zeroed->setData(data.data(), zeros);
    zeroed->setCompression(sxEntry::RUN_LENGTH);
    for (int i = 2; i <= copies; ++i) f.newEntry(tag)->writeInt(0);  // replaced below
  });
  std::vector<unsigned char> bytes = sxReadBytes(path);
  auto field = [&bytes](int entry) {  // the offset, compression and size of the entry's data
    return bytes.begin() + sxFile::headerSize + sxFile::tagRecordSize +
           entry * sxFile::directoryRecordSize + 8;
  };
  for (int i = 2; i <= copies; ++i) std::copy_n(field(1), 12, field(i));
  sxWriteBytes(path, bytes);
  return path;
}

}  // namespace

TEST(ReadBudget, EntriesSharingOneCompressedBlockCannotInflateTheReader) {
  sxTempDir dir;
  // Under 100 KB on disk, and 100 x 8.6 MB once decoded.
  const std::string path = zeroBomb(dir, 100, 8600000);
  ASSERT_LT(sxReadBytes(path).size(), std::size_t(100000));
  const std::size_t before = sxMemory::getSize();
  {
    sxFile f;
    ASSERT_TRUE(f.open(path.c_str(), "r"));
    std::size_t peak = 0;
    int refused = 0;
    for (int i = 0; i < f.getNumEntries(); ++i) {
      if (!f.readEntry(f.getEntry(i))) ++refused;
      peak = std::max(peak, sxMemory::getSize() - before);
    }
    EXPECT_GT(refused, 90);
    EXPECT_EQ(f.getLastError(), sxFile::ERR_READ);
    EXPECT_NE(std::string(f.getErrorMessage()).find("MiB"), std::string::npos);
    EXPECT_LT(peak, std::size_t(256) << 20);
  }
  const int objects = sxBase::getNum(false);
  EXPECT_TRUE(!sxLoader::importFile(path.c_str()) && sxLoader::getError() == sxLoader::ERROR_OPEN);
  EXPECT_NE(std::string(sxLoader::getErrorMessage()).find("bomb.sx"), std::string::npos);
  EXPECT_EQ(sxBase::getNum(false), objects) << "what was read is released";
  EXPECT_LT(sxMemory::getSize(), before + (std::size_t(1) << 20));
}

TEST(ReadBudget, ASoundFileReadsInFullHoweverWellItCompresses) {
  const int zeros = 48 << 20;  // past the budget's floor: only its scale admits it
  sxRef<sxBase> root = sxImportWritten([](sxFile& f) {
    sxEntry* e = f.newEntry(f.newTag("sxBase"));
    std::vector<unsigned char> data(std::size_t(zeros), 0);  // no name, flags 0, no attributes
    e->setData(data.data(), zeros);
    e->setCompression(sxEntry::RUN_LENGTH);
  });
  EXPECT_NE(root, nullptr) << sxLoader::getErrorMessage();
  EXPECT_EQ(sxLoader::getError(), sxLoader::ERROR_NONE);
}

TEST(ReadBudget, ARootThatCannotBeReadIsAnError) {
  sxTempDir dir;
  const std::string path = dir.file("root.sx");
  ASSERT_TRUE(sxWriteFile(path, [](sxFile& f) {
    sxEntry* root = f.newEntry(f.newTag("sxGroup"));
    root->writeInt(1000);  // a name longer than the record
    root->writeString("short");
  }));
  const int groups = sxGroup::getNum(false);
  EXPECT_TRUE(!sxLoader::importFile(path.c_str()) && sxLoader::getError() == sxLoader::ERROR_OPEN);
  EXPECT_NE(std::string(sxLoader::getErrorMessage()).find("root"), std::string::npos);
  EXPECT_EQ(sxGroup::getNum(false), groups);
}
