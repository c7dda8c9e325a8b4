#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <utility>

#include "support/sxThreadTestSupport.h"

using namespace sxtest;

// Counts, the maximum and the count field; timed-out and disabled decs.
TEST(sxSemaphore, CountsMaximumTimeoutsAndTheCountField) {
  sxSemaphore s(2, 3);
  EXPECT_TRUE(s.dec(0) && s.dec(0));
  EXPECT_EQ(s.getCount(), 0);
  EXPECT_TRUE(s.inc(2));
  // The count field keeps the count before the release.
  EXPECT_EQ(std::pair(s.getAvailable(), s.getCount()), std::pair(2, 0));
  EXPECT_TRUE(s.inc() && s.getCount() == 2);
  // Beyond the maximum, and for n < 1, nothing is released.
  for (int n : {1, 0, -4}) EXPECT_FALSE(s.inc(n)) << n;
  EXPECT_EQ(std::pair(s.getAvailable(), s.getCount()), std::pair(3, 2));
  // Out-of-range arguments are brought into range.
  sxSemaphore high(5, 2), low(-3, 0);
  EXPECT_EQ(std::pair(high.getMaximum(), high.getAvailable()), std::pair(2, 2));
  EXPECT_EQ(std::pair(low.getMaximum(), low.getAvailable()), std::pair(1, 0));
  // A timed-out dec succeeds and lowers the count field although nothing was taken.
  // While semaphores are off, nothing waits or is released.
  auto start = std::chrono::steady_clock::now();
  EXPECT_TRUE(low.dec(20));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(15));
  EXPECT_EQ(std::pair(low.getAvailable(), low.getCount()), std::pair(0, -1));
  low.setTimeout(0);  // the wait of a dec without an argument
  EXPECT_TRUE(low.dec());
  low.setTimeout(-1);
  sxSemaphore::enableAll(false);
  EXPECT_FALSE(sxSemaphore::isEnabled());
  EXPECT_TRUE(low.dec());  // returns at once although no count is there
  low.inc();
  sxSemaphore::enableAll(true);
  EXPECT_EQ(low.getAvailable(), 0);  // the inc released nothing
  EXPECT_TRUE(low.inc() && low.getAvailable() == 1);
}

TEST(sxSemaphore, ProducersAndConsumersBalance) {
  sxSemaphore s(0, sxSemaphore::maxCount);
  constexpr int pairs = 4, rounds = 5000;
  std::atomic<int> taken{0};
  inThreads(2 * pairs, [&](int i) {
    for (int k = 0; k < rounds; ++k)
      if (i % 2 == 0)
        s.inc();
      else if (s.dec())
        taken.fetch_add(1);
  });
  EXPECT_EQ(taken.load(), pairs * rounds);
  EXPECT_EQ(s.getAvailable(), 0);
}

TEST(sxSemaphore, AReleasedWaiterMayDestroyTheSemaphoreAtOnce) {
  // The waiter frees the semaphore once its dec returns: the releasing inc must not
  // touch it afterwards (the sanitizers watch this).
  for (int round = 0; round < 300; ++round) {
    auto* s = new sxSemaphore(0, 1);
    s->ref();
    std::thread waiter([s] {
      s->dec();
      s->unRef();
    });
    s->inc();
    waiter.join();
  }
}
