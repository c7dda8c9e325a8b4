#include <gtest/gtest.h>
#include <sched.h>

#include <atomic>
#include <string>

#include "support/sxThreadTestSupport.h"

namespace {

using namespace sxtest;

template <class A, class... Args>
A* newAction(Args&&... args) {
  A* a = new A(std::forward<Args>(args)...);
  a->ref();
  return a;
}

// The thread the application runs on is neither suspended nor killed, and
// run() on it only counts a trigger.
TEST(sxThread, ApplicationThreadWrapper) {
  sxThread* app = sxGetAppThread();
  ASSERT_NE(app, nullptr);
  EXPECT_TRUE(app->isAppThread());
  EXPECT_TRUE(sxInAppThread());
  EXPECT_EQ(sxThread::getCurrentThread(), app);
  app->suspend();
  app->kill();
  EXPECT_EQ(app->getState(), sxThread::RUNNING);
  EXPECT_TRUE(app->inCurrentThread());
  auto* a = newAction<CountingAction>();
  app->addAction(a);
  app->run();
  EXPECT_EQ(a->count.load(), 0);
  EXPECT_TRUE(app->apply(nullptr));
  EXPECT_EQ(a->count.load(), 1);
  EXPECT_TRUE(app->removeAction(a));
  a->unRef();
}

TEST(sxThread, WorkerStartsSuspendedRunsAndIsKilled) {
  Pipeline p;
  const int before = sxThread::getNum();
  sxThread* t = p.add();
  EXPECT_EQ(sxThread::getNum(), before + 1);
  EXPECT_EQ(t->getState(), sxThread::SUSPENDED);
  EXPECT_NE(t->getThreadId(), sxGetAppThread()->getThreadId());
  EXPECT_NE(t->getTravContext(), sxGetAppThread()->getTravContext());
  EXPECT_EQ(t->createCopy(), nullptr) << "threads are not copied";
  EXPECT_TRUE(createsByName("sxThread", sxThread::getClassType()));

  auto* init = newAction<CountingAction>();
  auto* each = newAction<CountingAction>();
  std::atomic<bool> sawItself{false};
  auto* probe = newAction<FunctionAction>([&](sxBase*, sxEvent*) {
    sawItself.store(t->inCurrentThread() && sxThread::getCurrentThread() == t && !sxInAppThread());
    return true;
  });
  t->addInitAction(init);
  t->addAction(each);
  t->addAction(probe);
  sxBase target;
  EXPECT_TRUE(staysAt([&] { return each->count.load(); }));
  EXPECT_EQ(init->count.load(), 0);  // nothing runs before run()

  t->run(&target);
  EXPECT_EQ(t->getState(), sxThread::RUNNING);
  ASSERT_TRUE(waitUntil([&] { return each->count.load() > 10; }));
  EXPECT_EQ(init->count.load(), 1);
  EXPECT_EQ(init->lastObject.load(), t);  // init actions get the thread
  EXPECT_EQ(each->lastObject.load(), &target);
  EXPECT_TRUE(sawItself.load());

  t->kill();
  EXPECT_EQ(t->getState(), sxThread::DEAD);
  EXPECT_EQ(t->getThreadId(), 0u);
  const int applied = each->count.load();
  t->kill();  // a dead thread: nothing happens
  t->run();   // and nothing revives it
  EXPECT_TRUE(staysAt([&] { return each->count.load(); }));
  EXPECT_EQ(each->count.load(), applied) << "kill returned after the thread ended";
  EXPECT_EQ(t->getState(), sxThread::DEAD);
  for (sxAction* a :
       {static_cast<sxAction*>(init), static_cast<sxAction*>(each), static_cast<sxAction*>(probe)})
    a->unRef();
}

// A triggered thread runs one iteration per run(), however early they
// come; suspension stops a free-running one before its next iteration, and
// killing a waiting or suspended thread ends it.
TEST(sxThread, TriggeredAndSuspendedThreads) {
  Pipeline p;
  sxThread* t = p.add(sxThread::TRIGGERED);
  auto* each = newAction<CountingAction>();
  t->addAction(each);
  t->run();
  t->run();
  t->run();
  ASSERT_TRUE(waitUntil([&] { return each->count.load() == 3; }));
  EXPECT_TRUE(staysAt([&] { return each->count.load(); }));
  EXPECT_EQ(each->count.load(), 3);
  t->kill();
  EXPECT_EQ(t->getState(), sxThread::DEAD);

  sxThread* free = p.add();
  auto* loop = newAction<CountingAction>();
  free->addAction(loop);
  free->run();
  ASSERT_TRUE(waitUntil([&] { return loop->count.load() > 0; }));
  free->suspend();
  EXPECT_EQ(free->getState(), sxThread::SUSPENDED);
  ASSERT_TRUE(waitUntil([&] { return staysAt([&] { return loop->count.load(); }, 20); }));
  const int stopped = loop->count.load();
  EXPECT_TRUE(staysAt([&] { return loop->count.load(); }));
  free->run();
  EXPECT_TRUE(waitUntil([&] { return loop->count.load() > stopped + 10; }));
  free->suspend();
  free->kill();
  EXPECT_EQ(free->getState(), sxThread::DEAD);
  each->unRef();
  loop->unRef();
}

TEST(sxThread, AFailingOrKillingActionEndsOnlyItsThread) {
  sxtest::MessageCapture messages;
  Pipeline p;
  sxThread* t = p.add(sxThread::FREE_RUNNING, "Worker");
  auto* first = newAction<CountingAction>();
  auto* failing = newAction<CountingAction>();
  auto* after = newAction<CountingAction>();
  t->addAction(first);
  t->addAction(failing);
  t->addAction(after);
  failing->result.store(false);
  t->run();
  ASSERT_TRUE(waitUntil([&] { return t->getState() == sxThread::DEAD; }));
  EXPECT_EQ(sxtest::MessageCapture::text(), "Thread: Worker died.  Error: 0\n");
  EXPECT_EQ(first->count.load(), 1);
  EXPECT_EQ(after->count.load(), 0);  // actions after the failing one are not applied
  // The rest of the process carries on: another thread still runs, and
  // ends when an action kills it; the call returns, and the thread ends at
  // its next check.
  sxThread* other = p.add();
  std::atomic<int> afterKill{0};
  auto* killer = newAction<FunctionAction>([&](sxBase*, sxEvent*) {
    sxThread::getCurrentThread()->kill();
    afterKill.fetch_add(1);
    return true;
  });
  other->addAction(first);
  other->addAction(killer);
  other->addAction(after);
  other->run();
  ASSERT_TRUE(waitUntil([&] { return other->getState() == sxThread::DEAD; }));
  EXPECT_TRUE(staysAt([&] { return afterKill.load(); }));
  EXPECT_EQ(afterKill.load(), 1);
  EXPECT_EQ(first->count.load(), 2);
  EXPECT_LE(after->count.load(), 1);
  for (auto* a : {first, failing, after}) a->unRef();
  killer->unRef();
}

TEST(sxThread, ActionListsReferenceTheirActions) {
  Pipeline p;
  sxThread* t = p.add();
  auto* a = newAction<CountingAction>();
  auto* b = newAction<CountingAction>();
  auto* c = newAction<CountingAction>();
  t->addAction(nullptr);
  t->addInitAction(nullptr);
  EXPECT_EQ(t->getNumActions(), 0);
  for (auto* x : {a, b, c}) t->addAction(x);
  t->addInitAction(a);
  EXPECT_EQ(a->getRefCount(), 3);
  EXPECT_EQ(t->getNumInitActions(), 1);
  EXPECT_FALSE(t->removeAction(nullptr));
  EXPECT_TRUE(t->removeAction(a));
  EXPECT_FALSE(t->removeInitAction(b));
  EXPECT_EQ(t->getNumActions(), 2);
  // apply runs what is left, in order, with the target and no event.
  sxBase target;
  EXPECT_TRUE(t->apply(&target));
  EXPECT_EQ(a->count.load(), 0);
  EXPECT_EQ(c->lastObject.load(), &target);
  EXPECT_EQ(c->lastEvent.load(), nullptr);
  EXPECT_TRUE(t->removeInitAction(a));
  EXPECT_EQ(a->getRefCount(), 1);
  for (auto* x : {a, b, c}) x->unRef();
  EXPECT_EQ(b->getRefCount(), 1) << "still listed";
}

TEST(sxThread, PriorityAndProcessorRequests) {
  Pipeline p;
  sxThread* t = p.add(sxThread::TRIGGERED);
  EXPECT_FALSE(t->setPriority(32));
  EXPECT_FALSE(t->setPriority(-1));
  // The idle band only lowers the priority, which needs no privilege.
  EXPECT_TRUE(t->setPriority(5));
  EXPECT_TRUE(t->setPriority(0));

  cpu_set_t set;
  ASSERT_EQ(sched_getaffinity(0, sizeof set, &set), 0);
  std::uint64_t allowed = 0;
  for (int i = 0; i < 32; ++i)
    if (CPU_ISSET(i, &set)) allowed |= std::uint64_t(1) << i;
  ASSERT_NE(allowed, 0u);
  unsigned lowest = 1;
  while (!(allowed & lowest)) lowest <<= 1;
  EXPECT_TRUE(t->setProcessors(lowest));
  EXPECT_TRUE(t->setProcessors(~0u));  // cut down to what the process may use
  EXPECT_FALSE(t->setProcessors(0));
  if (~allowed & 0xFFFFFFFFu) {
    EXPECT_FALSE(t->setProcessors(unsigned(~allowed)));
  }
  t->kill();
  EXPECT_FALSE(t->setPriority(5));
  EXPECT_FALSE(t->setProcessors(lowest));
}

}  // namespace
