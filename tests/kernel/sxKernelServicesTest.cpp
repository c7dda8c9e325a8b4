#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <stdio.h>
#include <unistd.h>

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
  // Without a handler: the chosen stream, and nothing else.
  const SX_MESSAGE_STREAM before = sxGetMessageStream();
  for (SX_MESSAGE_STREAM to : {SX_MESSAGES_STDOUT, SX_MESSAGES_STDERR, SX_MESSAGES_OFF}) {
    sxSetMessageStream(to);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    sxMessage("to %d\n", int(to));
    std::fflush(stdout);
    const std::string err = testing::internal::GetCapturedStderr();
    const std::string out = testing::internal::GetCapturedStdout();
    const std::string line = "to " + std::to_string(int(to)) + "\n";
    EXPECT_EQ(out, to == SX_MESSAGES_STDOUT ? line : "") << int(to);
    EXPECT_EQ(err, to == SX_MESSAGES_STDERR ? line : "") << int(to);
  }
  sxSetMessageStream(before);
}

// The environment chooses the stream before the library's first message,
// the one it prints while it loads: this test program run again.
TEST(sxKernel, TheEnvironmentRoutesEvenTheLoadMessages) {
  char self[4096];
  const ssize_t n = readlink("/proc/self/exe", self, sizeof self - 1);
  ASSERT_GT(n, 0);
  self[n] = 0;
  auto run = [&](const char* value, const char* streams) {
    const std::string command =
        std::string("SXCORE_MESSAGES=") + value + " '" + self + "' --gtest_list_tests " + streams;
    std::string out;
    if (std::FILE* p = popen(command.c_str(), "r")) {
      char buffer[4096];
      while (std::size_t k = std::fread(buffer, 1, sizeof buffer, p)) out.append(buffer, k);
      pclose(p);
    }
    return out.find("Loading plug-in") != std::string::npos;
  };
  EXPECT_TRUE(run("stdout", "2>/dev/null"));
  EXPECT_FALSE(run("stderr", "2>/dev/null"));
  EXPECT_TRUE(run("stderr", "2>&1 >/dev/null"));
  EXPECT_FALSE(run("off", "2>&1"));
}

TEST(sxKernel, InitStoresTheHandleEveryTime) {
  int token1 = 0, token2 = 0;
  sxInit(&token1);
  EXPECT_TRUE(sxIsInitialized() && sxGetWindowsAppHandle() == &token1);
  sxInit(&token2);
  EXPECT_EQ(sxGetWindowsAppHandle(), &token2);
}
