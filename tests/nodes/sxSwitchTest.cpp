#include <gtest/gtest.h>

#include <sx/sxCore.h>

#include <chrono>
#include <cmath>
#include <functional>
#include <limits>
#include <sstream>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "support/sxTestFiles.h"
#include "support/sxThroughFile.h"

namespace {

// What a camera pass handed to the leaves: name, transition mode and scale.
struct Seen {
  std::string name;
  int mode;
  float scale;
};
std::vector<Seen> seen;

// A leaf with a content bit, so that group passes go down to it, which
// notes each camera pass that reaches it.
struct Probe : sxGroup {
  Probe() { addTravFlags(0x0200); }
  Probe(const Probe& o) : sxGroup(o) { addTravFlags(0x0200); }
  void apply(sxCamera* camera) const override {
    const sxTravContext* ctx = camera->getTravContext();
    seen.push_back({getName(), ctx->getTransitionMode(), ctx->getTransitionScale()});
  }
  using sxGroup::apply;

 protected:
  void cleanUp(unsigned bits) override { sxGroup::cleanUp(bits & ~0x0200u); }
  sxGroup* copyGroup() const override { return newCopyOf(*this, false); }
  sxGroup* cloneGroup() const override { return newCopyOf(*this, true); }
};

template <class G = Probe>
G* make(const char* name) {
  G* g = new G;
  g->setName(name);
  return g;
}

// The children of a switch with their states: "A2 B0 C1".
std::string states(const sxSwitch* sw) {
  std::string out;
  for (int i = 0; i < sw->getNumChildren(); ++i)
    out += (i ? " " : "") + std::string(sw->getChild(i)->getName()) +
           std::to_string(sw->getChildState(i));
  return out;
}

// The leaves a camera pass over root reached, with mode and scale.
std::string cameraPass(sxCamera* camera, sxGroup* root) {
  seen.clear();
  camera->traverse(root);
  std::ostringstream out;
  for (const Seen& s : seen) out << s.name << ":" << s.mode << "/" << s.scale << " ";
  return out.str();
}

// A range switch over the probes A and B, with the default bands.
sxRangeSwitch* rangeAB() {
  sxRangeSwitch* sw = make<sxRangeSwitch>("R");
  sw->addChild(make("A"));
  sw->addChild(make("B"));
  return sw;
}

bool listed(sxScene* scene, sxGroup* node) {
  return scene->getDirectCalls(sxScene::DIRECT_CALL_UPDATE_FIRST).getIndex(node) >= 0;
}

// Frames until the switch's fade has run out, a millisecond apart.
void runOut(sxScene* scene, sxSwitch* sw) {
  for (int i = 0; i < 2000 && sw->isInTransition(); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    scene->update();
  }
}

// Every edit of a switch's children, the virtual ones and those that go
// round them, leaves the states with the children they belong to, while
// the switch is in a running scene. (replaceGraph and insertAbove take the
// slot as replace does, detach goes through removeChild.)
TEST(sxSwitch, StatesFollowTheChildrenThroughEveryEdit) {
  struct Case {
    const char* what;
    std::function<void(sxSwitch*, sxGroup* b, sxGroup* extra)> edit;
    const char* after;
  };
  const Case cases[] = {
      {"removeChild", [](sxSwitch* s, sxGroup* b, sxGroup*) { s->removeChild(b); }, "A2 C1 D0"},
      {"insertChild", [](sxSwitch* s, sxGroup*, sxGroup* x) { s->insertChild(1, x); },
       "A2 X0 B0 C1 D0"},
      {"addChild", [](sxSwitch* s, sxGroup*, sxGroup* x) { s->addChild(x); }, "A2 B0 C1 D0 X0"},
      {"remove (one grandchild takes the place)",
       [](sxSwitch*, sxGroup* b, sxGroup*) { b->remove(); }, "A2 Y0 C1 D0"},
      {"replace", [](sxSwitch*, sxGroup* b, sxGroup* x) { b->replace(x); }, "A2 X0 C1 D0"},
      {"insertBelow a child", [](sxSwitch*, sxGroup* b, sxGroup* x) { b->insertBelow(x); },
       "A2 B0 C1 D0"},
      {"insertBelow the switch", [](sxSwitch* s, sxGroup*, sxGroup* x) { s->insertBelow(x); },
       "X1"},
      {"removeChildren", [](sxSwitch* s, sxGroup*, sxGroup*) { s->removeChildren(); }, ""},
      {"destroyed elsewhere", [](sxSwitch*, sxGroup* b, sxGroup*) { b->unRef(); }, "A2 C1 D0"},
      {"removeChild of the first",
       [](sxSwitch* s, sxGroup*, sxGroup*) { s->removeChild(s->getChild(0)); }, "B0 C1 D0"},
  };
  sxRef<sxCamera> camera(new sxCamera);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    sxRef<sxScene> scene(new sxScene);
    sxSwitch* sw = make<sxSwitch>("S");
    scene->addChild(sw);
    for (const char* name : {"A", "B", "C", "D"}) sw->addChild(make(name));
    sw->getChild(1)->addChild(make("Y"));
    sw->selectChild(2, true);
    sw->enableTransition(true);
    sw->setTransitionTime(1000.0f);
    sw->selectChild(0, false);
    ASSERT_EQ(states(sw), "A2 B0 C1 D0");
    scene->update();
    ASSERT_TRUE(listed(scene.get(), sw));

    sxRef<sxGroup> extra(make("X"));
    c.edit(sw, sw->getChild(1), extra.get());
    EXPECT_EQ(states(sw), c.after);
    // The pass shows the children in the states they kept.
    scene->update();
    const std::string pass = cameraPass(camera.get(), scene.get());
    for (int i = 0; i < sw->getNumChildren(); ++i) {
      const std::string name = sw->getChild(i)->getName();
      EXPECT_EQ(pass.find(name + ":") != std::string::npos, sw->isActive(i)) << pass;
    }
  }
}

