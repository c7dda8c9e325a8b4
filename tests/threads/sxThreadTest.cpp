#include <gtest/gtest.h>
#include <sched.h>

#include <atomic>
#include <tuple>

#include "support/sxThreadTestSupport.h"

using namespace sxtest;

TEST(sxThread, WorkersStartSuspendedRunFreeOrTriggeredAndAreKilled) {
  Pipeline p;
  const int before = sxThread::getNum();
  sxThread* t = p.add();
  EXPECT_EQ(std::tuple(sxThread::getNum(), t->getState()),
            std::tuple(before + 1, sxThread::SUSPENDED));
  EXPECT_TRUE(t->getThreadId() != sxGetAppThread()->getThreadId() &&
              t->getTravContext() != sxGetAppThread()->getTravContext());
  auto init = make(), each = make();
  std::atomic<bool> sawItself{false};
  auto probe = make<FunctionAction>([&](sxBase*, sxEvent*) {
    sawItself.store(t->inCurrentThread() && sxThread::getCurrentThread() == t && !sxInAppThread());
  });
  t->addInitAction(init.get());
  for (sxAction* a : std::initializer_list<sxAction*>{each.get(), probe.get()}) t->addAction(a);
  const auto applied = [&] { return each->count.load(); };
  sxBase target;
  EXPECT_TRUE(staysAt(applied));
  EXPECT_EQ(init->count.load(), 0);  // nothing runs before run()
  t->run(&target);
  EXPECT_EQ(t->getState(), sxThread::RUNNING);
  ASSERT_TRUE(waitUntil([&] { return applied() > 10; }));
  // Init actions run once and get the thread.
  EXPECT_EQ(std::tuple(init->count.load(), init->lastObject.load()), std::tuple(1, t));
  EXPECT_TRUE(each->lastObject.load() == &target && sawItself.load());
  t->kill();
  EXPECT_EQ(std::tuple(t->getState(), t->getThreadId()), std::tuple(sxThread::DEAD, 0u));
  const int atKill = applied();
  t->kill();  // a dead thread: nothing happens
  t->run();   // and nothing revives it
  // Kill returned after the thread ended.
  EXPECT_TRUE(staysAt(applied) && applied() == atKill && t->getState() == sxThread::DEAD);
  // A triggered thread runs one iteration per run(), however early they come;
  // suspension stops a free-running one; killing a waiting or suspended one ends it.
  sxThread* triggered = p.add(sxThread::TRIGGERED);
  auto once = make();
  triggered->addAction(once.get());
  for (int i = 0; i < 3; ++i) triggered->run();
  ASSERT_TRUE(waitUntil([&] { return once->count.load() == 3; }));
  EXPECT_TRUE(staysAt([&] { return once->count.load(); }));
  EXPECT_EQ(once->count.load(), 3);
  triggered->kill();
  EXPECT_EQ(triggered->getState(), sxThread::DEAD);
  sxThread* free = p.add();
  auto loop = make();
  const auto loops = [&] { return loop->count.load(); };
  free->addAction(loop.get());
  free->run();
  ASSERT_TRUE(waitUntil([&] { return loops() > 0; }));
  free->suspend();
  EXPECT_EQ(free->getState(), sxThread::SUSPENDED);
  ASSERT_TRUE(waitUntil([&] { return staysAt(loops, 20); }));
  const int stopped = loops();
  EXPECT_TRUE(staysAt(loops));
  free->run();
  EXPECT_TRUE(waitUntil([&] { return loops() > stopped + 10; }));
  free->suspend();
  free->kill();
  EXPECT_EQ(free->getState(), sxThread::DEAD);
}

