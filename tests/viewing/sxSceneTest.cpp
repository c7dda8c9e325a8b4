#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "support/sxThroughFile.h"

// A node that writes what the scene calls on it into a shared log, and can
// register more nodes or take itself off while it is called.
class sxTestCalled : public sxGroup {
 public:
  SX_CLASS(sxTestCalled, sxGroup)
  sxTestCalled() = default;

  void updateDirect(sxScene* scene, bool first) override {
    *log += std::string(getName()) + (first ? "<" : ">");
    if (onCall) onCall(scene);
  }
  void update(sxTravContext* ctx) override {
    *log += std::string(getName()) + "u";
    sxGroup::update(ctx);
  }
  void applyDirect(sxCamera*, bool first) const override {
    *log += std::string(getName()) + (first ? "c<" : "c>");
  }

  std::string* log = nullptr;
  std::function<void(sxScene*)> onCall;
};
SX_DEFINE_CLASS(sxTestCalled, sxGroupType)

namespace {

// Appends its tag to the log when an event fires.
class Tag : public sxAction {
 public:
  Tag(std::string* log, const char* tag) : log(log), tag(tag) {}
  bool apply(sxBase*, sxEvent*) override {
    *log += tag;
    return true;
  }
  std::string* log;
  const char* tag;
};

sxRef<sxTestCalled> called(const char* name, std::string* log) {
  sxRef<sxTestCalled> n(new sxTestCalled);
  n->setName(name);
  n->log = log;
  return n;
}

}  // namespace

TEST(sxScene, FrameOrderAndDirectCallLists) {
  std::string log;
  sxRef<sxScene> scene(new sxScene);
  sxRef<sxTestCalled> a = called("a", &log), b = called("b", &log), c = called("c", &log);
  for (sxTestCalled* n : {a.get(), b.get(), c.get()}) scene->addChild(n);
  scene->getPreUpdateEvent()->addAction(new Tag(&log, "["));
  scene->getPostUpdateEvent()->addAction(new Tag(&log, "]"));

  // Unknown kinds and duplicates change nothing.
  scene->addDirectCall(sxScene::DIRECT_CALL(8), a.get());
  scene->addDirectCall(sxScene::DIRECT_CALL_UPDATE_FIRST, a.get());
  scene->addDirectCall(sxScene::DIRECT_CALL_UPDATE_FIRST, a.get());
  scene->removeDirectCall(sxScene::DIRECT_CALL(9), a.get());
  scene->addDirectCall(sxScene::DIRECT_CALL_UPDATE_LAST, b.get());
  scene->addDirectCall(sxScene::DIRECT_CALL_CAMERA_FIRST, c.get());
  EXPECT_EQ(scene->getDirectCalls(sxScene::DIRECT_CALL_UPDATE_FIRST).getNum(), 1);
  EXPECT_EQ(scene->getDirectCalls(8).getNum(), 0);

  // The first frame updates the freshly attached children; the second has
  // nothing to update but still fires the events and the lists.
  scene->update();
  EXPECT_EQ(log, "[a<aubucub>]");
  log.clear();
  scene->update();
  EXPECT_EQ(log, "[a<b>]");

  // A node that registers another behind itself gets it called in the same
  // frame; one that takes itself off does not make the next one skipped.
  a->onCall = [&](sxScene* s) {
    s->removeDirectCall(sxScene::DIRECT_CALL_UPDATE_FIRST, a.get());
    s->addDirectCall(sxScene::DIRECT_CALL_UPDATE_FIRST, c.get());
  };
  scene->addDirectCall(sxScene::DIRECT_CALL_UPDATE_FIRST, b.get());
  log.clear();
  scene->update();
  EXPECT_EQ(log, "[a<b<c<b>]");

  // The camera pass brackets its walk with the camera lists.
  sxRef<sxCamera> camera(new sxCamera);
  log.clear();
  camera->traverse(scene.get());
  EXPECT_EQ(log, "cc<");
}

TEST(sxScene, NodesLeavingTheGraphLeaveEveryList) {
  std::string log;
  sxRef<sxScene> scene(new sxScene);
  sxRef<sxGroup> holder(new sxGroup), inner(new sxGroup);
  sxRef<sxTestCalled> n = called("n", &log), m = called("m", &log);
  scene->addChild(holder.get());
  holder->addChild(inner.get());
  inner->addChild(n.get());
  scene->addChild(m.get());
  for (int kind = 0; kind < sxScene::numDirectCallKinds; ++kind) {
    scene->addDirectCall(sxScene::DIRECT_CALL(kind), n.get());
    scene->addDirectCall(sxScene::DIRECT_CALL(kind), m.get());
  }
  auto listed = [&](const sxGroup* g) {
    int found = 0;
    for (int kind = 0; kind < sxScene::numDirectCallKinds; ++kind)
      found += scene->getDirectCalls(kind).contains(const_cast<sxGroup*>(g));
    return found;
  };
  // An ancestor detached: n goes, m stays.
  holder->removeChild(inner.get());
  EXPECT_EQ(listed(n.get()), 0);
  EXPECT_EQ(listed(m.get()), 8);
  // Through a scene that is itself below a group, and by destruction of
  // the sub-graph: the raw pointer must be gone before the node is.
  sxRef<sxGroup> top(new sxGroup);
  top->addChild(scene.get());
  sxTestCalled* raw = m.get();
  m = nullptr;
  scene->removeChildren();
  EXPECT_EQ(listed(raw), 0);
  scene->update();
  EXPECT_EQ(log, "");
}