// Selection with and without transitions, and a fade run by the scene's
// frames: the children that go fade out while the new one fades in, until
// the time has run; a time of 0 switches at once and takes the switch off
// the scene's frame calls.
TEST(sxSwitch, TransitionsRunOnTheScenesClock) {
  sxRef<sxScene> scene(new sxScene);
  sxSwitch* sw = make<sxSwitch>("S");
  scene->addChild(sw);
  for (const char* name : {"A", "B", "C"}) sw->addChild(make(name));
  EXPECT_EQ(states(sw), "A1 B0 C0");
  EXPECT_FALSE(sw->selectChild(3) || sw->selectChild(-1, true) || sw->selectChild(3, true));
  EXPECT_TRUE(sw->selectChild(-1));
  EXPECT_EQ(states(sw), "A0 B0 C0");
  sw->selectChild(1);
  EXPECT_EQ(states(sw), "A0 B1 C0");
  scene->update();
  EXPECT_FALSE(listed(scene.get(), sw));

  sw->enableTransition(true);
  sw->setTransitionTime(1000.0f);
  scene->update();
  EXPECT_TRUE(listed(scene.get(), sw));
  sw->selectChild(2);
  EXPECT_EQ(states(sw), "A0 B2 C1");
  EXPECT_TRUE(sw->isActive(1));
  scene->update();  // starts the clock
  scene->update();
  ASSERT_TRUE(sw->isInTransition());
  const float p = sw->getTransitionProgress();
  EXPECT_GE(p, 0.0f);
  EXPECT_LT(p, 0.01f);
  sxRef<sxCamera> camera(new sxCamera);
  std::ostringstream fade;
  fade << "B:2/" << 1.0f - p << " C:1/" << p << " ";
  EXPECT_EQ(cameraPass(camera.get(), scene.get()), fade.str());

  // Turning a fading child back on ends the fade; turning on a child that
  // is off starts one.
  sw->selectChild(1, true);
  EXPECT_EQ(states(sw), "A0 B1 C1");
  EXPECT_FALSE(sw->isInTransition());
  sw->selectChild(0, true);
  EXPECT_TRUE(sw->isInTransition());
  sw->selectChild(1, false);
  EXPECT_EQ(states(sw), "A1 B2 C1");

  sw->setTransitionTime(0.001f);
  runOut(scene.get(), sw);
  EXPECT_FALSE(sw->isInTransition());
  EXPECT_EQ(sw->getTransitionProgress(), 1.0f);
  EXPECT_EQ(states(sw), "A1 B0 C1");
  EXPECT_EQ(cameraPass(camera.get(), scene.get()), "A:0/1 C:0/1 ");

  sw->selectChild(1);
  sw->setTransitionTime(0.0f);
  EXPECT_FALSE(sw->isTransitionEnabled());
  EXPECT_EQ(states(sw), "A0 B1 C0");
  scene->update();
  EXPECT_FALSE(listed(scene.get(), sw));
  sw->selectChild(2);
  EXPECT_EQ(states(sw), "A0 B0 C1");
}

