#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <unistd.h>

#include <bit>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <tuple>

#include "support/sxTestFiles.h"
#include "support/sxThreadTestSupport.h"

namespace {
// Points the settings store at a private file for one test.
class RegistryFile : public testing::Test {
 protected:
  void SetUp() override { setenv("SX_REGISTRY_FILE", path.c_str(), 1); }
  void TearDown() override { unsetenv("SX_REGISTRY_FILE"); }
  void writeStore(const std::string& text) {
    std::filesystem::create_directories(dir.file("sub"));
    std::ofstream(path) << text;
  }
  sxTempDir dir;
  std::string path = dir.file("sub/registry");
  sxtest::MessageCapture capture;
  std::string& messages = sxtest::MessageCapture::text();
};
}  // namespace

TEST_F(RegistryFile, ValuesRoundTripAndMissingMalformedOrUnwritableOnesFail) {
  int i = 7;
  float f = 2.0f;
  char s[256] = "untouched";
  // No store at all: integer and string reads fail without a word.
  EXPECT_FALSE(sxReadRegistry("Count", i) || sxReadRegistry("Title", s));
  EXPECT_EQ(messages, "");
  EXPECT_FALSE(sxReadRegistry("Ratio", f));
  EXPECT_EQ(messages, "Cannot read key <Ratio> from the registry.\n");
  EXPECT_EQ(std::tuple(i, std::string(s)), std::tuple(7, "untouched"));
  // Values round-trip by type; the first write makes the store.
  messages.clear();
  EXPECT_TRUE(sxWriteRegistry("Count", 42));
  EXPECT_TRUE(sxWriteRegistry("Ratio", 1.25f));
  EXPECT_TRUE(sxWriteRegistry("Title", "line one\nback\\slash"));
  EXPECT_TRUE(sxWriteRegistry("count", -3));  // names ignore case: replaces
  EXPECT_TRUE(sxReadRegistry("COUNT", i) && sxReadRegistry("Ratio", f) &&
              sxReadRegistry("Title", s));
  EXPECT_EQ(std::tuple(i, f, std::string(s)), std::tuple(-3, 1.25f, "line one\nback\\slash"));
  // A float is stored as its raw bits in an integer value.
  EXPECT_TRUE(sxReadRegistry("Ratio", i));
  EXPECT_EQ(std::bit_cast<float>(i), 1.25f);
  EXPECT_EQ(messages, "");
  writeStore(
      "garbage line\n=dword:1\nBig=dword:4294967296\nNeg=dword:-1\nBad=dword:12x\n"
      "Esc=sz:bad\\q\nOk=dword:4294967295\nText=sz:\nWeird=blob:1\n");
  for (const char* name : {"Big", "Neg", "Bad", "Weird", ""})
    EXPECT_FALSE(sxReadRegistry(name, i)) << name;
  EXPECT_FALSE(sxReadRegistry(nullptr, i) || sxReadRegistry("Esc", s));
  EXPECT_TRUE(sxReadRegistry("Ok", i) && sxReadRegistry("Text", s));
  EXPECT_EQ(std::tuple(i, std::string(s)), std::tuple(-1, ""));
  // A string too long for the 256-byte buffer is refused, not overrun.
  EXPECT_TRUE(sxWriteRegistry("Long", std::string(300, 'z').c_str()));
  EXPECT_FALSE(sxReadRegistry("Long", s));
  // The other lines survive a rewrite.
  EXPECT_TRUE(sxReadRegistry("Ok", i));
  // A store that cannot be written reports each write.
  messages.clear();
  setenv("SX_REGISTRY_FILE", "/proc/sxCoreNoSuchDir/registry", 1);
  EXPECT_FALSE(sxWriteRegistry("Count", 1));
  EXPECT_FALSE(sxWriteRegistry("Title", static_cast<const char*>(nullptr)));
  EXPECT_FALSE(sxWriteRegistry("bad=name", 1));
  EXPECT_EQ(messages,
            "Cannot write key <Count> to the registry.\nCannot write key <Title> to the registry.\n"
            "Cannot write key <bad=name> to the registry.\n");
}

TEST_F(RegistryFile, TextureUnitsAreReadAtLoadTime) {
  const std::string tool = std::string(SXCORE_BINARY_DIR) + "/tools/sxtool";
  if (access(tool.c_str(), X_OK) != 0) GTEST_SKIP() << "sxtool not built";
  const auto expectInfo = [&](const char* line) {
    FILE* p = popen((tool + " info").c_str(), "r");
    ASSERT_NE(p, nullptr);
    std::string out;
    char buf[512];
    while (std::fgets(buf, sizeof buf, p)) out += buf;
    EXPECT_EQ(pclose(p), 0);
    EXPECT_NE(out.find(line), std::string::npos) << out;
  };
  writeStore("NumTextureUnits=dword:4\n");
  expectInfo("NumTextureUnits: 4");
  writeStore("NumTextureUnits=sz:four\n");  // unreadable: the default
  expectInfo("NumTextureUnits: 1");
}
