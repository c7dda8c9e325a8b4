#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include "support/sxThreadTestSupport.h"

// The version word unpacks into its fields, and the signature names the same release.
// Fields are not masked: a field too large spills into its neighbour.
TEST(sxKernel, VersionWordAndSignatureAgree) {
  const unsigned v = sxGetVersion();
  EXPECT_EQ(sxMakeVersion(sxGetMajorVersion(v), sxGetMinorVersion(v), sxGetBuildVersion(v)), v);
  char release[32];
  std::snprintf(release, sizeof release, " %u.%u %u ", sxGetMajorVersion(v), sxGetMinorVersion(v),
                sxGetBuildVersion(v));
  EXPECT_NE(std::strstr(sxGetSignature(), release), nullptr) << sxGetSignature();
  EXPECT_EQ(sxMakeVersion(0, 256, 0), sxMakeVersion(1, 0, 0));
  EXPECT_EQ(sxMakeVersion(0, 0, 0x10000), sxMakeVersion(0, 1, 0));
}

TEST(sxKernel, NameComparisonAndHash) {
  EXPECT_EQ(sxStrcmp(nullptr, nullptr, false), 0);
  EXPECT_EQ(sxStrcmp(nullptr, "x", false), -1);
  EXPECT_EQ(sxStrcmp("x", nullptr, true), -1);
  EXPECT_GT(sxStrcmp("B", "a", true), 0);
  EXPECT_EQ(sxStrcmp("B", "a", false), -1);
  EXPECT_EQ(sxStrcmp("abc", "ABC", true), 0);
  EXPECT_EQ(sxStrcmp("b", "a", false), 1);
  EXPECT_EQ(sxStrcmp("\xe9", "a", false), 1);  // bytes compare unsigned
  // The hash xors the bytes in and counts the characters.
  EXPECT_TRUE(sxStrToInt(nullptr) == 0 && sxStrToInt("") == 0);
  EXPECT_EQ(sxStrToInt("a"), 0x62u);
  // "ab": (0x61 ^ 0) + 1 = 0x62; then byte 1 ^= 0x62 -> 0x6262, + 1.
  EXPECT_EQ(sxStrToInt("ab"), 0x6263u);
  // The fifth character wraps to byte 0 again: 0x64636265 ^ 0x65, plus 1.
  EXPECT_EQ(sxStrToInt("abcde"), 0x64636201u);
}

TEST(sxKernel, MessagesGoToTheHandlerOrStandardOutput) {
  std::string& captured = sxtest::MessageCapture::text();
  auto capture = std::make_unique<sxtest::MessageCapture>();
  sxMessage("value %d of %s\n", 42, "x");
  EXPECT_EQ(captured, "value 42 of x\n");
  // Longer text is cut to the handler's buffer, never overrun.
  sxMessage("%s", std::string(5000, 'y').c_str());
  EXPECT_EQ(captured.size(), std::string("value 42 of x\n").size() + 2047);
  capture.reset();
  testing::internal::CaptureStdout();
  sxMessage("to stdout %d\n", 7);
  std::fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "to stdout 7\n");
}

TEST(sxKernel, InitStoresTheHandleEveryTime) {
  int token1 = 0, token2 = 0;
  sxInit(&token1);
  EXPECT_TRUE(sxIsInitialized() && sxGetWindowsAppHandle() == &token1);
  sxInit(&token2);
  EXPECT_EQ(sxGetWindowsAppHandle(), &token2);
}
