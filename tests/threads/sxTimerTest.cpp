#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include <sx/threads/sxTimer.h>

namespace {

void pause(int ms) {
  std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

// Only running intervals count: a second start or stop changes nothing,
// restart begins again from zero, reset stops at zero.
TEST(sxTimer, AccumulatesRunningIntervalsOnly) {
  ASSERT_TRUE(sxTimer::usesCounter());
  sxTimer t;
  EXPECT_EQ(t.getSeconds(), 0.0);
  t.start();
  pause(20);
  t.start();
  EXPECT_TRUE(t.isRunning());
  EXPECT_GE(t.getSeconds(), 0.019) << "includes the open interval";
  t.stop();
  t.stop();
  const double first = t.getSeconds();
  pause(20);
  EXPECT_EQ(t.getSeconds(), first);
  EXPECT_DOUBLE_EQ(t.getMilliseconds(), first * 1000.0);
  t.start();
  pause(20);
  t.stop();
  EXPECT_GE(t.getSeconds(), first + 0.019);
  t.restart();
  EXPECT_TRUE(t.isRunning());
  EXPECT_LT(t.getSeconds(), first);
  t.reset();
  EXPECT_FALSE(t.isRunning());
  EXPECT_EQ(t.getMilliseconds(), 0.0);
}

}  // namespace
