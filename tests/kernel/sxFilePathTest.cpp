#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <sys/stat.h>

#include <cstring>
#include <fstream>
#include <string>
#include <tuple>
#include <vector>

#include "support/sxTestFiles.h"

namespace {
class FilePaths : public testing::Test {
 protected:
  void SetUp() override { sxDeleteFilePaths(); }
  void TearDown() override { sxDeleteFilePaths(); }
};

std::vector<std::string> filePaths() {
  std::vector<std::string> paths;
  for (int i = 0; i < sxGetNumFilePaths(); ++i) paths.push_back(sxGetFilePath(i));
  return paths;
}
using Paths = std::vector<std::string>;
}  // namespace

// Entries end in a separator (a backslash is one too) and are kept once, compared by
// case; lists split at semicolons and keep their order.
TEST_F(FilePaths, EntriesEndInASeparatorAreUniqueAndNamesFollowTheLastOne) {
  for (const char* path : {"data", "data/", "Data/", "win\\", ""}) sxAddFilePath(path);
  sxAddFilePath(nullptr);
  EXPECT_EQ(filePaths(), (Paths{"data/", "Data/", "win\\"}));
  EXPECT_EQ(sxGetFilePath(3), nullptr);
  EXPECT_EQ(sxGetFilePath(-1), nullptr);
  sxDeleteFilePaths();
  sxAddFilePaths("a;b;");
  EXPECT_EQ(filePaths(), (Paths{"a/", "b/"}));
  sxAddFilePaths(";;c;a;d");
  sxAddFilePaths(nullptr);
  EXPECT_EQ(filePaths(), (Paths{"a/", "b/", "c/", "d/"}));
  sxDeleteFilePaths();
  EXPECT_EQ(sxGetNumFilePaths(), 0);
  // A file name starts after the last separator.
  const char* p = "a\\b/c.x";
  EXPECT_EQ(sxGetFileName(p), p + 4);
  for (const char* dir : {"dir/", "dir\\", ""}) EXPECT_EQ(sxGetFileName(dir), nullptr) << dir;
  EXPECT_EQ(sxGetFileName(nullptr), nullptr);
  const char* bare = "plain.sx";
  EXPECT_EQ(sxGetFileName(bare), bare);
}

TEST_F(FilePaths, FindFileTriesTheNameThenEachEntry) {
  sxTempDir dir;
  std::string first = dir.file("one"), second = dir.file("two");
  for (const std::string& d : {first, second}) ASSERT_EQ(mkdir(d.c_str(), 0755), 0);
  for (const std::string& f : {second + "/scene.sx", first + "/both.sx", second + "/both.sx"})
    std::ofstream(f) << "x";
  char out[512];
  const auto find = [&](const char* name) {
    const int length = sxFindFile(name, sizeof out, out);
    return std::tuple(length, std::string(out));
  };
  EXPECT_EQ(find("scene.sx"), std::tuple(0, ""));  // no search path yet
  sxAddFilePaths((first + ";" + second).c_str());
  const std::string expected = second + "/scene.sx";
  const int length = int(expected.size()) + 1;
  EXPECT_EQ(find("scene.sx"), std::tuple(length, expected));
  EXPECT_EQ(find("both.sx"), std::tuple(int(first.size()) + 9, first + "/both.sx"));  // first wins
  // A name that opens as given is taken without the search path.
  EXPECT_EQ(find(expected.c_str()), std::tuple(length, expected));
  EXPECT_EQ(sxFindFile("scene.sx", 0, nullptr), length);  // lengths only: no buffer
  // A short buffer gets a bounded copy, unterminated like strncpy.
  char small[8];
  std::memset(small, '#', sizeof small);
  EXPECT_EQ(sxFindFile("scene.sx", 4, small), length);
  EXPECT_EQ(std::string(small, 5), expected.substr(0, 4) + "#");
  for (const char* none : {static_cast<const char*>(nullptr), "missing.sx"})
    EXPECT_EQ(find(none), std::tuple(0, ""));
}
