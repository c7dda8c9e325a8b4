#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <tuple>
#include <vector>

#include "support/sxThreadTestSupport.h"

namespace {
using namespace sxtest;

// Records where the hooks ran and writes to itself after releasing its
// waiter, so that a waiter that frees it too early is caught.
struct RecordingFlush : sxFlushThread {
  void preSyncApply(sxBase* target) override {
    preTarget.store(target);
    preThread.store(sxThread::getCurrentThread());
  }
  bool postSyncApply(sxBase* target) override {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    postTarget.store(target);
    ++posts;
    return true;
  }
  std::atomic<sxBase*> preTarget{nullptr}, postTarget{nullptr};
  std::atomic<sxThread*> preThread{nullptr};
  int posts = 0;
};

TEST(sxThreadQueue, FlushWaitsForTheWholeDownstreamTree) {
  Pipeline p;
  sxThread *top = p.add(), *right = p.addBelow(top);
  ASSERT_TRUE(p.addBelow(top) && right && p.addBelow(right));
  p.runAll();
  SlowAction work[4];
  for (int round = 0; round < 3; ++round) {
    for (int i = 0; i < 4; ++i) p.threads[size_t(i)]->addActionToQueue(&work[i]);
    withDeadline("flushQueue", [&] { top->flushQueue(); });
    for (auto& w : work) EXPECT_EQ(w.count.load(), round + 1);
  }
  // Queued actions run on the thread they were posted to.
  for (int i = 0; i < 4; ++i) EXPECT_EQ(work[i].lastThread.load(), p.threads[size_t(i)]);
}

// A synchronous action returns once the thread is done with it: the poster frees it at
// once. A thread flushing itself does not wait for itself; dead threads block nothing.
TEST(sxThreadQueue, ProcessingSynchronousActionsAndFlushesNeverWaitInVain) {
  Pipeline p;
  sxThread* t = p.chain(2);
  ASSERT_TRUE(t);
  p.runAll();
  for (int round = 0; round < 20; ++round) {
    auto f = make<RecordingFlush>();
    withDeadline("addActionToQueue", [&] { t->addActionToQueue(f.get()); });
    // Applied on the thread, with the thread as object, once.
    EXPECT_EQ(std::tuple(f->preThread.load(), f->preTarget.load(), f->postTarget.load(), f->posts),
              std::tuple(t, t, t, 1));
    f.reset();  // freed at once: the thread must no longer touch it
  }
  t->addActionToQueue(static_cast<sxFlushThread*>(nullptr));  // ignored
  CountingAction queued;
  std::atomic<int> flushedInside{0};
  FunctionAction selfFlush([&](sxBase* object, sxEvent*) {
    auto* self = static_cast<sxThread*>(object);
    self->addActionToQueue(&queued);
    self->flushQueue();
    RecordingFlush f;
    self->addActionToQueue(&f);
    flushedInside.store(queued.count.load() + f.posts);
  });
  t->addActionToQueue(&selfFlush);
  ASSERT_TRUE(waitUntil([&] { return flushedInside.load() != 0; }));
  EXPECT_EQ(flushedInside.load(), 2);
  t->kill();  // the action has returned before the locals it uses go
  RecordingFlush f;
  withDeadline("flush of a dead thread", [&] {
    t->addActionToQueue(&queued);  // a dead thread runs no actions
    t->flushQueue();
    t->addActionToQueue(&f);
  });
  EXPECT_EQ(std::tuple(queued.count.load(), f.posts), std::tuple(1, 1));
  EXPECT_EQ(t->processQueue(true), 0);
  // processQueue takes only what was queued when it started.
  sxThread* idle = p.add();      // never run: its queue is carried out from here
  CountingAction later, direct;  // the queue takes no references
  FunctionAction poster(
      [&](sxBase* object, sxEvent*) { static_cast<sxThread*>(object)->addActionToQueue(&later); });
  idle->addActionToQueue(&poster);
  idle->addActionToQueue(&direct);
  idle->addActionToQueue(static_cast<sxAction*>(nullptr));  // ignored
  EXPECT_EQ(idle->processQueue(false), 2);
  // Queued actions get the thread; what they post waits for the next call.
  EXPECT_EQ(std::tuple(direct.lastObject.load(), later.count.load()), std::tuple(idle, 0));
  EXPECT_EQ(idle->processQueue(false), 1);
  EXPECT_EQ(idle->processQueue(false), 0);
  // untilEmpty also takes what is posted meanwhile.
  idle->addActionToQueue(&poster);
  EXPECT_EQ(idle->processQueue(true), 2);
  EXPECT_EQ(later.count.load(), 2);
}

TEST(sxThreadQueue, ConcurrentPostersAndFlushesLoseNothing) {
  Pipeline p;
  sxThread* t = p.chain(2);
  ASSERT_TRUE(t);
  p.runAll();
  sxThread* d = p.threads[1];
  constexpr int posters = 4, perPoster = 3000, flushEvery = 150;
  std::vector<CountingAction> actions(posters * perPoster);
  std::atomic<int> barrierFailures{0};
  withDeadline("concurrent posts and flushes", [&] {
    inThreads(posters, [&](int k) {
      CountingAction* mine = &actions[size_t(k * perPoster)];
      for (int i = 0; i < perPoster; ++i) {
        // Alternate, so that the flush through the link brings the downstream items in.
        (i % 2 ? d : t)->addActionToQueue(&mine[i]);
        if ((i + 1) % flushEvery) continue;
        t->flushQueue();
        for (int j = 0; j <= i; ++j)
          if (mine[j].count.load() != 1) barrierFailures.fetch_add(1);
      }
    });
  });
  EXPECT_EQ(barrierFailures.load(), 0);
  // Each carried out exactly once.
  EXPECT_EQ(std::ranges::count_if(actions, [](auto& a) { return a.count.load() != 1; }), 0);
}

TEST(sxThreadQueue, QueueBetweenTwoThreadsKeepsOrder) {
  sxQueue q(int(sizeof(int)), 8);
  q.setMode(sxQueue::GROWING);
  constexpr int items = 100000;
  std::atomic<bool> ordered{true};
  std::thread consumer([&] {
    for (int expected = 0, value = 0; expected < items;) {
      if (!q.get(&value)) continue;
      if (value != expected++) ordered.store(false);
    }
  });
  for (int i = 0; i < items; ++i) ASSERT_TRUE(q.put(&i));
  consumer.join();
  EXPECT_TRUE(ordered.load());
}
}  // namespace
