#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "support/sxTestFiles.h"
#include "support/sxThreadTestSupport.h"

namespace {
using namespace sxtest;

struct RecordingNode : sxActionNode {
  void eventTriggered(sxBase* object, sxEvent*) override {
    lastObject = object;
    tick = ++ticks;
  }
  sxBase* lastObject = nullptr;
  int tick = 0;
};

TEST(sxEvent, TriggerRunsActionsNodesAndChainedEventsInOrderAndRemovalFillsTheHole) {
  auto e = make<sxEvent>();
  sxRef<CountingAction> a[] = {make(), make(), make()};
  auto node = make<RecordingNode>();
  EXPECT_FALSE(e->addAction(static_cast<sxAction*>(nullptr)) ||
               e->addAction(static_cast<sxActionNode*>(nullptr)));
  EXPECT_TRUE(e->addAction(node.get()));
  for (auto& x : a) EXPECT_TRUE(e->addAction(x.get()));
  EXPECT_EQ(e->getNumActionNodes(), 1);
  sxBase object;
  const double before = sxGetTime();
  e->trigger(&object);
  EXPECT_GE(e->getTime(), before);
  EXPECT_LE(e->getTime(), sxGetTime());
  EXPECT_EQ(e->getLastObject(), &object);
  EXPECT_EQ(a[0]->lastEvent.load(), e.get());
  EXPECT_EQ(node->lastObject, &object);
  // Actions in order, then the action nodes.
  EXPECT_TRUE(a[0]->tick < a[1]->tick && a[1]->tick < a[2]->tick && a[2]->tick < node->tick);
  // The static form ignores a null event.
  sxEvent::trigger(nullptr, &object);
  sxEvent::trigger(e.get(), nullptr);
  EXPECT_EQ(a[0]->count.load(), 2);
  EXPECT_EQ(e->getLastObject(), nullptr);
  // Removal moves the last action into the hole and releases the removed.
  EXPECT_TRUE(e->removeAction(a[0].get()));
  EXPECT_EQ(a[0]->getRefCount(), 1);
  EXPECT_EQ(e->getAction(0), a[2].get());
  for (int i : {2, -1}) EXPECT_EQ(e->getAction(i), nullptr) << i;
  EXPECT_FALSE(e->removeAction(a[0].get()) || e->removeAction(static_cast<sxAction*>(nullptr)));
  EXPECT_FALSE(e->removeAction(make<RecordingNode>().get()));
  // An action that removes itself while it runs lives until it returns.
  e->addAction(new FunctionAction([&](sxBase*, sxEvent* event) {
    event->removeAction(event->getAction(event->getNumActions() - 1));
  }));
  e->trigger(nullptr);
  EXPECT_EQ(e->getNumActions(), 2);
  e.reset();  // releases its actions and nodes
  EXPECT_EQ(node->getRefCount(), 1);
  // Chained events fire with the same object.
  auto outer = make<sxEvent>(), inner = make<sxEvent>();
  auto action = make();
  inner->addAction(action.get());
  // Not to itself, not to none.
  EXPECT_FALSE(outer->addAction(outer.get()) || outer->addAction(static_cast<sxEvent*>(nullptr)));
  EXPECT_TRUE(outer->addAction(inner.get()));
  outer->trigger(&object);
  EXPECT_EQ(action->lastObject.load(), &object);
  // An event is an action itself through apply.
  EXPECT_TRUE(inner->apply(nullptr, outer.get()));
  EXPECT_EQ(action->count.load(), 2);
  // A loop of chained events ends at the nesting limit, not in a stack overflow.
  EXPECT_TRUE(inner->addAction(outer.get()));
  outer->trigger(&object);
  EXPECT_EQ(action->count.load(), 2 + sxEvent::maxChainDepth / 2);
  EXPECT_TRUE(inner->removeAction(outer.get()) && !inner->removeAction(outer.get()) &&
              outer->removeAction(inner.get()));
  EXPECT_EQ(inner->getRefCount(), 1);
}

// A trigger wakes every waiting thread, also while the event is disabled and runs nothing.
TEST(sxEvent, EveryTriggerWakesAllWaiters) {
  auto e = make<sxEvent>();
  auto action = make();
  e->addAction(action.get());
  sxBase firstObject, secondObject;
  e->trigger(&firstObject);
  const double firstTime = e->getTime();
  e->enable(false);
  constexpr int waiters = 4;
  std::atomic<int> woken{0}, started{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < waiters; ++i)
    threads.emplace_back([&, i] {
      started.fetch_add(1);
      if (i % 2 ? e->waitForTrigger(60000) : e->waitForTrigger()) woken.fetch_add(1);
    });
  ASSERT_TRUE(waitUntil([&] { return started.load() == waiters; }));
  EXPECT_TRUE(staysAt([&] { return woken.load(); }) && woken.load() == 0);
  // A waiter has to be waiting before the trigger: try until all are woken.
  ASSERT_TRUE(waitUntil([&] {
    e->trigger(&secondObject);
    return woken.load() == waiters;
  }));
  for (auto& t : threads) t.join();
  EXPECT_EQ(std::tuple(action->count.load(), e->getTime(), e->getLastObject()),
            std::tuple(1, firstTime, &firstObject));
  e->enable(true);
  e->trigger(&secondObject);
  EXPECT_EQ(action->count.load(), 2);
  // With nobody triggering, a timed wait gives up.
  auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(e->waitForTrigger(20));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(15));
  EXPECT_FALSE(e->waitForTrigger(0));
}

