#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include <sx/threads/sxTimer.h>

namespace {

void pause(int ms) {
  std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

TEST(sxTimer, AccumulatesRunningIntervalsOnly) {
  ASSERT_TRUE(sxTimer::usesCounter());
  sxTimer t;
  EXPECT_FALSE(t.isRunning());
  EXPECT_EQ(t.getSeconds(), 0.0);
  t.start();
  EXPECT_TRUE(t.isRunning());
  pause(20);
  const double running = t.getSeconds();  // includes the open interval
  EXPECT_GE(running, 0.019);
  t.stop();
  EXPECT_FALSE(t.isRunning());
  const double first = t.getSeconds();
  EXPECT_GE(first, running);
  pause(20);
  EXPECT_EQ(t.getSeconds(), first);  // stopped: nothing more is added
  EXPECT_DOUBLE_EQ(t.getMilliseconds(), first * 1000.0);

  t.start();
  pause(20);
  t.stop();
  EXPECT_GE(t.getSeconds(), first + 0.019);
  t.stop();  // stopping twice adds nothing
  EXPECT_GE(t.getSeconds(), first + 0.019);
}

TEST(sxTimer, StartWhileRunningRestartAndReset) {
  sxTimer t;
  t.start();
  pause(20);
  t.start();  // no effect: the start stamp stays
  const double before = t.getSeconds();
  EXPECT_GE(before, 0.019);

  t.restart();  // elapsed 0, running from now
  EXPECT_TRUE(t.isRunning());
  EXPECT_LT(t.getSeconds(), before);
  pause(5);
  t.stop();
  EXPECT_GT(t.getSeconds(), 0.0);

  t.reset();
  EXPECT_FALSE(t.isRunning());
  EXPECT_EQ(t.getSeconds(), 0.0);
  EXPECT_EQ(t.getMilliseconds(), 0.0);
}

}  // namespace
