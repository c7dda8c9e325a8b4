#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "support/sxTestFiles.h"
#include "support/sxThreadTestSupport.h"

namespace {

using namespace sxtest;

// An action node that records its notifications.
class RecordingNode : public sxActionNode {
 public:
  void eventTriggered(sxBase* object, sxEvent* event) override {
    lastObject = object;
    lastEvent = event;
    order = ++sequence;
  }
  sxBase* lastObject = nullptr;
  sxEvent* lastEvent = nullptr;
  int order = 0;
  static inline int sequence = 0;
};

class OrderedAction : public CountingAction {
 public:
  bool apply(sxBase* object, sxEvent* event) override {
    order = ++RecordingNode::sequence;
    return CountingAction::apply(object, event);
  }
  int order = 0;
};

template <class T>
T* held(T* obj) {
  obj->ref();
  return obj;
}

TEST(sxEvent, FindOrCreateSharesEventsByName) {
  EXPECT_EQ(sxEvent::findOrCreate(nullptr), nullptr);
  EXPECT_EQ(sxEvent::findOrCreate(""), nullptr);
  sxEvent* a = sxEvent::findOrCreate("frame");
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(sxEvent::findOrCreate("FRAME"), a);  // names ignore case
  EXPECT_EQ(a->getRefCount(), 2);

  // Threads asking for a new name at once all get the one event.
  std::vector<sxEvent*> got(8, nullptr);
  std::vector<std::thread> threads;
  for (size_t i = 0; i < got.size(); ++i)
    threads.emplace_back([&, i] { got[i] = sxEvent::findOrCreate("race"); });
  for (auto& t : threads) t.join();
  for (sxEvent* e : got) EXPECT_EQ(e, got[0]);
  EXPECT_EQ(got[0]->getRefCount(), 8);
  for (sxEvent* e : got) e->unRef();
  a->unRef();
  a->unRef();
  EXPECT_EQ(sxEvent::find("frame"), nullptr);
}

TEST(sxEvent, TriggerRecordsAndRunsActionsThenNodesInOrder) {
  sxEvent* e = held(new sxEvent);
  auto* first = held(new OrderedAction);
  auto* second = held(new OrderedAction);
  auto* node = held(new RecordingNode);
  EXPECT_FALSE(e->addAction(static_cast<sxAction*>(nullptr)));
  EXPECT_FALSE(e->addAction(static_cast<sxActionNode*>(nullptr)));
  EXPECT_TRUE(e->addAction(node));
  EXPECT_TRUE(e->addAction(first));
  EXPECT_TRUE(e->addAction(second));
  EXPECT_EQ(e->getNumActionNodes(), 1);

  sxBase object;
  const double before = sxGetTime();
  e->trigger(&object);
  EXPECT_GE(e->getTime(), before);
  EXPECT_LE(e->getTime(), sxGetTime());
  EXPECT_EQ(e->getLastObject(), &object);
  EXPECT_EQ(first->lastEvent.load(), e);
  EXPECT_EQ(node->lastObject, &object);
  // Actions in order, then the action nodes.
  EXPECT_LT(first->order, second->order);
  EXPECT_LT(second->order, node->order);
  // The static form ignores a null event.
  sxEvent::trigger(nullptr, &object);
  sxEvent::trigger(e, nullptr);
  EXPECT_EQ(first->count.load(), 2);
  EXPECT_EQ(e->getLastObject(), nullptr);

  e->unRef();  // releases its actions and nodes
  EXPECT_EQ(node->getRefCount(), 1);
  for (sxBase* x :
       {static_cast<sxBase*>(first), static_cast<sxBase*>(second), static_cast<sxBase*>(node)})
    x->unRef();
}

TEST(sxEvent, DisabledEventWakesWaitersButRunsNothing) {
  sxEvent* e = held(new sxEvent);
  auto* action = held(new CountingAction);
  e->addAction(action);
  sxBase firstObject, secondObject;
  e->trigger(&firstObject);
  const double firstTime = e->getTime();
  e->enable(false);
  std::atomic<bool> woken{false};
  std::thread waiter([&] { woken.store(e->waitForTrigger(10000)); });
  // The waiter has to be waiting before the trigger: try until it is woken.
  ASSERT_TRUE(waitUntil([&] {
    e->trigger(&secondObject);
    return woken.load();
  }));
  waiter.join();
  EXPECT_EQ(action->count.load(), 1);
  EXPECT_EQ(e->getTime(), firstTime);
  EXPECT_EQ(e->getLastObject(), &firstObject);
  e->enable(true);
  e->trigger(&secondObject);
  EXPECT_EQ(action->count.load(), 2);
  e->unRef();
  action->unRef();
}

TEST(sxEvent, RemovingMovesTheLastIntoTheHoleAndReleases) {
  sxEvent* e = held(new sxEvent);
  CountingAction* a[3];
  for (auto*& x : a) {
    x = held(new CountingAction);
    e->addAction(x);
  }
  EXPECT_TRUE(e->removeAction(a[0]));
  EXPECT_EQ(a[0]->getRefCount(), 1);
  EXPECT_EQ(e->getAction(0), a[2]);
  EXPECT_EQ(e->getAction(2), nullptr);
  EXPECT_EQ(e->getAction(-1), nullptr);
  EXPECT_FALSE(e->removeAction(a[0]));
  EXPECT_FALSE(e->removeAction(static_cast<sxAction*>(nullptr)));
  auto* node = held(new RecordingNode);
  EXPECT_FALSE(e->removeAction(node));
  // An action that removes itself while it runs lives until it returns.
  auto* self = new FunctionAction([&](sxBase*, sxEvent* event) {
    event->removeAction(event->getAction(event->getNumActions() - 1));
    return true;
  });
  e->addAction(self);
  e->trigger(nullptr);
  EXPECT_EQ(e->getNumActions(), 2);
  e->unRef();
  node->unRef();
  for (auto* x : a) x->unRef();
}

TEST(sxEvent, ChainedEventsFireWithTheSameObject) {
  sxEvent* outer = held(new sxEvent);
  sxEvent* inner = held(new sxEvent);
  auto* action = held(new CountingAction);
  inner->addAction(action);
  EXPECT_FALSE(outer->addAction(outer));  // not to itself
  EXPECT_FALSE(outer->addAction(static_cast<sxEvent*>(nullptr)));
  EXPECT_TRUE(outer->addAction(inner));
  sxBase object;
  outer->trigger(&object);
  EXPECT_EQ(action->lastObject.load(), &object);
  // An event is an action itself through apply.
  EXPECT_TRUE(inner->apply(nullptr, outer));
  EXPECT_EQ(action->count.load(), 2);

  // A loop of chained events ends at the nesting limit instead of
  // overflowing the stack.
  EXPECT_TRUE(inner->addAction(outer));
  outer->trigger(&object);
  EXPECT_EQ(action->count.load(), 2 + sxEvent::maxChainDepth / 2);
  EXPECT_TRUE(inner->removeAction(outer));
  EXPECT_FALSE(inner->removeAction(outer));
  EXPECT_TRUE(outer->removeAction(inner));
  EXPECT_EQ(inner->getRefCount(), 1);
  outer->unRef();
  inner->unRef();
  action->unRef();
}

TEST(sxEvent, EveryTriggerWakesAllWaiters) {
  sxEvent* e = held(new sxEvent);
  constexpr int waiters = 4;
  std::atomic<int> woken{0}, started{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < waiters; ++i)
    threads.emplace_back([&] {
      started.fetch_add(1);
      if (e->waitForTrigger()) woken.fetch_add(1);
    });
  ASSERT_TRUE(waitUntil([&] { return started.load() == waiters; }));
  EXPECT_TRUE(staysAt([&] { return woken.load(); }));
  EXPECT_EQ(woken.load(), 0);
  // Once all are waiting, one trigger releases every one of them.
  ASSERT_TRUE(waitUntil([&] {
    e->trigger(nullptr);
    return woken.load() == waiters;
  }));
  for (auto& t : threads) t.join();
  // With nobody triggering, a timed wait gives up.
  auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(e->waitForTrigger(20));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(15));
  EXPECT_FALSE(e->waitForTrigger(0));
  e->unRef();
}

