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

TEST(sxThread, ApplicationThreadWrapper) {
  sxThread* app = sxGetAppThread();
  ASSERT_NE(app, nullptr);
  EXPECT_TRUE(app->isAppThread());
  EXPECT_TRUE(app->inCurrentThread());
  EXPECT_TRUE(sxInAppThread());
  EXPECT_EQ(sxThread::getCurrentThread(), app);
  EXPECT_EQ(app->getState(), sxThread::RUNNING);
  EXPECT_NE(app->getTravContext(), nullptr);
  // The thread the application runs on is neither suspended nor killed.
  app->suspend();
  app->kill();
  EXPECT_EQ(app->getState(), sxThread::RUNNING);
  EXPECT_TRUE(app->inCurrentThread());
  // run() only counts a trigger; it applies nothing by itself.
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
  EXPECT_NE(t->getThreadId(), 0u);
  EXPECT_NE(t->getThreadId(), sxGetAppThread()->getThreadId());
  EXPECT_FALSE(t->inCurrentThread());
  EXPECT_NE(t->getTravContext(), nullptr);
  EXPECT_NE(t->getTravContext(), sxGetAppThread()->getTravContext());

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
  EXPECT_EQ(each->lastEvent.load(), nullptr);
  EXPECT_TRUE(sawItself.load());

  t->kill();
  EXPECT_EQ(t->getState(), sxThread::DEAD);
  EXPECT_EQ(t->getThreadId(), 0u);
  const int applied = each->count.load();
  EXPECT_TRUE(staysAt([&] { return each->count.load(); }));
  EXPECT_EQ(each->count.load(), applied);  // kill returned after the thread ended
  t->kill();                               // a dead thread: nothing happens
  t->run();                                // and nothing revives it
  EXPECT_EQ(t->getState(), sxThread::DEAD);
  EXPECT_EQ(each->count.load(), applied);
  EXPECT_EQ(init->count.load(), 1);
  for (sxAction* a :
       {static_cast<sxAction*>(init), static_cast<sxAction*>(each), static_cast<sxAction*>(probe)})
    a->unRef();
}

TEST(sxThread, TriggeredModeRunsOneIterationPerRun) {
  Pipeline p;
  sxThread* t = p.add(sxThread::TRIGGERED);
  auto* init = newAction<CountingAction>();
  auto* each = newAction<CountingAction>();
  t->addInitAction(init);
  t->addAction(each);
  // Three calls before the thread gets to run give three iterations.
  t->run();
  t->run();
  t->run();
  ASSERT_TRUE(waitUntil([&] { return each->count.load() == 3; }));
  EXPECT_TRUE(staysAt([&] { return each->count.load(); }));
  EXPECT_EQ(each->count.load(), 3);
  EXPECT_EQ(init->count.load(), 1);
  t->run();
  ASSERT_TRUE(waitUntil([&] { return each->count.load() == 4; }));
  EXPECT_TRUE(staysAt([&] { return each->count.load(); }));
  EXPECT_EQ(each->count.load(), 4);
  // Killing a thread that waits for a trigger wakes and ends it.
  t->kill();
  EXPECT_EQ(t->getState(), sxThread::DEAD);
  EXPECT_EQ(each->count.load(), 4);
  init->unRef();
  each->unRef();
}

TEST(sxThread, SuspendStopsBeforeTheNextIteration) {
  Pipeline p;
  sxThread* t = p.add();
  auto* each = newAction<CountingAction>();
  t->addAction(each);
  t->run();
  ASSERT_TRUE(waitUntil([&] { return each->count.load() > 0; }));
  t->suspend();
  EXPECT_EQ(t->getState(), sxThread::SUSPENDED);
  // At most the iteration under way completes.
  ASSERT_TRUE(waitUntil([&] { return staysAt([&] { return each->count.load(); }, 20); }));
  const int stopped = each->count.load();
  EXPECT_TRUE(staysAt([&] { return each->count.load(); }));
  t->run();
  EXPECT_TRUE(waitUntil([&] { return each->count.load() > stopped + 10; }));
  // Killing a suspended thread ends it as well.
  t->suspend();
  t->kill();
  EXPECT_EQ(t->getState(), sxThread::DEAD);
  each->unRef();
}

