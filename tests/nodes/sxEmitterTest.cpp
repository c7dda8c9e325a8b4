#include <gtest/gtest.h>

#include <sx/sxCore.h>

#include <cmath>
#include <functional>
#include <limits>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "support/sxTestFiles.h"
#include "support/sxThroughFile.h"

namespace {

constexpr unsigned playingBit = sxEmitter::TRAV_FLAG_PLAYING;

// An audio back end that writes down what it is handed. By default it keeps
// data for every emitter it outputs and takes its parameters, as a real
// back end does.
struct RecordingListener : sxListener {
  std::vector<std::string> calls;
  std::vector<sxVec3> positions;
  std::vector<float> levels;  // the level scale at each output
  float levelScale = 1.0f;
  float priorityScale = 1.0f;
  bool keepsData = true;
  int data = 0;

  void note(const std::string& what, double v) {
    std::ostringstream out;
    out << what << ":" << v;
    calls.push_back(out.str());
  }
  void setWave(sxEmitter*, const char* n) override {
    calls.push_back(std::string("wave:") + (n ? n : "-"));
  }
  void setLooping(sxEmitter*, bool v) override { note("loop", v); }
  void setMinDistance(sxEmitter*, float v) override { note("min", v); }
  void setMaxDistance(sxEmitter*, float v) override { note("max", v); }
  void setAudioLevel(sxEmitter*, float v) override { note("level", v); }
  void setPriority(sxEmitter*, float v) override { note("prio", v); }
  void setPitch(sxEmitter*, float v) override { note("pitch", v); }
  void setPan(sxEmitter*, float v) override { note("pan", v); }
  void setDoppler(sxEmitter*, bool v) override { note("doppler", v); }
  void setAudioLevelScale(float s) override { levelScale = s; }
  void setPriorityScale(float s) override { priorityScale = s; }
  void outputEmitter(sxEmitter* e, const sxVec3& at) override {
    calls.push_back("out");
    positions.push_back(at);
    levels.push_back(levelScale);
    if (keepsData) setEmitterData(e, &data);
    hasBeenUpdated(e);
  }
  std::vector<std::string> take() { return std::exchange(calls, {}); }

  using sxListener::getEmitterData;
  using sxListener::hasBeenUpdated;
  using sxListener::hasStopped;
};

// Moves what lies below it in the listener pass, as a transform does.
struct Shift : sxGroup {
  sxMatrix m;
  explicit Shift(const sxVec3& by) { m.makeXYZ(by); }
  void apply(sxListener* l) const override {
    l->getTravContext()->pushMultMatrix(m);
    sxGroup::apply(l);
    l->getTravContext()->popMatrix();
  }
  using sxGroup::apply;
};

// Runs a function from the scene's update, after the update pass.
struct LateCall : sxGroup {
  std::function<void()> fn;
  void updateDirect(sxScene*, bool) override { fn(); }
};

bool listed(const sxScene* s, const sxEmitter* e) {
  return s->getPlayList().contains(const_cast<sxEmitter*>(e));
}

const std::vector<std::string> allParameters = {"wave:boom", "loop:0", "min:1",   "max:100",
                                                "level:1",   "prio:1", "pitch:1", "pan:0",
                                                "doppler:0", "out"};

}  // namespace