TEST(sxEvent, ActionsOfOneEventNeverOverlap) {
  sxEvent* e = held(new sxEvent);
  std::atomic<int> inside{0}, overlaps{0}, runs{0};
  auto* action = new FunctionAction([&](sxBase*, sxEvent*) {
    if (inside.fetch_add(1) != 0) overlaps.fetch_add(1);
    runs.fetch_add(1);
    inside.fetch_sub(1);
    return true;
  });
  e->addAction(action);
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([&] {
      for (int k = 0; k < 2000; ++k) {
        e->trigger(nullptr);
        if (k % 100 == 0) e->enable(true);
      }
    });
  for (auto& t : threads) t.join();
  EXPECT_EQ(overlaps.load(), 0);
  EXPECT_EQ(runs.load(), 8000);
  e->unRef();
}

TEST(sxEvent, CopiesShareTheActions) {
  sxEvent* source = held(new sxEvent);
  source->setName("source");
  auto* action = held(new CountingAction);
  source->addAction(action);
  source->enable(false);
  auto* copy = static_cast<sxEvent*>(source->createCopy());
  ASSERT_NE(copy, nullptr);
  copy->ref();
  EXPECT_FALSE(copy->isEnabled());
  EXPECT_EQ(copy->getAction(0), action);
  EXPECT_EQ(action->getRefCount(), 3);
  copy->enable(true);
  copy->trigger(nullptr);
  EXPECT_EQ(action->count.load(), 1);
  copy->unRef();
  source->unRef();
  EXPECT_EQ(action->getRefCount(), 1);
  action->unRef();
}

TEST(sxEvent, FileRecordKeepsNameAndEnabledFlag) {
  sxTempDir dir;
  const std::string path = dir.file("events.sx");
  for (bool enabled : {false, true}) {
    {
      sxEvent* e = held(new sxEvent);
      e->setName("door");
      e->enable(enabled);
      e->addAction(held(new CountingAction));  // not stored
      sxBase plain;                            // the same sxBase fields
      plain.setName("door");
      sxFile f;
      ASSERT_TRUE(f.create(path.c_str()));
      ASSERT_NE(e->write(&f, nullptr), nullptr);
      ASSERT_NE(plain.write(&f, nullptr), nullptr);
      ASSERT_TRUE(f.write());
      e->getAction(0)->unRef();
      e->unRef();
    }
    sxFile f;
    ASSERT_TRUE(f.open(path.c_str(), "r"));
    sxEvent* back = held(new sxEvent);
    back->enable(!enabled);
    ASSERT_EQ(back->read(&f, nullptr), f.getEntry(0));
    EXPECT_STREQ(back->getName(), "door");
    EXPECT_EQ(back->isEnabled(), enabled);
    EXPECT_EQ(back->getNumActions(), 0);
    // The record is sxBase's followed by one int.
    EXPECT_EQ(f.getEntry(0)->getDataSize(), f.getEntry(1)->getDataSize() + 4);
    back->unRef();
  }
}

}  // namespace
