#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "support/sxThreadTestSupport.h"

namespace {
using namespace sxtest;

// True when another thread can take the lock within timeoutMs (and gives it back).
bool freeForOthers(sxLock& lock, int timeoutMs = 0) {
  bool taken = false;
  std::thread([&] {
    taken = lock.acquire(timeoutMs);
    if (taken) lock.release();
  }).join();
  return taken;
}

// A copy is a new lock with the source's timeout that nobody holds.
TEST(sxLock, RecursiveForItsOwnerTimedForOthersAndCopiedUnowned) {
  sxLock lock;
  lock.setTimeout(250);
  EXPECT_TRUE(lock.acquire() && lock.acquire(0));  // recursion never waits
  sxLock copy(lock);
  EXPECT_TRUE(copy.getTimeout() == 250 && freeForOthers(copy));
  auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(freeForOthers(lock, 30));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(25));
  lock.release();
  EXPECT_TRUE(lock.isHeldByCurrentThread()) << "one level left";
  EXPECT_FALSE(freeForOthers(lock));
  lock.release();
  EXPECT_TRUE(!lock.isHeldByCurrentThread() && freeForOthers(lock));
  lock.release();  // not held: ignored
  // A successful test takes the lock; one release frees it.
  ASSERT_TRUE(lock.available());
  EXPECT_FALSE(freeForOthers(lock));
  lock.release();
  EXPECT_TRUE(freeForOthers(lock));
  // The kernel locks exist from load time; the type lock is re-entrant.
  for (const char* name :
       {"sxMemory Lock", "sxBase Lock", "sxType Lock", "sxPlugIn Lock", "sxGroup Lock"})
    ASSERT_NE(sxLock::find(name), nullptr) << name;
  sxLock* typeLock = sxLock::find("sxType Lock");
  sxBase::getClassType()->lockInstanceList();
  EXPECT_TRUE(sxType::findType("sxGroup") && typeLock->isHeldByCurrentThread());
  sxBase::getClassType()->unlockInstanceList();
  EXPECT_FALSE(typeLock->isHeldByCurrentThread());
}

TEST(sxLock, MutualExclusionUnderContention) {
  sxLock lock;
  long long counter = 0;  // plain: only the lock protects it
  constexpr int threads = 4, rounds = 20000;
  inThreads(threads, [&](int) {
    for (int i = 0; i < rounds; ++i) {
      lock.acquire();
      lock.acquire();  // nested, as kernel code does
      ++counter;
      lock.release();
      lock.release();
    }
  });
  EXPECT_EQ(counter, static_cast<long long>(threads) * rounds);
}

TEST(sxLock, EnableAllOffReleasesEveryLockOnceAndStopsWaiting) {
  sxLock mine, theirs;
  mine.acquire();
  std::atomic<bool> held{false}, done{false};
  std::thread holder([&] {
    theirs.acquire();
    held.store(true);
    waitUntil([&] { return done.load(); });
    theirs.release();
  });
  EXPECT_TRUE(waitUntil([&] { return held.load(); }));
  sxLock::enableAll(false);
  EXPECT_FALSE(sxLock::isEnabled());
  // Nothing waits while locks are off, not even for another thread's lock, and
  // available() answers true without taking anything.
  EXPECT_TRUE(theirs.acquire() && theirs.acquire(0) && theirs.available());
  theirs.release();
  sxLock::enableAll(true);
  // This thread's lock was released once on the way off; the other thread keeps its.
  EXPECT_TRUE(!mine.isHeldByCurrentThread() && freeForOthers(mine));
  EXPECT_FALSE(theirs.acquire(0));
  done.store(true);
  holder.join();
  EXPECT_TRUE(freeForOthers(theirs));
}

}  // namespace