TEST(sxEvent, NamedEventsAreSharedAndActionsOfOneEventNeverOverlap) {
  auto e = make<sxEvent>();
  std::atomic<int> inside{0}, overlaps{0}, runs{0};
  e->addAction(new FunctionAction([&](sxBase*, sxEvent*) {
    if (inside.fetch_add(1) != 0) overlaps.fetch_add(1);
    runs.fetch_add(1);
    inside.fetch_sub(1);
  }));
  inThreads(4, [&](int) {
    for (int k = 0; k < 2000; ++k) {
      e->trigger(nullptr);
      if (k % 100 == 0) e->enable(true);
    }
  });
  EXPECT_EQ(std::pair(overlaps.load(), runs.load()), std::pair(0, 8000));
  // Named events are shared.
  EXPECT_TRUE(!sxEvent::findOrCreate(nullptr) && !sxEvent::findOrCreate(""));
  sxEvent* a = sxEvent::findOrCreate("frame");
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(sxEvent::findOrCreate("FRAME"), a);  // names ignore case
  EXPECT_EQ(a->getRefCount(), 2);
  // Threads asking for a new name at once all get the one event.
  sxEvent* got[8] = {};
  inThreads(8, [&](int i) { got[i] = sxEvent::findOrCreate("race"); });
  for (sxEvent* g : got) EXPECT_EQ(g, got[0]);
  EXPECT_EQ(got[0]->getRefCount(), 8);
  for (sxEvent* g : got) g->unRef();
  a->unRef();
  a->unRef();
  EXPECT_EQ(sxEvent::find("frame"), nullptr);
}

// A copy shares the actions; the file record keeps the name and enabled flag only.
TEST(sxEvent, CopiesShareTheActionsAndFilesKeepNameAndEnabledFlag) {
  sxTempDir dir;
  const std::string path = dir.file("events.sx");
  for (bool enabled : {false, true}) {
    auto action = make();
    {
      auto e = make<sxEvent>();
      e->setName("door");
      e->enable(enabled);
      e->addAction(action.get());
      sxRef<sxEvent> copy(static_cast<sxEvent*>(e->createCopy()));
      ASSERT_NE(copy, nullptr);
      EXPECT_EQ(copy->isEnabled(), enabled);
      EXPECT_EQ(copy->getAction(0), action.get());
      EXPECT_EQ(action->getRefCount(), 3);
      copy->enable(true);
      copy->trigger(nullptr);
      EXPECT_EQ(action->count.load(), 1);
      sxBase plain;  // the same sxBase fields
      plain.setName("door");
      sxFile f;
      ASSERT_TRUE(f.create(path.c_str()) && e->write(&f, nullptr) && plain.write(&f, nullptr) &&
                  f.write());
    }
    EXPECT_EQ(action->getRefCount(), 1);
    sxFile f;
    ASSERT_TRUE(f.open(path.c_str(), "r"));
    auto back = make<sxEvent>();
    back->enable(!enabled);
    ASSERT_EQ(back->read(&f, nullptr), f.getEntry(0));
    EXPECT_STREQ(back->getName(), "door");
    EXPECT_EQ(back->isEnabled(), enabled);
    EXPECT_EQ(back->getNumActions(), 0);
    // The record is sxBase's followed by one int.
    EXPECT_EQ(f.getEntry(0)->getDataSize(), f.getEntry(1)->getDataSize() + 4);
  }
}
}  // namespace