// Frame stepping through the scene's frames, and what removing children
// does to the sequence.
TEST(sxAutoSwitch, StepsByFramesAndStopsWhenItsChildGoes) {
  struct Case {
    sxIterator::CYCLE cycle;
    sxIterator::DIRECTION direction;
    int longChild;  // lasts two frames; -1 for none
    const char* steps;
  };
  const Case cases[] = {
      // The cycles themselves are the iterator's (containers/sxIterator).
      {sxIterator::SWING, sxIterator::BACKWARD, -1, "2101210"},
      {sxIterator::ONCE, sxIterator::FORWARD, -1, "0122222"},
      {sxIterator::LOOP, sxIterator::FORWARD, 1, "0112011"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.steps);
    sxRef<sxScene> scene(new sxScene);
    sxAutoSwitch* sw = make<sxAutoSwitch>("S");
    scene->addChild(sw);
    for (const char* name : {"A", "B", "C"}) sw->addChild(make(name));
    sw->setMode(sxIterator::FRAMES);
    sw->setDirection(c.direction);
    sw->setCycle(c.cycle);
    if (c.longChild >= 0) sw->setChildFrameCount(c.longChild, 2);
    scene->update();  // the update pass puts the switch on the frame calls
    std::string steps;
    for (int frame = 0; frame < 7; ++frame) {
      scene->update();
      int on = -1;
      for (int i = 0; i < 3; ++i)
        if (sw->getChildState(i) == sxSwitch::CHILD_ON) on = on < 0 ? i : 9;
      steps += std::to_string(on);
    }
    EXPECT_EQ(steps, c.steps);
  }

  sxRef<sxScene> scene(new sxScene);
  sxAutoSwitch* sw = make<sxAutoSwitch>("S");
  scene->addChild(sw);
  for (const char* name : {"A", "B", "C", "D"}) sw->addChild(make(name));
  sw->setMode(sxIterator::FRAMES);
  sw->setChildFrameCount(1);
  for (int frame = 0; frame < 4; ++frame) scene->update();
  ASSERT_EQ(sw->getCurrentChild(), 2);
  // A child before the current one: the sequence stays on C, and keeps
  // its length of four.
  sw->removeChild(sw->getChild(0));
  EXPECT_EQ(sw->getCurrentChild(), 1);
  EXPECT_STREQ(sw->getChild(1)->getName(), "C");
  EXPECT_TRUE(sw->isEnabled());
  scene->update();
  EXPECT_EQ(states(sw), "B0 C0 D1");
  scene->update();
  EXPECT_EQ(sw->getCurrentChild(), 3);  // past the children: nothing new selected
  EXPECT_EQ(states(sw), "B0 C0 D1");
  scene->update();
  EXPECT_EQ(states(sw), "B1 C0 D0");
  // The current child: the switch stops and shows nothing.
  sw->removeChild(sw->getChild(0));
  EXPECT_FALSE(sw->isEnabled());
  scene->update();
  EXPECT_EQ(states(sw), "C0 D0");
  sw->selectChild(1);
  sxRef<sxCamera> camera(new sxCamera);
  EXPECT_EQ(cameraPass(camera.get(), scene.get()), "");
  sw->enable(true);
  EXPECT_EQ(cameraPass(camera.get(), scene.get()), "D:0/1 ");
}

