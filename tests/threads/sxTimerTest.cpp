#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include <sx/threads/sxTimer.h>

using namespace std::chrono_literals;

// Only running intervals count: a second start or stop changes nothing, restart begins
// again from zero, reset stops at zero.
TEST(sxTimer, AccumulatesRunningIntervalsOnly) {
  ASSERT_TRUE(sxTimer::usesCounter());
  sxTimer t;
  EXPECT_EQ(t.getSeconds(), 0.0);
  t.start();
  std::this_thread::sleep_for(20ms);
  t.start();
  EXPECT_TRUE(t.isRunning() && t.getSeconds() >= 0.019) << "includes the open interval";
  t.stop();
  t.stop();
  const double first = t.getSeconds();
  std::this_thread::sleep_for(20ms);
  EXPECT_EQ(t.getSeconds(), first);
  EXPECT_DOUBLE_EQ(t.getMilliseconds(), first * 1000.0);
  t.start();
  std::this_thread::sleep_for(20ms);
  t.stop();
  EXPECT_GE(t.getSeconds(), first + 0.019);
  t.restart();
  EXPECT_TRUE(t.isRunning() && t.getSeconds() < first);
  t.reset();
  EXPECT_TRUE(!t.isRunning() && t.getMilliseconds() == 0.0);
}
