#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <thread>
#include <tuple>
#include <vector>

#include "support/sxThreadTestSupport.h"

namespace {
using namespace sxtest;

sxThread* app() {
  return sxGetAppThread();
}

// A release with n links below the application thread counts -1 - n; each thread passing
// the request adds one, and the last destroys the object or, with application-thread
// deletion, hands it back for that. The tests carry out the queues themselves.
TEST(sxDeferredDeletion, CountWalksFromMinusOneMinusNUpToZero) {
  for (bool handBack : {false, true}) {
    sxThread::enableAppThreadDeletion(handBack);
    EXPECT_EQ(sxThread::isAppThreadDeletionEnabled(), handBack);
    Pipeline p;
    sxThread *d1 = p.addBelow(app()), *d2 = p.addBelow(app());
    ASSERT_TRUE(d1 && d2);
    const int pending = sxBase::getNumPendingDeletions();
    std::atomic<int> destroyed{0};
    Probe* obj = make<Probe>(&destroyed).get();  // released at once: on its way
    EXPECT_EQ(obj->getRefCount(), -3);
    // Released again on its way (someone still held a pointer): no new request.
    obj->ref();
    obj->unRef();
    EXPECT_EQ(sxBase::getNumPendingDeletions(), pending + 1);
    EXPECT_EQ(app()->processQueue(false), 1);
    EXPECT_EQ(d2->processQueue(false), 1);
    EXPECT_EQ(obj->getRefCount(), -1);
    EXPECT_EQ(d1->processQueue(false), 1);
    EXPECT_EQ(destroyed.load(), handBack ? 0 : 1);
    EXPECT_EQ(app()->processQueue(false), handBack ? 1 : 0);
    EXPECT_EQ(std::tuple(destroyed.load(), sxBase::getNumPendingDeletions()),
              std::tuple(1, pending));
  }
  sxThread::enableAppThreadDeletion(false);
}

TEST(sxDeferredDeletion, LinksChangingWhileRequestsAreUnderWay) {
  Pipeline p;
  sxThread* a = p.chain(2, app());
  ASSERT_TRUE(a);
  sxThread *b = p.threads[1], *c = p.add();
  const int pending = sxBase::getNumPendingDeletions();
  std::atomic<int> destroyed{0};
  (new Probe(&destroyed))->unRef();  // counted with two links
  app()->processQueue(false);
  // A third link appears while the request sits in a's queue; one it would use goes.
  ASSERT_TRUE(p.link(a, c));
  a->processQueue(false);
  EXPECT_EQ(destroyed.load(), 0);
  ASSERT_TRUE(a->removeDownstreamThread(b));
  p.links.erase(std::find(p.links.begin(), p.links.end(), std::make_pair(a, b)));
  (new Probe(&destroyed))->unRef();  // counted with two links again
  for (sxThread* t : {app(), a, c}) t->processQueue(false);
  EXPECT_EQ(destroyed.load(), 1);  // the second is done; the first still sits with b
  b->processQueue(false);
  EXPECT_EQ(std::tuple(destroyed.load(), sxBase::getNumPendingDeletions()), std::tuple(2, pending));
}

TEST(sxDeferredDeletion, DiamondsDeadThreadsAndStrayChainsStillFreeEveryObject) {
  // app feeds a and b, both feed d (d's upstream is a); dead hangs below a; x feeds y
  // apart. Five links: a release counts -6, but only app, a, b and d pass the object.
  Pipeline p;
  sxThread *a = p.addBelow(app()), *b = p.addBelow(app());
  sxThread* d = p.addBelow(a);
  ASSERT_TRUE(a && b && d && p.link(b, d));
  sxThread *dead = p.addBelow(a), *x = p.chain(2);
  ASSERT_TRUE(dead && x);
  dead->kill();
  std::atomic<int> destroyed{0};
  Probe* obj = make<Probe>(&destroyed).get();  // released at once: on its way
  EXPECT_EQ(obj->getRefCount(), -1 - sxThread::getTotalNumDownstreamThreads());
  for (sxThread* t : {app(), a, b}) t->processQueue(false);
  EXPECT_EQ(d->processQueue(false), 1);  // once, from its upstream a
  EXPECT_EQ(destroyed.load(), 1);
  for (sxThread* t : p.threads) EXPECT_EQ(t->processQueue(true), 0);
}

// A thread released while linked dies on its own turn, also when it drops
// its last reference itself, and is never joined by a thread it waits for.
TEST(sxDeferredDeletion, AThreadReleasedWhileLinkedDiesOnItsOwnTurn) {
  const int threads = sxThread::getNum();
  sxRef<sxThread> w(new sxThread);
  ASSERT_TRUE(app()->addDownstreamThread(w.get()));
  w->run();
  w.reset();  // the last reference; the thread itself is the last to pass
  app()->processQueue(false);
  ASSERT_TRUE(waitUntil([&] { return sxThread::getNum() == threads; }));
  EXPECT_EQ(app()->getNumDownstreamThreads(), 0);
  // A worker that drops the last reference to itself from its own action.
  auto* self = new sxThread;
  self->ref();
  std::atomic<bool> handedOver{false};
  auto* once = new FunctionAction([&, done = false](sxBase*, sxEvent*) mutable {
    if (handedOver.load() && !std::exchange(done, true)) self->unRef();
  });
  self->addAction(once);
  self->run();
  handedOver.store(true);  // from here on only the worker uses the object
  EXPECT_TRUE(waitUntil([&] { return sxThread::getNum() == threads; }));
  // a feeds b; b is the last to pass a's release while a waits for b to flush.
  // Destroying a there would join a from b.
  Pipeline p;
  auto* a = new sxThread;
  a->ref();
  ASSERT_TRUE(app()->addDownstreamThread(a));
  sxThread* b = p.add();
  ASSERT_TRUE(a->addDownstreamThread(b));  // a takes this link along
  a->run();
  b->run();
  auto slow = make<FunctionAction>(
      [](sxBase*, sxEvent*) { std::this_thread::sleep_for(std::chrono::milliseconds(30)); });
  b->addActionToQueue(slow.get());  // keeps b busy while a's request arrives
  a->unRef();
  app()->processQueue(false);  // the request goes to a, then on to b
  withDeadline("flush while the thread's own deletion passes", [&] {
    a->flushQueue();
    while (app()->processQueue(true) > 0) {
    }
  });
  EXPECT_TRUE(waitUntil([&] { return sxThread::getNum() == threads + 1; }));
}

// Releases 100,000 objects while a chain of three downstream threads runs;
// some are released by the last thread of the chain itself.
void releaseUnderLoad(int objects, bool appThreadDeletion) {
  sxThread::enableAppThreadDeletion(appThreadDeletion);
  const int pending = sxBase::getNumPendingDeletions();
  std::vector<std::atomic<int>> destroyed(static_cast<size_t>(objects));
  std::vector<Probe*> probes;
  for (auto& d : destroyed) probes.emplace_back(new Probe(&d))->ref();
  // The last thread of the chain releases every fifth object as it loops.
  std::mutex handOver;
  std::vector<Probe*> forC;
  {
    Pipeline p;
    sxThread* a = p.chain(3, app());
    ASSERT_TRUE(a);
    sxThread* c = p.threads[2];
    auto* releaser = new FunctionAction([&](sxBase*, sxEvent*) {
      std::lock_guard<std::mutex> lock(handOver);
      for (int k = 0; k < 50 && !forC.empty(); ++k) {
        forC.back()->unRef();
        forC.pop_back();
      }
    });
    c->addAction(releaser);
    p.runAll();
    withDeadline("release under load", [&] {
      for (int i = 0; i < objects; ++i) {
        if (i % 5 == 4) {
          std::lock_guard<std::mutex> lock(handOver);
          forC.push_back(probes[size_t(i)]);
        } else {
          probes[size_t(i)]->unRef();
        }
        if (i % 1000 == 999) app()->processQueue(false);
      }
      // Carry everything through until the last thread has released its share and
      // every request has come back.
      while (true) {
        app()->processQueue(true);
        a->flushQueue();
        app()->processQueue(true);
        std::lock_guard<std::mutex> lock(handOver);
        if (forC.empty() && sxBase::getNumPendingDeletions() == pending) break;
      }
    });
  }
  sxThread::enableAppThreadDeletion(false);
  // Every object destroyed exactly once.
  EXPECT_EQ(std::ranges::count_if(destroyed, [](auto& d) { return d.load() != 1; }), 0);
  EXPECT_EQ(sxBase::getNumPendingDeletions(), pending);
}

TEST(sxDeferredDeletion, HundredThousandReleasesThroughAChainOfThree) {
  releaseUnderLoad(100000, false);
  releaseUnderLoad(20000, true);  // handed back to the application thread
}
}  // namespace