TEST(sxThread, AFailingActionKillsOnlyItsThread) {
  sxtest::MessageCapture messages;
  Pipeline p;
  sxThread* t = p.add(sxThread::FREE_RUNNING, "Worker");
  auto* first = newAction<CountingAction>();
  auto* failing = newAction<CountingAction>();
  auto* after = newAction<CountingAction>();
  t->addAction(first);
  t->addAction(failing);
  t->addAction(after);
  ASSERT_TRUE(waitUntil([&] { return staysAt([&] { return first->count.load(); }, 5); }));
  failing->result.store(false);
  t->run();
  ASSERT_TRUE(waitUntil([&] { return t->getState() == sxThread::DEAD; }));
  EXPECT_EQ(sxtest::MessageCapture::text(), "Thread: Worker died.  Error: 0\n");
  EXPECT_EQ(first->count.load(), 1);
  EXPECT_EQ(failing->count.load(), 1);
  EXPECT_EQ(after->count.load(), 0);  // actions after the failing one are not applied
  t->kill();                          // already dead: nothing happens
  EXPECT_EQ(t->getState(), sxThread::DEAD);
  // The rest of the process carries on: another thread still runs.
  sxThread* other = p.add();
  auto* alive = newAction<CountingAction>();
  other->addAction(alive);
  other->run();
  EXPECT_TRUE(waitUntil([&] { return alive->count.load() > 0; }));
  EXPECT_EQ(sxtest::MessageCapture::text(), "Thread: Worker died.  Error: 0\n");
  for (auto* a : {first, failing, after, alive}) a->unRef();
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
  t->addAction(a);
  t->addAction(b);
  t->addAction(c);
  t->addInitAction(a);
  EXPECT_EQ(a->getRefCount(), 3);
  EXPECT_EQ(t->getNumActions(), 3);
  EXPECT_EQ(t->getNumInitActions(), 1);
  EXPECT_FALSE(t->removeAction(nullptr));
  EXPECT_TRUE(t->removeAction(a));
  EXPECT_FALSE(t->removeInitAction(b));
  EXPECT_EQ(a->getRefCount(), 2);
  EXPECT_EQ(t->getNumActions(), 2);
  // apply runs what is left, in order, with the target and no event.
  sxBase target;
  EXPECT_TRUE(t->apply(&target));
  EXPECT_EQ(a->count.load(), 0);
  EXPECT_EQ(b->count.load(), 1);
  EXPECT_EQ(c->lastObject.load(), &target);
  // An action removed while the thread still lists it elsewhere lives on;
  // the thread's release at the end frees the last reference.
  EXPECT_TRUE(t->removeInitAction(a));
  EXPECT_EQ(a->getRefCount(), 1);
  for (auto* x : {a, b, c}) x->unRef();
  EXPECT_EQ(b->getRefCount(), 1);  // still listed
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

TEST(sxThread, KillFromInsideAnAction) {
  Pipeline p;
  sxThread* t = p.add();
  std::atomic<int> after{0};
  auto* killer = newAction<FunctionAction>([&](sxBase*, sxEvent*) {
    sxThread::getCurrentThread()->kill();
    after.fetch_add(1);  // the call returns: the thread ends at its next check
    return true;
  });
  auto* next = newAction<CountingAction>();
  t->addAction(killer);
  t->addAction(next);
  t->run();
  ASSERT_TRUE(waitUntil([&] { return t->getState() == sxThread::DEAD; }));
  EXPECT_TRUE(staysAt([&] { return after.load(); }));
  EXPECT_EQ(after.load(), 1);
  EXPECT_LE(next->count.load(), 1);
  killer->unRef();
  next->unRef();
}

TEST(sxThread, CreationByNameGivesAWorker) {
  sxBase* made = sxType::createInstance("sxThread");
  ASSERT_NE(made, nullptr);
  auto* t = static_cast<sxThread*>(made);
  t->ref();
  EXPECT_FALSE(t->isAppThread());
  EXPECT_EQ(t->getState(), sxThread::SUSPENDED);
  EXPECT_EQ(t->createCopy(), nullptr);  // threads are not copied
  t->unRef();
}

}  // namespace
