#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <cstdlib>
#include <string>

#include "support/sxReferenceScene.h"
#include "support/sxTestFiles.h"

// Files that a big-endian machine (s390x) really wrote, read here; the CI
// step .ci/bigendian.sh also hands in freshly written ones through
// SXCORE_BIGENDIAN_DIR and checks the reverse direction on s390x.
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

TEST(ByteOrder, FilesWrittenOnABigEndianAndALittleEndianMachine) {
  checkDirectory(std::string(SXCORE_TEST_DATA) + "/s390x", true);
  if (const char* fresh = std::getenv("SXCORE_BIGENDIAN_DIR")) checkDirectory(fresh, true);
  checkDirectory(std::string(SXCORE_TEST_DATA) + "/x86_64", false);
}

// The writers of this build, read back by its readers: the values, the
// sharing, the cycles and the run-length entry of the reference files.
TEST(ByteOrder, FilesWrittenHere) {
  sxTempDir dir;
  for (const auto& file : sxReference::files) ASSERT_TRUE(file.write(dir.file(file.name).c_str()));
  checkDirectory(dir.path, sxReference::isBigEndian());
}

}  // namespace