TEST(sxThread, AFailingOrKillingActionEndsOnlyItsThread) {
  MessageCapture messages;
  Pipeline p;
  sxThread* t = p.add(sxThread::FREE_RUNNING, "Worker");
  auto first = make(), failing = make(), after = make();
  for (auto* a : {first.get(), failing.get(), after.get()}) t->addAction(a);
  failing->result.store(false);
  t->run();
  ASSERT_TRUE(waitUntil([&] { return t->getState() == sxThread::DEAD; }));
  EXPECT_EQ(MessageCapture::text(), "Thread: Worker died.  Error: 0\n");
  // Actions after the failing one are not applied.
  EXPECT_EQ(std::tuple(first->count.load(), after->count.load()), std::tuple(1, 0));
  // Another thread still runs, and ends when an action kills it: the call returns and
  // the thread ends at its next check.
  sxThread* other = p.add();
  std::atomic<int> afterKill{0};
  auto killer = make<FunctionAction>([&](sxBase*, sxEvent*) {
    sxThread::getCurrentThread()->kill();
    afterKill.fetch_add(1);
  });
  for (sxAction* a : std::initializer_list<sxAction*>{first.get(), killer.get(), after.get()})
    other->addAction(a);
  other->run();
  ASSERT_TRUE(waitUntil([&] { return other->getState() == sxThread::DEAD; }));
  EXPECT_TRUE(staysAt([&] { return afterKill.load(); }) && afterKill.load() == 1);
  EXPECT_EQ(first->count.load(), 2);
  EXPECT_LE(after->count.load(), 1);
}

// Action lists reference their actions; apply runs them in order with the target and no
// event. The application thread is never suspended or killed; run() only counts.
TEST(sxThread, ActionListsPrioritiesProcessorsAndTheApplicationThread) {
  Pipeline p;
  sxThread* t = p.add();
  auto a = make(), b = make(), c = make();
  t->addAction(nullptr);
  t->addInitAction(nullptr);
  for (auto* x : {a.get(), b.get(), c.get()}) t->addAction(x);
  t->addInitAction(a.get());
  EXPECT_EQ(std::tuple(t->getNumActions(), t->getNumInitActions(), a->getRefCount()),
            std::tuple(3, 1, 3));
  EXPECT_FALSE(t->removeAction(nullptr));
  EXPECT_TRUE(t->removeAction(a.get()));
  EXPECT_FALSE(t->removeInitAction(b.get()));
  EXPECT_EQ(t->getNumActions(), 2);
  sxBase target;
  EXPECT_TRUE(t->apply(&target));
  EXPECT_EQ(std::tuple(a->count.load(), c->lastObject.load(), c->lastEvent.load()),
            std::tuple(0, &target, nullptr));
  EXPECT_TRUE(t->removeInitAction(a.get()));
  EXPECT_EQ(std::tuple(a->getRefCount(), b->getRefCount()), std::tuple(1, 2)) << "b still listed";
  sxThread* app = sxGetAppThread();
  ASSERT_NE(app, nullptr);
  EXPECT_TRUE(app->isAppThread() && sxInAppThread() && sxThread::getCurrentThread() == app);
  app->suspend();
  app->kill();
  EXPECT_TRUE(app->getState() == sxThread::RUNNING && app->inCurrentThread());
  app->addAction(a.get());
  app->run();
  EXPECT_EQ(a->count.load(), 0);
  EXPECT_TRUE(app->apply(nullptr));
  EXPECT_EQ(a->count.load(), 1);
  EXPECT_TRUE(app->removeAction(a.get()));
  // Priority and processor requests.
  t = p.add(sxThread::TRIGGERED);
  for (int outOfRange : {32, -1}) EXPECT_FALSE(t->setPriority(outOfRange)) << outOfRange;
  // The idle band only lowers the priority, which needs no privilege.
  EXPECT_TRUE(t->setPriority(5) && t->setPriority(0));
  cpu_set_t set;
  ASSERT_EQ(sched_getaffinity(0, sizeof set, &set), 0);
  std::uint64_t allowed = 0;
  for (int i = 0; i < 32; ++i)
    if (CPU_ISSET(i, &set)) allowed |= std::uint64_t(1) << i;
  ASSERT_NE(allowed, 0u);
  const unsigned lowest = unsigned(allowed & -allowed);
  EXPECT_TRUE(t->setProcessors(lowest));
  EXPECT_TRUE(t->setProcessors(~0u));  // cut down to what the process may use
  EXPECT_FALSE(t->setProcessors(0));
  const unsigned outside = unsigned(~allowed);  // processors the process may not use
  EXPECT_TRUE(outside == 0 || !t->setProcessors(outside));
  t->kill();
  EXPECT_FALSE(t->setPriority(5) || t->setProcessors(lowest));
}