TEST(sxEmitter, PlayingStopsChangesAndClampsFollowTheirRules) {
  sxRef<sxEmitter> e(new sxEmitter);
  EXPECT_TRUE(e->isPositionable() && !e->isPlaying());
  EXPECT_EQ(e->getTravFlags() & 0x4400u, 0x0400u);
  // The level is clamped; a NaN is silence.
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (auto [in, out] : {std::pair{1.5f, 1.0f}, {-1.0f, 0.0f}, {0.25f, 0.25f}, {nan, 0.0f}}) {
    e->setAudioLevel(in);
    EXPECT_EQ(e->getAudioLevel(), out) << in;
  }
  // Each parameter setter marks a change, only when the value changes.
  const std::vector<std::pair<const char*, std::function<void(sxEmitter*, bool)>>> setters = {
      {"wave", [](sxEmitter* x, bool b) { x->setWaveName(b ? "a" : nullptr); }},
      {"loop", [](sxEmitter* x, bool b) { x->enableLooping(b); }},
      {"min", [](sxEmitter* x, bool b) { x->setMinDistance(b ? 2.0f : 1.0f); }},
      {"max", [](sxEmitter* x, bool b) { x->setMaxDistance(b ? 50.0f : 100.0f); }},
      {"level", [](sxEmitter* x, bool b) { x->setAudioLevel(b ? 0.5f : 1.0f); }},
      {"prio", [](sxEmitter* x, bool b) { x->setPriority(b ? 3.0f : 1.0f); }},
      {"pitch", [](sxEmitter* x, bool b) { x->setPitch(b ? 2.0f : 1.0f); }},
      {"pan", [](sxEmitter* x, bool b) { x->setPan(b ? -1.0f : 0.0f); }},
      {"doppler", [](sxEmitter* x, bool b) { x->enableDoppler(b); }}};
  for (const auto& [name, set] : setters) {
    sxRef<sxEmitter> x(new sxEmitter);
    set(x.get(), false);
    EXPECT_EQ(x->getEmitterFlags() & sxEmitter::EMITTER_CHANGED, 0u) << name;
    set(x.get(), true);
    EXPECT_NE(x->getEmitterFlags() & sxEmitter::EMITTER_CHANGED, 0u) << name;
  }
  // play twice and stop twice: the second call changes nothing, and the
  // parents follow the playing bit.
  sxRef<sxGroup> root(new sxGroup), mid(new sxGroup);
  root->addChild(mid.get());
  mid->addChild(e.get());
  for (int i = 0; i < 2; ++i) {
    e->play();
    EXPECT_EQ(e->getEmitterFlags(), 0xDu);
    EXPECT_TRUE(e->isPlaying() && root->anyTravFlags(playingBit) && e->anyTravFlags(playingBit));
  }
  RecordingListener::hasBeenUpdated(e.get());
  e->play();
  EXPECT_EQ(e->getEmitterFlags(), 0xCu) << "a second play marks nothing";
  for (int i = 0; i < 2; ++i) {
    e->stop();
    EXPECT_EQ(e->getEmitterFlags(), 0x8u);
    EXPECT_FALSE(root->anyTravFlags(playingBit) || e->anyTravFlags(playingBit));
    EXPECT_TRUE(e->anyTravFlags(0x0400) && root->anyTravFlags(0x0400));
  }
  // A playing parent emitter keeps its bits when a playing child stops.
  sxRef<sxEmitter> child(new sxEmitter);
  e->addChild(child.get());
  e->play();
  child->play();
  child->stop();
  EXPECT_TRUE(e->anyTravFlags(playingBit) && root->anyTravFlags(playingBit));
  e->removeChild(child.get());
  EXPECT_TRUE(e->anyTravFlags(0x0400));
}

TEST(sxEmitter, PlayListFollowsTheUpdatesAndNeverOutlivesTheEmitter) {
  sxRef<sxScene> scene(new sxScene);
  sxRef<sxGroup> a(new sxGroup);
  sxRef<sxEmitter> e(new sxEmitter);
  scene->addChild(a.get());
  a->addChild(e.get());
  RecordingListener l;
  e->play();
  EXPECT_FALSE(listed(scene.get(), e.get())) << "entered by the update pass";
  scene->update();
  EXPECT_TRUE(listed(scene.get(), e.get()));
  scene->update();
  EXPECT_EQ(scene->getPlayList().getNum(), 1);
  e->stop();
  scene->update();
  EXPECT_FALSE(listed(scene.get(), e.get()));
  // A wave that ended leaves the list with the next frame.
  e->play();
  scene->update();
  l.traverse(scene.get());
  EXPECT_EQ(l.getEmitterData(e.get()), &l.data);
  RecordingListener::hasStopped(e.get());
  EXPECT_FALSE(e->isPlaying());
  EXPECT_EQ(l.getEmitterData(e.get()), nullptr);
  scene->update();
  EXPECT_FALSE(listed(scene.get(), e.get()));

  // Removing an ancestor takes the emitter off the list; it still plays and
  // is listed again when the ancestor comes back.
  e->play();
  scene->update();
  l.traverse(scene.get());
  scene->removeChild(a.get());
  EXPECT_TRUE(!listed(scene.get(), e.get()) && e->isPlaying());
  EXPECT_EQ(l.getEmitterData(e.get()), &l.data);
  scene->addChild(a.get());
  scene->update();
  EXPECT_TRUE(listed(scene.get(), e.get()));

  // A shared emitter that loses one path stays listed through the other.
  sxRef<sxGroup> b(new sxGroup);
  scene->addChild(b.get());
  b->addChild(e.get());
  a->removeChild(e.get());
  scene->update();
  EXPECT_TRUE(listed(scene.get(), e.get()) && e->isPlaying());

  // Removing the last parent stops it and clears the listener's data.
  l.traverse(scene.get());
  b->removeChild(e.get());
  EXPECT_FALSE(listed(scene.get(), e.get()) || e->isPlaying() || e->anyTravFlags(playingBit) ||
               scene->anyTravFlags(playingBit));
  EXPECT_EQ(l.getEmitterData(e.get()), nullptr);

  // Sub-graphs destroyed while the scene runs, whether the emitter or an
  // ancestor goes: under AddressSanitizer a dangling entry is an error.
  for (bool ancestor : {false, true}) {
    auto* holder = new sxGroup;  // owned by the scene
    auto* doomed = new sxEmitter;
    holder->addChild(doomed);
    scene->addChild(holder);
    doomed->play();
    scene->update();
    ASSERT_TRUE(listed(scene.get(), doomed));
    sxRef<LateCall> late(new LateCall);
    late->fn = [&] { ancestor ? scene->removeChild(holder) : holder->removeChild(doomed); };
    scene->addChild(late.get());
    scene->addDirectCall(sxScene::DIRECT_CALL_UPDATE_LAST, late.get());
    scene->update();
    scene->removeChild(late.get());
    if (!ancestor) scene->removeChild(holder);
    EXPECT_EQ(scene->getPlayList().getNum(), 0) << ancestor;
    scene->update();
    l.traverse(scene.get());
  }
  // A scene destroyed with a playing emitter below leaves it intact.
  sxRef<sxEmitter> survivor(new sxEmitter);
  {
    sxRef<sxScene> brief(new sxScene);
    brief->addChild(survivor.get());
    survivor->play();
    brief->update();
  }
  EXPECT_TRUE(survivor->getNumParents() == 0 && !survivor->isPlaying());
}

