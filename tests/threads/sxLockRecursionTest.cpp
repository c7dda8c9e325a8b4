#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <atomic>
#include <thread>

TEST(sxLock, RecursiveForItsOwnerAndTimedForOthers) {
  auto* lock = new sxLock;
  lock->ref();
  EXPECT_TRUE(lock->acquire());
  EXPECT_TRUE(lock->acquire(0));  // recursion never waits
  EXPECT_TRUE(lock->isHeldByCurrentThread());
  std::atomic<int> result{-1};
  std::thread other([&] { result = lock->acquire(50) ? 1 : 0; });
  other.join();
  EXPECT_EQ(result, 0);  // timed out: held by this thread
  lock->release();
  EXPECT_TRUE(lock->isHeldByCurrentThread());  // one level left
  lock->release();
  EXPECT_FALSE(lock->isHeldByCurrentThread());
  std::thread taker([&] {
    result = lock->acquire(1000) ? 1 : 0;
    lock->release();
  });
  taker.join();
  EXPECT_EQ(result, 1);
  lock->release();  // not held: ignored
  EXPECT_TRUE(lock->available());
  lock->release();
  lock->unRef();
}

TEST(sxLock, WaitersAreWokenWhenTheHolderReleases) {
  auto* lock = new sxLock;
  lock->ref();
  lock->acquire();
  std::atomic<int> counter{0};
  std::thread waiters[3];
  for (auto& t : waiters)
    t = std::thread([&] {
      lock->acquire();  // no limit
      counter.fetch_add(1);
      lock->release();
    });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_EQ(counter.load(), 0);
  lock->release();
  for (auto& t : waiters) t.join();
  EXPECT_EQ(counter.load(), 3);
  lock->unRef();
}
