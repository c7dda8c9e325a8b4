#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <cstring>
#include <string>

namespace {
// The square-root method as the library left it at load time.
const SXSQRT_METHOD loadTimeSqrtMethod = sxGetSqrtMethod();
}  // namespace

TEST(sxKernel, LoadTimeSelectsThe4KSquareRootTable) {
  EXPECT_EQ(loadTimeSqrtMethod, SXSQRT_TABLE_4K);
}

TEST(sxKernel, VersionsPackIntoOneWord) {
  EXPECT_EQ(sxGetVersion(), 0x01020006u);
  EXPECT_EQ(sxMakeVersion(1, 2, 6), sxGetVersion());
  EXPECT_EQ(sxGetMajorVersion(sxGetVersion()), 1u);
  EXPECT_EQ(sxGetMinorVersion(sxGetVersion()), 2u);
  EXPECT_EQ(sxGetBuildVersion(sxGetVersion()), 6u);
  // Fields are not masked: they spill into their neighbours.
  EXPECT_EQ(sxMakeVersion(0, 256, 0), sxMakeVersion(1, 0, 0));
  EXPECT_EQ(sxMakeVersion(1, 256, 0), 0x01000000u);
  EXPECT_EQ(sxMakeVersion(0, 0, 0x10000), 0x00010000u);
  EXPECT_STREQ(sxGetSignature(), "Solmax Release 1.2 6 Jun 10 1999");
}

TEST(sxKernel, NameComparison) {
  EXPECT_EQ(sxStrcmp(nullptr, nullptr, false), 0);
  EXPECT_EQ(sxStrcmp(nullptr, "x", false), -1);
  EXPECT_EQ(sxStrcmp("x", nullptr, true), -1);
  EXPECT_GT(sxStrcmp("B", "a", true), 0);
  EXPECT_EQ(sxStrcmp("B", "a", false), -1);
  EXPECT_EQ(sxStrcmp("abc", "ABC", true), 0);
  EXPECT_EQ(sxStrcmp("b", "a", false), 1);
  EXPECT_EQ(sxStrcmp("\xe9", "a", false), 1);  // bytes compare unsigned
}

TEST(sxKernel, NameHashXorsBytesAndCountsCharacters) {
  EXPECT_EQ(sxStrToInt(nullptr), 0u);
  EXPECT_EQ(sxStrToInt(""), 0u);
  EXPECT_EQ(sxStrToInt("a"), 0x62u);
  // "ab": (0x61 ^ 0) + 1 = 0x62; then byte 1 ^= 0x62 -> 0x6262, + 1.
  EXPECT_EQ(sxStrToInt("ab"), 0x6263u);
  // The fifth character wraps to byte 0 again: 0x64636265 ^ 0x65, plus 1.
  EXPECT_EQ(sxStrToInt("abcde"), 0x64636201u);
  EXPECT_NE(sxStrToInt("A"), sxStrToInt("a"));
}

namespace {
std::string captured;
void capture(char* text) {
  captured += text;
}
}  // namespace

TEST(sxKernel, MessagesGoToTheHandlerOrStandardOutput) {
  captured.clear();
  sxMessageHandler(capture);
  sxMessage("value %d of %s\n", 42, "x");
  EXPECT_EQ(captured, "value 42 of x\n");
  // Longer text is cut to the handler's buffer, never overrun.
  std::string longText(5000, 'y');
  sxMessage("%s", longText.c_str());
  EXPECT_EQ(captured.size(), std::string("value 42 of x\n").size() + 2047);
  sxMessageHandler(nullptr);
  testing::internal::CaptureStdout();
  sxMessage("to stdout %d\n", 7);
  std::fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "to stdout 7\n");
}

TEST(sxKernel, ClockCountsFromLoadTime) {
  double t0 = sxGetTime();
  EXPECT_GE(t0, 0.0);
  EXPECT_LT(t0, 3600.0);
  double t1 = sxGetTime();
  EXPECT_GE(t1, t0);
  sxTimer timer;
  EXPECT_FALSE(timer.isRunning());
  timer.start();
  EXPECT_TRUE(timer.isRunning());
  timer.stop();
  double once = timer.getSeconds();
  EXPECT_GE(once, 0.0);
  EXPECT_EQ(timer.getSeconds(), once);  // stopped: frozen
  timer.reset();
  EXPECT_EQ(timer.getSeconds(), 0.0);
}

TEST(sxKernel, ApplicationThreadIsTheLoadingThread) {
  sxThread* app = sxGetAppThread();
  ASSERT_NE(app, nullptr);
  EXPECT_TRUE(app->isAppThread());
  EXPECT_TRUE(app->inCurrentThread());
  EXPECT_TRUE(sxInAppThread());
  EXPECT_EQ(sxThread::getCurrentThread(), app);
  EXPECT_EQ(sxGetNumTextureUnits() >= 1, true);
}

TEST(sxKernel, InitStoresTheHandleEveryTime) {
  int token1 = 0, token2 = 0;
  sxInit(&token1);
  EXPECT_TRUE(sxIsInitialized());
  EXPECT_EQ(sxGetWindowsAppHandle(), &token1);
  sxInit(&token2);
  EXPECT_EQ(sxGetWindowsAppHandle(), &token2);
}