TEST(sxEmitter, ListenerGetsParametersOnlyAfterTheyChangedAndOutputEveryPass) {
  sxRef<sxScene> scene(new sxScene);
  sxRef<Shift> shift(new Shift(sxVec3(10.0f, 0.0f, 0.0f)));
  sxRef<sxEmitter> e(new sxEmitter);
  scene->addChild(shift.get());
  shift->addChild(e.get());
  e->setWaveName("boom");
  e->setXYZ(1.0f, 2.0f, 3.0f);
  RecordingListener l;
  auto pass = [&] {
    l.traverse(scene.get());
    return l.take();
  };
  const std::vector<std::string> out = {"out"};
  EXPECT_TRUE(pass().empty()) << "not playing";
  e->play();
  // A listener that keeps no data gets the parameters on every pass.
  RecordingListener forgetful;
  forgetful.keepsData = false;
  for (int i = 0; i < 2; ++i) {
    forgetful.traverse(scene.get());
    EXPECT_EQ(forgetful.take(), allParameters);
  }
  EXPECT_EQ(pass(), allParameters);
  ASSERT_EQ(l.positions.size(), 1u);
  EXPECT_EQ(l.positions[0], sxVec3(11.0f, 2.0f, 3.0f));
  EXPECT_EQ(pass(), out);
  e->setPitch(1.0f);  // no change
  e->setXYZ(0.0f, 0.0f, 0.0f);
  EXPECT_EQ(pass(), out);
  EXPECT_EQ(l.positions.back(), sxVec3(10.0f, 0.0f, 0.0f));
  e->setPitch(2.0f);
  std::vector<std::string> changed = allParameters;
  changed[6] = "pitch:2";
  EXPECT_EQ(pass(), changed);
  // Not positionable: the position is handed over untransformed.
  e->enablePositionable(false);
  e->setXYZ(1.0f, 1.0f, 1.0f);
  EXPECT_EQ(pass(), out);
  EXPECT_EQ(l.positions.back(), sxVec3(1.0f, 1.0f, 1.0f));
  // A stopped emitter is silent; a replay sends everything again.
  e->stop();
  EXPECT_TRUE(pass().empty());
  e->play();
  EXPECT_EQ(pass().size(), allParameters.size());

  // Audio traits reach the scale setters; a pruning trait silences all.
  sxRef<sxAudioLevelScale> level(new sxAudioLevelScale);
  level->set(0.25f);
  EXPECT_TRUE(l.addTrait(level.get()) && !l.addTrait(level.get()));
  EXPECT_EQ(pass(), out);
  EXPECT_EQ(l.levelScale, 0.25f);
  EXPECT_TRUE(l.removeTrait(level.get()) && !l.removeTrait(level.get()));
  pass();
  EXPECT_EQ(l.levelScale, 1.0f) << "the default scale again";
  sxRef<sxPrune> prune(new sxPrune);
  prune->enable(true);
  l.addTrait(prune.get());
  l.addTrait(level.get());
  EXPECT_TRUE(pass().empty());
  EXPECT_EQ(l.levelScale, 1.0f) << "pruned: audio traits are not pushed";

  // A style's audio trait governs the emitters below it, and only those.
  l.removeTrait(prune.get());
  sxRef<sxStyle> loud(new sxStyle);
  sxRef<sxEmitter> other(new sxEmitter);
  sxRef<sxAudioLevelScale> half(new sxAudioLevelScale);
  half->set(0.5f);
  loud->addTrait(half.get());
  scene->addChild(loud.get());
  loud->addChild(other.get());
  other->play();
  l.levels.clear();
  l.traverse(scene.get());
  EXPECT_EQ(l.levels, (std::vector<float>{0.25f, 0.5f}));
}