TEST(sxScene, StylesPushTheirTraitsInEveryPassAndKeepThemInFiles) {
  sxRef<sxScene> scene(new sxScene);
  sxRef<sxStyle> pruned(new sxStyle), open(new sxStyle);
  sxRef<sxPrune> prune(new sxPrune);
  prune->enable(true);
  sxRef<sxCull> cull(new sxCull);
  pruned->addTrait(prune.get());
  pruned->addTrait(cull.get());
  open->addTrait(cull.get());  // shared between two styles
  scene->addChild(pruned.get());
  scene->addChild(open.get());
  for (sxStyle* s : {pruned.get(), open.get()}) {
    sxRef<sxSphereFence> leaf(new sxSphereFence);
    s->addChild(leaf.get());
  }

  // The camera pass enters the open style only.
  auto visits = [](sxGroup* root) {
    sxRef<sxCamera> camera(new sxCamera);
    sxRef<sxStats> stats(new sxStats);
    camera->getTravContext()->setStats(stats.get());
    camera->traverse(root);
    return stats->getCount(static_cast<sxGroupType*>(sxStyle::getClassType()));
  };
  EXPECT_EQ(visits(scene.get()), 1);

  sxRef<sxScene> loaded = sxThroughFile<sxScene>(scene.get());
  ASSERT_TRUE(loaded && loaded->getNumChildren() == 2);
  auto* p = static_cast<sxStyle*>(loaded->getChild(0));
  auto* o = static_cast<sxStyle*>(loaded->getChild(1));
  ASSERT_EQ(p->getTravTraits().getNum(), 2);
  ASSERT_EQ(o->getTravTraits().getNum(), 1);
  EXPECT_EQ(p->getTravTraits()[1], o->getTravTraits()[0]);  // still one trait
  EXPECT_EQ(visits(loaded.get()), 1);
}

TEST(sxScene, AccessNestsAndAReaderCannotTurnWriter) {
  sxRef<sxScene> scene(new sxScene);
  scene->acquireForQuery();
  scene->acquireForQuery();
  EXPECT_FALSE(scene->acquireForMods());  // would wait for itself
  scene->releaseFromQuery();
  EXPECT_FALSE(scene->availableForMods());
  scene->releaseFromQuery();
  EXPECT_TRUE(scene->availableForMods());

  ASSERT_TRUE(scene->acquireForMods());
  ASSERT_TRUE(scene->acquireForMods());
  scene->acquireForQuery();  // the writer reads without waiting for itself
  scene->releaseFromQuery();
  scene->releaseFromMods();
  std::atomic<bool> readerIn{false};
  std::thread reader([&] {
    scene->acquireForQuery();
    readerIn = true;
    scene->releaseFromQuery();
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_FALSE(readerIn.load());  // still held once
  scene->releaseFromMods();
  reader.join();
  EXPECT_TRUE(readerIn.load());
  EXPECT_TRUE(scene->availableForMods());
}

// Readers walk the graph without pause while a writer edits it in pairs:
// the writer must get in each time within a bounded wait, and no reader
// may see half of a pair.
TEST(sxScene, WritersGetInPastBusyReadersWhoNeverSeeHalfAnEdit) {
  sxRef<sxScene> scene(new sxScene);
  sxRef<sxGroup> holder(new sxGroup);
  scene->addChild(holder.get());
  std::atomic<bool> stop{false};
  std::atomic<int> torn{0}, walks{0}, edits{0};
  std::atomic<long long> lastEdit{0};
  auto now = [] {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
  };
  lastEdit = now();
  std::thread watchdog([&] {
    while (!stop) {
      if (now() - lastEdit > 20000) {
        std::fprintf(stderr, "writer starved for 20 s\n");
        std::abort();
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
  });
  std::vector<std::thread> readers;
  for (int r = 0; r < 3; ++r)
    readers.emplace_back([&] {
      sxRef<sxTraverser> t(new sxTraverser);
      sxRef<sxTravContext> ctx(new sxTravContext);
      t->setTravContext(ctx.get());
      while (!stop) {
        scene->acquireForQuery();
        if (holder->getNumChildren() % 2) ++torn;
        t->traverse(scene.get());
        if (holder->getNumChildren() % 2) ++torn;
        scene->releaseFromQuery();
        ++walks;
      }
    });
  // The readers are busy before the writer starts (on a loaded machine
  // they may be slow to get going).
  while (walks.load() == 0) std::this_thread::yield();
  for (int i = 0; i < 300; ++i) {
    ASSERT_TRUE(scene->acquireForMods());
    if (holder->getNumChildren() >= 20) {
      holder->removeChildren();
    } else {
      sxRef<sxGroup> a(new sxGroup), b(new sxGroup);
      holder->addChild(a.get());
      std::this_thread::yield();
      holder->addChild(b.get());
    }
    scene->releaseFromMods();
    ++edits;
    lastEdit = now();
  }
  stop = true;
  for (std::thread& r : readers) r.join();
  watchdog.join();
  EXPECT_EQ(torn.load(), 0);
  EXPECT_EQ(edits.load(), 300);
  EXPECT_GT(walks.load(), 0);
}
