#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <sys/stat.h>

#include <cstring>
#include <fstream>
#include <string>

#include "support/sxTestFiles.h"

namespace {
class FilePaths : public testing::Test {
 protected:
  void SetUp() override { sxDeleteFilePaths(); }
  void TearDown() override { sxDeleteFilePaths(); }
};
}  // namespace

TEST_F(FilePaths, EntriesEndInASeparatorAndAreUnique) {
  sxAddFilePath("data");
  EXPECT_EQ(sxGetNumFilePaths(), 1);
  EXPECT_STREQ(sxGetFilePath(0), "data/");
  sxAddFilePath("data/");
  EXPECT_EQ(sxGetNumFilePaths(), 1);
  sxAddFilePath("Data/");  // case-sensitive comparison
  EXPECT_EQ(sxGetNumFilePaths(), 2);
  sxAddFilePath("win\\");  // a backslash is a separator too
  EXPECT_STREQ(sxGetFilePath(2), "win\\");
  sxAddFilePath(nullptr);
  sxAddFilePath("");
  EXPECT_EQ(sxGetNumFilePaths(), 3);
  EXPECT_EQ(sxGetFilePath(3), nullptr);
  EXPECT_EQ(sxGetFilePath(-1), nullptr);
}

TEST_F(FilePaths, ListsSplitAtSemicolonsInOrder) {
  sxAddFilePaths("a;b;");
  ASSERT_EQ(sxGetNumFilePaths(), 2);
  EXPECT_STREQ(sxGetFilePath(0), "a/");
  EXPECT_STREQ(sxGetFilePath(1), "b/");
  sxAddFilePaths(";;c;a;d");
  ASSERT_EQ(sxGetNumFilePaths(), 4);
  EXPECT_STREQ(sxGetFilePath(2), "c/");
  EXPECT_STREQ(sxGetFilePath(3), "d/");
  sxAddFilePaths(nullptr);
  sxDeleteFilePaths();
  EXPECT_EQ(sxGetNumFilePaths(), 0);
}

TEST_F(FilePaths, FindFileTriesTheNameThenEachEntry) {
  sxTempDir dir;
  std::string first = dir.file("one"), second = dir.file("two");
  ASSERT_EQ(mkdir(first.c_str(), 0755), 0);
  ASSERT_EQ(mkdir(second.c_str(), 0755), 0);
  std::ofstream(second + "/scene.sx") << "x";
  std::ofstream(first + "/both.sx") << "x";
  std::ofstream(second + "/both.sx") << "x";

  char out[512];
  EXPECT_EQ(sxFindFile("scene.sx", sizeof out, out), 0);  // no search path yet
  EXPECT_STREQ(out, "");
  sxAddFilePath(first.c_str());
  sxAddFilePath(second.c_str());
  std::string expected = second + "/scene.sx";
  EXPECT_EQ(sxFindFile("scene.sx", sizeof out, out), int(expected.size()) + 1);
  EXPECT_EQ(out, expected);
  EXPECT_EQ(sxFindFile("both.sx", sizeof out, out), int(first.size() + 9));  // first entry wins
  EXPECT_EQ(std::string(out), first + "/both.sx");
  // A name that opens as given is taken without the search path.
  EXPECT_EQ(sxFindFile(expected.c_str(), sizeof out, out), int(expected.size()) + 1);
  EXPECT_EQ(out, expected);
  // Lengths only: no buffer.
  EXPECT_EQ(sxFindFile("scene.sx", 0, nullptr), int(expected.size()) + 1);
  // A short buffer gets a bounded copy, unterminated like strncpy.
  char small[8];
  std::memset(small, '#', sizeof small);
  EXPECT_EQ(sxFindFile("scene.sx", 4, small), int(expected.size()) + 1);
  EXPECT_EQ(std::string(small, 4), expected.substr(0, 4));
  EXPECT_EQ(small[4], '#');
  EXPECT_EQ(sxFindFile(nullptr, sizeof out, out), 0);
  EXPECT_EQ(sxFindFile("missing.sx", sizeof out, out), 0);
  EXPECT_STREQ(out, "");
}

TEST(sxGetFileName, PointsAfterTheLastSeparator) {
  const char* p = "a\\b/c.x";
  EXPECT_EQ(sxGetFileName(p), p + 4);
  EXPECT_EQ(sxGetFileName("dir/"), nullptr);
  EXPECT_EQ(sxGetFileName("dir\\"), nullptr);
  EXPECT_EQ(sxGetFileName(""), nullptr);
  EXPECT_EQ(sxGetFileName(nullptr), nullptr);
  const char* bare = "plain.sx";
  EXPECT_EQ(sxGetFileName(bare), bare);
}