TEST(sxEmitter, EmittersAndListenersSurviveFilesAndCopies) {
  sxRef<sxGroup> root(new sxGroup);
  sxRef<sxEmitter> e(new sxEmitter);
  root->addChild(e.get());
  e->setWaveName("rain");
  e->setXYZ(1.0f, -2.0f, 3.5f);
  e->setMinDistance(2.0f);
  e->setMaxDistance(40.0f);
  e->setAudioLevel(0.5f);
  e->setPriority(7.0f);
  e->setPitch(1.5f);
  e->setPan(-0.25f);
  e->enableLooping(true);
  e->enableDoppler(true);
  e->enablePositionable(false);
  e->play();
  auto same = [&](const sxEmitter* x) {
    EXPECT_EQ(std::tuple(std::string(x->getWaveName()), x->getXYZ(), x->getMinDistance(),
                         x->getMaxDistance(), x->getAudioLevel(), x->getPriority(), x->getPitch(),
                         x->getPan()),
              std::tuple("rain", sxVec3(1.0f, -2.0f, 3.5f), 2.0f, 40.0f, 0.5f, 7.0f, 1.5f, -0.25f));
    EXPECT_TRUE(x->isLoopingEnabled() && x->isDopplerEnabled() && x->isPlaying() &&
                !x->isPositionable() && x->anyTravFlags(0x0400) && x->anyTravFlags(playingBit));
  };
  sxRef<sxGroup> loaded = sxThroughFile<sxGroup>(root.get());
  ASSERT_TRUE(loaded);
  sxGroup* g = loaded.get();
  ASSERT_EQ(g->getNumChildren(), 1);
  ASSERT_TRUE(g->getChild(0)->isOfType(sxEmitter::getClassType()));
  auto* back = static_cast<sxEmitter*>(g->getChild(0));
  same(back);
  // The loaded emitter plays in a scene at once.
  sxRef<sxScene> scene(new sxScene);
  scene->addChild(g);
  scene->update();
  EXPECT_TRUE(listed(scene.get(), back));
  // Copies and clones carry the fields but not the listener's data.
  RecordingListener l;
  l.traverse(scene.get());
  for (sxGroup* made : {g->makeCopy(), g->makeClone()}) {
    sxRef<sxGroup> keep(made);
    ASSERT_EQ(made->getNumChildren(), 1);
    auto* c = static_cast<sxEmitter*>(made->getChild(0));
    ASSERT_NE(c, back);
    same(c);
    EXPECT_EQ(l.getEmitterData(c), nullptr);
  }

  // The listener: audio references are bounded by the traversal-trait
  // count, so with more audio traits than traversal traits the extra ones
  // are not saved.
  for (int numAudio : {1, 3}) {
    sxRef<sxListener> lis(new sxListener);
    sxMatrix m;
    m.makeHPR(0.0f, 30.0f, 0.0f);
    m.setXYZ(4.0f, 5.0f, 6.0f);
    lis->setMatrix(m);
    EXPECT_EQ(lis->getXYZ(), sxVec3(4.0f, 5.0f, 6.0f));
    EXPECT_NEAR(lis->getHPR().y, 30.0f, 1e-3f);
    lis->setXYZ(3.0f, 4.0f, 5.0f);
    lis->setHPR(45.0f, 10.0f, 0.0f);
    EXPECT_EQ(lis->getViewpoint().getPosition(), sxVec3(3.0f, 4.0f, 5.0f)) << "setHPR keeps it";
    sxRef<sxCull> cull(new sxCull);
    cull->setMask(0x0100);
    sxRef<sxPrune> prune(new sxPrune);
    lis->addTrait(cull.get());
    lis->addTrait(prune.get());
    for (int i = 0; i < numAudio; ++i) {
      sxRef<sxAudioPriorityScale> s(new sxAudioPriorityScale);
      s->set(float(i + 2));
      lis->addTrait(s.get());
    }
    sxRef<sxBase> in = sxImportWritten([&](sxFile& f) { lis->write(&f, nullptr); });
    ASSERT_TRUE(in && in->isOfType(sxListener::getClassType())) << numAudio;
    auto* r = static_cast<sxListener*>(in.get());
    EXPECT_EQ(r->getMatrix(), lis->getMatrix());
    EXPECT_EQ(std::pair(r->getXYZ(), r->getHPR()), std::pair(lis->getXYZ(), lis->getHPR()));
    EXPECT_EQ(r->getViewpoint().getPosition(), sxVec3(3.0f, 4.0f, 5.0f));
    ASSERT_EQ(r->getNumTravTraits(), 2);
    EXPECT_TRUE(r->getTravTrait(0)->isEqual(cull.get()));
    EXPECT_TRUE(r->getTravTrait(1)->isEqual(prune.get()));
    ASSERT_EQ(r->getNumAudioTraits(), std::min(numAudio, 2));
    for (int i = 0; i < r->getNumAudioTraits(); ++i)
      EXPECT_TRUE(r->getAudioTrait(i)->isEqual(lis->getAudioTrait(i)));
    // The loaded listener runs a pass with its traits.
    r->traverse(scene.get());
  }
}