// The child a range switch shows at a distance, and the blend of a zone,
// as a camera pass hands them on.
TEST(sxRangeSwitch, PicksTheBandByDistance) {
  struct Case {
    float distance;
    bool transitions;
    float scale;
    std::function<void(sxRangeSwitch*)> setup;
    std::vector<Seen> shown;
  };
  const Seen a{"A", 0, 1.0f}, b{"B", 0, 1.0f};
  // Fading out with 1 - factor, and in with factor.
  auto out = [](const char* name, float f) { return Seen{name, 2, 1.0f - f}; };
  auto in = [](const char* name, float f) { return Seen{name, 1, f}; };
  const Case cases[] = {
      {999.0f, false, 1.0f, {}, {a}},
      {1500.0f, false, 1.0f, {}, {b}},
      {2500.0f, false, 1.0f, {}, {}},
      {750.0f, false, 2.0f, {}, {b}},
      {900.0f, true, 1.0f, {}, {a}},
      // The upper zone of the first band, with its blend factor of 0.0004.
      {990.0f, true, 1.0f, {}, {out("A", 0.016f), in("B", 0.016f)}},
      // The lower zone of the second band blends with the first's factor.
      {1020.0f, true, 1.0f, {}, {out("A", 0.028f), in("B", 0.028f)}},
      // Past the last band: fading out.
      {2030.0f, true, 1.0f, {}, {out("B", 0.8f)}},
      {2060.0f, true, 1.0f, {}, {}},
      // No blend zone.
      {995.0f, true, 1.0f, [](sxRangeSwitch* s) { EXPECT_TRUE(s->setTransition(0, 0.0f)); }, {a}},
  };
  sxRef<sxCamera> camera(new sxCamera);
  sxTravContext* ctx = camera->getTravContext();
  for (const Case& c : cases) {
    SCOPED_TRACE(c.distance);
    sxRef<sxRangeSwitch> sw(rangeAB());
    sw->enableTransition(c.transitions);
    if (c.setup) c.setup(sw.get());
    sxMatrix at;
    at.postTrans(0.0f, c.distance, 0.0f);
    camera->setMatrix(at);
    ctx->reset();
    ctx->setViewpoint(&camera->getViewpoint());
    ctx->setRangeSwitchScale(c.scale);
    seen.clear();
    sw->apply(camera.get());
    ASSERT_EQ(seen.size(), c.shown.size());
    for (std::size_t i = 0; i < seen.size(); ++i) {
      EXPECT_EQ(seen[i].name, c.shown[i].name);
      EXPECT_EQ(seen[i].mode, c.shown[i].mode);
      // Lengths go through the library's square root, which may round.
      EXPECT_NEAR(seen[i].scale, c.shown[i].scale, 2e-3f);
    }
  }
  // Refused values change nothing.
  sxRef<sxRangeSwitch> sw(rangeAB());
  for (float bad :
       {-1.0f, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
    EXPECT_FALSE(sw->setRange(1, bad));
    EXPECT_FALSE(sw->setTransition(1, bad));
  }
  EXPECT_FALSE(sw->setRange(2, 10.0f) || sw->setRange(-1, 10.0f) || sw->setTransition(2, 10.0f));
  EXPECT_EQ(sw->getRange(1), 2000.0f);
  EXPECT_EQ(sw->getTransition(1), 50.0f);
}

// Traversers see only the near band's child, entered without preApply,
// and never the switch itself; without a viewpoint the switch is a group.
TEST(sxRangeSwitch, TraversersVisitTheNearBandOnly) {
  struct Visits : sxTraverser {
    TRAV_STATE preApply(sxGroup* g) override {
      pre += g->getName();
      return TRAV_CONTINUE;
    }
    TRAV_STATE apply(sxGroup* g) override {
      applied += g->getName();
      return TRAV_CONTINUE;
    }
    std::string pre, applied;
  };
  sxRef<sxGroup> root(make<sxGroup>("G"));
  sxRangeSwitch* sw = rangeAB();
  root->addChild(sw);
  sw->setCenter(sxVec3(0.0f, 1000.0f, 0.0f));
  sxRef<Visits> t(new Visits);
  sxRef<sxTravContext> ctx(new sxTravContext);
  t->setTravContext(ctx.get());
  t->traverse(root.get());
  EXPECT_EQ(t->applied, "GRAB");

  // 1500 from the centre: the second band; 1030, in the blend zone of the
  // two: the first band's child alone.
  for (auto [transitions, y, shown] :
       {std::tuple{false, -500.0f, "GB"}, std::tuple{true, -30.0f, "GA"}}) {
    SCOPED_TRACE(shown);
    sxViewpoint vp;
    sxMatrix at;
    at.postTrans(0.0f, y, 0.0f);
    vp.setMatrix(at);
    sw->enableTransition(transitions);
    t->pre.clear();
    t->applied.clear();
    ctx->reset();
    ctx->setViewpoint(&vp);
    root->apply(t.get(), false);
    EXPECT_EQ(t->applied, shown);
    EXPECT_EQ(t->pre, "GR");
    EXPECT_EQ(ctx->getTravStack()->getID(), 0u);
  }
}

// Everything a switch kind keeps, for comparing copies and files.
std::string describe(const sxGroup* g, bool perChildDurations) {
  std::ostringstream out;
  out << g->getType()->getName() << "[";
  if (const auto* sw = dynamic_cast<const sxSwitch*>(g)) {
    out << states(sw) << " t" << sw->isTransitionEnabled() << sw->isInTransition() << " "
        << sw->getTransitionTime() << " " << sw->getTransitionProgress();
  }
  if (const auto* a = dynamic_cast<const sxAutoSwitch*>(g)) {
    out << " e" << a->isEnabled() << a->isPaused() << a->getMode() << a->getDirection()
        << a->getCycle() << " at" << a->getCurrentChild() << " f" << a->getFrameCount();
    for (int i = 0; perChildDurations && i < a->getNumChildren(); ++i)
      out << "," << a->getChildFrameCount(i);
  }
  if (const auto* r = dynamic_cast<const sxRangeSwitch*>(g)) {
    out << " r" << r->isTransitionEnabled();
    for (int i = 0; i < r->getNumChildren(); ++i)
      out << " " << r->getRange(i) << "/" << r->getTransition(i);
    const sxVec3& c = r->getCenter();
    out << " c" << c.x << "," << c.y << "," << c.z;
  }
  for (int i = 0; i < g->getNumChildren(); ++i) out << describe(g->getChild(i), perChildDurations);
  return out.str() + "]";
}

// States, fades, sequences and range records survive copies, clones and
// a file.
TEST(sxSwitch, CopiesAndFilesKeepWhatTheSwitchesHold) {
  sxRef<sxGroup> root(make<sxGroup>("root"));
  sxSwitch* sw = make<sxSwitch>("S");
  root->addChild(sw);
  for (const char* name : {"A", "B", "C"}) sw->addChild(make<sxGroup>(name));
  sw->enableTransition(true);
  sw->setTransitionTime(2.5f);
  sw->selectChild(2);

  sxAutoSwitch* autoSw = make<sxAutoSwitch>("T");
  root->addChild(autoSw);
  for (const char* name : {"A", "B", "C"}) autoSw->addChild(make<sxGroup>(name));
  autoSw->setMode(sxIterator::FRAMES);
  autoSw->setCycle(sxIterator::SWING);
  autoSw->setChildFrameCount(3);
  autoSw->pause();
  autoSw->enable(false);

  sxRangeSwitch* range = make<sxRangeSwitch>("R");
  root->addChild(range);
  for (const char* name : {"A", "B", "C"}) range->addChild(make<sxGroup>(name));
  range->setRange(1, 1800.0f);
  range->setTransition(2, 0.0f);
  range->setCenter(sxVec3(1.0f, 2.0f, 3.0f));
  range->enableTransition(true);

  const std::string before = describe(root.get(), false);
  EXPECT_NE(before.find("A2 B0 C1 t11"), std::string::npos) << before;
  sxRef<sxGroup> copy(root->makeCopy());
  sxRef<sxGroup> clone(root->makeClone());
  EXPECT_EQ(describe(copy.get(), false), before);
  EXPECT_EQ(describe(clone.get(), false), before);

  // Per-child durations go with copies (files refill them from the totals).
  autoSw->setChildFrameCount(1, 7);
  sxRef<sxGroup> again(root->makeCopy());
  EXPECT_EQ(describe(again.get(), true), describe(root.get(), true));

  sxRef<sxGroup> loaded = sxThroughFile<sxGroup>(root.get());
  ASSERT_TRUE(loaded);
  EXPECT_EQ(describe(loaded.get(), false), before);
}

// Range-switch records written by hand: counts that do not match the
// children, counts below zero or past the data, and numbers that are no
// lengths, times or states.
TEST(sxRangeSwitch, HostileRecordsLeaveTheChildrenAligned) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  // The centre's x is written as time + 1.
  struct Case {
    const char* what;
    int stateCount;
    std::vector<int> stateBytes;
    float time;
    int rangeCount;
    std::vector<float> records;
    const char* expected;
  };
  const std::vector<float> three = {10, 5, 0.1f, 20, 5, 0.1f, 30, 5, 0.1f};
  const Case cases[] = {
      {"more than the children", 4, {0, 1, 1, 1}, 3, 3, three, "A0 B1 t3 10/5 20/5 c4"},
      {"fewer than the children", 1, {0}, 3, 1, {10, 5, 0.1f}, "A0 B0 t3 10/5 2000/50 c4"},
      {"negative counts", -5, {}, 3, -7, {}, "A1 B0 t3 1000/50 2000/50 c4"},
      {"no numbers", 2, {7, 6}, nan, 2, {nan, -1, nan, -5, nan, 1}, "A1 B0 t0 1000/50 2000/50 c0"},
      {"counts past the data", 1 << 30, {1}, 3, 0, {}, nullptr},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    sxRef<sxBase> loaded = sxImportWritten([&](sxFile& f) {
      sxEntry* e = sxWriteGroup(f, "sxRangeSwitch", "R", {1, 2});
      e->writeInt(c.stateCount);
      for (int b : c.stateBytes) e->writeByte(static_cast<unsigned char>(b));
      e->writeInt(0x3);  // a fade running
      e->writeFloat(nan);
      e->writeFloat(-nan);
      e->writeFloat(c.time);
      e->writeInt(c.rangeCount);
      for (float v : c.records) e->writeFloat(v);
      e->writeInt(1);
      for (float v : {c.time + 1, 0.0f, 0.0f}) e->writeFloat(v);
      e->writeInt(1);
      for (const char* name : {"A", "B"}) sxWriteGroup(f, "sxGroup", name);
    });
    ASSERT_TRUE(loaded && loaded->isOfType(sxRangeSwitch::getClassType()));
    auto* r = static_cast<sxRangeSwitch*>(loaded.get());
    ASSERT_EQ(r->getNumChildren(), 2);
    // The states stay states, the times and ranges numbers.
    EXPECT_TRUE(r->getTransitionProgress() >= 0.0f && r->getTransitionProgress() <= 1.0f);
    for (int i = 0; i < 2; ++i) {
      EXPECT_LE(int(r->getChildState(i)), 2);
      EXPECT_TRUE(std::isfinite(r->getRange(i)) && r->getRange(i) >= 0.0f);
    }
    if (!c.expected) continue;
    std::ostringstream got;
    got << states(r) << " t" << (r->sxSwitch::isTransitionEnabled() ? r->getTransitionTime() : 0);
    for (int i = 0; i < 2; ++i) got << " " << r->getRange(i) << "/" << r->getTransition(i);
    got << " c" << r->getCenter().x;
    EXPECT_EQ(got.str(), c.expected);
    // A running scene gets the switch on its clock without trouble.
    sxRef<sxScene> scene(new sxScene);
    scene->addChild(r);
    scene->update();
    scene->update();
  }
}

}  // namespace