// Records whose counts and lengths lie: nothing is allocated by them, and
// the reader neither runs past the data nor keeps objects of the wrong kind.
TEST(sxEmitter, HostileRecordsAreRefusedOrTrimmed) {
  auto emitterRecord = [](sxFile& f, int waveLength, int dataBytes) {
    sxEntry* e = sxWriteGroup(f, "sxEmitter", "e", {}, 0x0400);
    e->writeInt(0x4);
    const float xyz[] = {0, 0, 0};
    e->writeFloats(xyz, 3);
    e->writeInt(waveLength);
    for (int i = 0; i < dataBytes; ++i) e->writeByte('x');
    return e;
  };
  // A wave length past the data fails the record, a huge one too.
  for (int length : {0x7FFFFFFF, 40}) {
    EXPECT_FALSE(sxImportWritten([&](sxFile& f) { emitterRecord(f, length, 16); })) << length;
  }
  // A name without its NUL within the length is cut at the length; the
  // rest of the record is read past it.
  sxRef<sxBase> in = sxImportWritten([&](sxFile& f) {
    sxEntry* e = emitterRecord(f, 4, 4);
    const float rest[] = {1, 2, 7, 1, 1, 0};
    e->writeFloats(rest, 6);
    e->writeInt(1);
  });
  ASSERT_TRUE(in);
  auto* e = static_cast<sxEmitter*>(in.get());
  EXPECT_STREQ(e->getWaveName(), "xxxx");
  EXPECT_EQ(e->getAudioLevel(), 1.0f) << "clamped on reading";
  EXPECT_TRUE(e->isLoopingEnabled() && e->isPlaying());
  // A listener claiming 2^31-1 audio traits, with references to a group
  // among its traits, and one whose tail does not match its counts.
  auto listenerRecord = [](sxEntry* e, int numAudio, std::vector<int> tail) {
    sxWriteObject(e, "l", {});
    sxMatrix().write(e);
    const float six[] = {0, 0, 0, 0, 0, 0};
    e->writeFloats(six, 6);
    e->writeInt(numAudio);
    for (int v : tail) e->writeInt(v);
  };
  const int groupsBefore = sxGroup::getNum(false);
  for (bool matching : {true, false}) {
    // n = 1: one audio reference (the group), n, one traversal reference
    // (the group again), the context (none).
    const std::vector<int> tail =
        matching ? std::vector<int>{1, 1, 1, -1} : std::vector<int>{1, 5, 1, 1, -1, -1};
    in = sxImportWritten([&](sxFile& f) {
      listenerRecord(f.newEntry(f.newTag("sxListener")), 0x7FFFFFFF, tail);
      sxWriteGroup(f, "sxGroup", "g");
    });
    if (!matching) {
      EXPECT_FALSE(in);
      continue;
    }
    ASSERT_TRUE(in && in->isOfType(sxListener::getClassType()));
    auto* l = static_cast<sxListener*>(in.get());
    EXPECT_EQ(std::pair(l->getNumAudioTraits(), l->getNumTravTraits()), std::pair(0, 0));
    ASSERT_NE(l->getTravContext(), nullptr) << "keeps its own context";
  }
  EXPECT_EQ(sxGroup::getNum(false), groupsBefore) << "the group went with the file";
}
