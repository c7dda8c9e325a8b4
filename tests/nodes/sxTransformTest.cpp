#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <cmath>
#include <functional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/sxTestFiles.h"
#include "support/sxThroughFile.h"

namespace {

// A sphere fence (unit sphere at its origin) that records what each pass
// shows it: how often it was reached, the matrix, the depth of the matrix
// stack and the cull result.
struct Probe : sxSphereFence {
  Probe() { setSphere(sxSphere(sxVec3(0, 0, 0), 1.0f)); }
  mutable int visits = 0;
  mutable sxMatrix seen;
  mutable sxMatrix seenInverse;
  mutable int depth = -1;
  mutable sxVolume::CONTAINMENT cull = sxVolume::OUTSIDE;

  void record(sxTravContext* ctx) const {
    ++visits;
    seen = ctx->getMatrix();
    seenInverse = ctx->getInvertMatrix();
    depth = ctx->getMatrixStack()->getDepth();
    cull = ctx->getCullResult();
  }
  using sxSphereFence::apply;
  sxTraverser::TRAV_STATE apply(sxTraverser* t, bool skip) override {
    record(t->getTravContext());
    return sxSphereFence::apply(t, skip);
  }
  void apply(sxCamera* c) const override {
    record(c->getTravContext());
    sxSphereFence::apply(c);
  }
  void apply(sxCollider* c) const override {
    record(c->getTravContext());
    sxSphereFence::apply(c);
  }
  void apply(sxListener* l) const override {
    record(l->getTravContext());
    sxSphereFence::apply(l);
  }
  void update(sxTravContext* ctx) override {
    record(ctx);
    sxSphereFence::update(ctx);
  }
  void updateFences(sxTravContext* ctx) override {
    ++visits;
    sxSphereFence::updateFences(ctx);
  }
};

sxMatrix translation(float x, float y, float z) {
  sxMatrix m;
  m.makeXYZ(x, y, z);
  return m;
}

sxVec3 origin(const sxMatrix& m) {
  sxVec3 p;
  p.xformPt(sxVec3(0, 0, 0), m);
  return p;
}

void expectNear(const sxVec3& a, const sxVec3& b, float eps = 1e-4f) {
  EXPECT_NEAR(a.x, b.x, eps);
  EXPECT_NEAR(a.y, b.y, eps);
  EXPECT_NEAR(a.z, b.z, eps);
}

// One pass over root, run the way its owner runs it.
struct Pass {
  const char* name;
  std::function<void(sxGroup*)> run;
};

std::vector<Pass> passes() {
  return {
      {"traverser",
       [](sxGroup* root) {
         sxTraverser t;
         t.setTravContext(new sxTravContext);
         t.traverse(root);
       }},
      {"camera", [](sxGroup* root) { sxCamera().traverse(root); }},
      {"collider", [](sxGroup* root) { sxCollider().traverse(root); }},
      {"listener", [](sxGroup* root) { sxListener().traverse(root); }},
      {"update",
       [](sxGroup* root) {
         sxRef<sxTravContext> ctx(new sxTravContext);
         root->update(ctx.get());
       }},
  };
}

// The local matrix is applied before the parent's: a unit step along X below
// a quarter turn ends on +Y. An identity matrix pushes nothing.
TEST(sxTransform, PassesPlaceChildrenByTheLocalThenTheParentMatrix) {
  for (const Pass& pass : passes()) {
    SCOPED_TRACE(pass.name);
    sxRef<sxGroup> root(new sxGroup);
    auto* turn = new sxTransform;
    turn->setHPR(90, 0, 0);
    auto* step = new sxTransform(translation(1, 0, 0));
    auto* still = new sxTransform;
    auto* probe = new Probe;
    root->addChild(turn);
    turn->addChild(step);
    step->addChild(still);
    still->addChild(probe);
    // The listener pass goes only where an emitter plays.
    auto* voice = new sxEmitter;
    probe->addChild(voice);
    voice->play();
    sxSphere bounds;
    root->getBoundingVolume(bounds);
    probe->visits = 0;
    pass.run(root.get());
    ASSERT_EQ(std::pair(probe->visits, probe->depth), std::pair(1, 2));
    expectNear(origin(probe->seen), sxVec3(0, 1, 0));
    if (std::string(pass.name) == "traverser") {
      sxMatrix both;
      both.mult(probe->seen, probe->seenInverse);
      expectNear(origin(both), sxVec3(0, 0, 0));
      sxVec3 x;
      x.xformVec(sxVec3(1, 0, 0), both);
      expectNear(x, sxVec3(1, 0, 0));
    }
  }
}

// Changing a matrix marks the transform and its ancestors for the fence
// pass and the placed content below; the next fence pass recomputes only
// the changed branch, and a pass without changes reuses every cached sphere.
TEST(sxTransform, FencePassRecomputesOnlyWhatAMatrixChangeMarked) {
  sxRef<sxGroup> root(new sxGroup);
  auto* outer = new sxTransform(translation(0, 0, 10));
  auto* mid = new sxGroup;
  auto* inner = new sxTransform(translation(5, 0, 0));
  auto* other = new sxTransform(translation(-5, 0, 0));
  auto* moved = new Probe;
  auto* kept = new Probe;
  root->addChild(outer);
  outer->addChild(mid);
  mid->addChild(inner);
  mid->addChild(other);
  inner->addChild(moved);
  other->addChild(kept);

  sxSphere bounds;
  root->getBoundingVolume(bounds);
  EXPECT_EQ(std::pair(moved->visits, kept->visits), std::pair(1, 1));
  expectNear(bounds.getCenter(), sxVec3(0, 0, 10));
  EXPECT_NEAR(bounds.getRadius(), 6.0f, 1e-4f);
  for (sxGroup* g : {root.get(), static_cast<sxGroup*>(outer), mid})
    EXPECT_FALSE(g->anyTravFlags(sxGroup::TRAV_FLAG_FENCES));

  root->getBoundingVolume(bounds);
  EXPECT_EQ(moved->visits + kept->visits, 2) << "unchanged: every sphere reused";
  EXPECT_NEAR(bounds.getRadius(), 6.0f, 1e-4f);

  sxRef<sxTravContext> ctx(new sxTravContext);
  root->update(ctx.get());
  EXPECT_FALSE(moved->anyTravFlags(sxGroup::TRAV_FLAG_MATRIX));
  moved->visits = kept->visits = 0;
  inner->setXYZ(15, 0, 0);
  for (sxGroup* g : {root.get(), static_cast<sxGroup*>(outer), mid, static_cast<sxGroup*>(inner)})
    EXPECT_TRUE(g->allTravFlags(sxGroup::TRAV_FLAG_MATRIX | sxGroup::TRAV_FLAG_FENCES))
        << g->getTravFlags();
  EXPECT_TRUE(moved->anyTravFlags(sxGroup::TRAV_FLAG_MATRIX) &&
              !kept->anyTravFlags(sxGroup::TRAV_FLAG_MATRIX) &&
              !other->anyTravFlags(sxGroup::TRAV_FLAG_FENCES));

  root->getBoundingVolume(bounds);
  EXPECT_EQ(std::pair(moved->visits, kept->visits), std::pair(1, 0));
  expectNear(bounds.getCenter(), sxVec3(5, 0, 10));
  EXPECT_NEAR(bounds.getRadius(), 11.0f, 1e-4f);
  root->getBoundingVolume(bounds);
  EXPECT_EQ(moved->visits, 1);
}

// A group whose camera pass marks everything below as outside the view.
struct Hidden : sxGroup {
  using sxGroup::apply;
  void apply(sxCamera* c) const override {
    c->getTravContext()->pushCullResult(sxVolume::OUTSIDE);
    sxGroup::apply(c);
    c->getTravContext()->popCullResult();
  }
};

// The camera pass tests each transform's cached sphere against the view:
// outside is not visited (and counted), inside is visited without further
// tests, partly inside is visited with tests; under an outside result
// nothing is visited at all.
TEST(sxTransform, CameraPassCullsSubGraphsOutsideTheView) {
  sxRef<sxGroup> root(new sxGroup);
  struct Case {
    sxVec3 at;
    bool hidden;
    int visits;
    sxVolume::CONTAINMENT cull;
  };
  const std::vector<Case> cases = {
      {{0, -50, 0}, false, 0, sxVolume::OUTSIDE},  // behind the eye
      {{0, 50, 0}, false, 1, sxVolume::INSIDE},
      {{0, 1, 0}, false, 1, sxVolume::PARTIAL},  // across the near plane
      {{0, 50, 0}, true, 0, sxVolume::OUTSIDE},
  };
  std::vector<Probe*> probes;
  for (const Case& c : cases) {
    sxGroup* parent = root.get();
    if (c.hidden) {
      auto* hidden = new Hidden;
      parent->addChild(hidden);
      parent = hidden;
    }
    auto* t = new sxTransform(translation(c.at.x, c.at.y, c.at.z));
    parent->addChild(t);
    probes.push_back(new Probe);
    t->addChild(probes.back());
  }
  sxSphere bounds;
  root->getBoundingVolume(bounds);
  for (Probe* p : probes) p->visits = 0;
  sxCamera camera;
  sxFrustum view;
  ASSERT_TRUE(view.makeFOV(90, 90, 1, 100));
  camera.setFrustum(view);
  sxRef<sxStats> stats(new sxStats);
  camera.getTravContext()->setStats(stats.get());
  camera.traverse(root.get());
  for (std::size_t i = 0; i < cases.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(probes[i]->visits, cases[i].visits);
    if (cases[i].visits) {
      EXPECT_EQ(probes[i]->cull, cases[i].cull);
    }
  }
  EXPECT_EQ(stats->getNumCulled(), 1);
}

// Without a viewpoint a billboard is a translation; with one it keeps the
// scale of the current matrix, turns its +Y to the mode's axis and its +Z
// towards the viewer (along the view for a parallel projection).
TEST(sxBillboard, TurnsTowardsTheViewpointOrTranslatesWithoutOne) {
  sxRef<sxGroup> root(new sxGroup);
  auto* t = new sxTransform(translation(0, 0, 5));
  auto* bb = new sxBillboard;
  auto* probe = new Probe;
  bb->setXYZ(1, 2, 3);
  root->addChild(t);
  t->addChild(bb);
  bb->addChild(probe);
  sxTraverser walker;
  walker.setTravContext(new sxTravContext);
  walker.traverse(root.get());
  ASSERT_EQ(probe->visits, 1);
  EXPECT_EQ(probe->seen, translation(1, 2, 8));

  sxSphere bounds;
  root->getBoundingVolume(bounds);
  // Seen by a camera: the probe's frame faces the camera.
  sxCamera camera;
  const sxVec3 eye(10, -20, 4);
  camera.setMatrix(translation(eye.x, eye.y, eye.z));
  sxFrustum view;
  ASSERT_TRUE(view.makeFOV(170, 170, 0.1f, 1000));
  camera.setFrustum(view);
  for (sxBillboard::MODE mode : {sxBillboard::MODE_WORLD_UP, sxBillboard::MODE_VIEWER_UP}) {
    bb->setMode(mode);
    camera.traverse(root.get());
    const sxVec3 at = origin(probe->seen);
    expectNear(at, sxVec3(1, 2, 8));
    sxVec3 y, z, toEye = eye - at;
    toEye.normalize();
    probe->seen.getRow(1, y);
    probe->seen.getRow(2, z);
    expectNear(z, toEye);
    EXPECT_NEAR(y.dot(toEye), 0.0f, 1e-4f);
    EXPECT_GT(y.z, 0.0f) << "up stays up";
  }

  sxMatrix scaled;
  scaled.makeScale(2, 2, 2);
  scaled.setXYZ(0, 0, 5);
  sxViewpoint vp;
  vp.setMatrix(translation(eye.x, eye.y, eye.z));
  vp.setFrustum(view);
  struct ModeCase {
    sxBillboard::MODE mode;
    sxVec3 axis;
    sxVec3 y;  // the expected +Y direction
  };
  for (const ModeCase& c : std::vector<ModeCase>{{sxBillboard::MODE_WORLD_AXIS, {}, {0, 0, 1}},
                                                 {sxBillboard::MODE(7), {}, {0, 0, 1}},
                                                 {sxBillboard::MODE_AXIS, {1, 0, 0}, {1, 0, 0}}}) {
    bb->setMode(c.mode);
    bb->setAxis(c.axis);
    sxMatrix full;
    bb->computeFullMatrix(scaled, full, &vp);
    sxVec3 y, z;
    full.getRow(1, y);
    full.getRow(2, z);
    EXPECT_NEAR(y.length(), 2.0f, 1e-4f) << "the scale is kept";
    y.normalize();
    expectNear(y, c.y);
    EXPECT_GT(z.dot(eye - origin(full)), 0.0f) << "+Z leans towards the viewer";
    expectNear(origin(full), sxVec3(2, 4, 11));
  }

  sxFrustum parallel;
  ASSERT_TRUE(parallel.makeOrtho(-10, 10, -10, 10, 0.1f, 100));
  vp.setFrustum(parallel);
  bb->setMode(sxBillboard::MODE_WORLD_UP);
  sxMatrix full;
  bb->computeFullMatrix(sxMatrix(), full, &vp);
  sxVec3 z;
  full.getRow(2, z);
  expectNear(z, sxVec3(0, -1, 0));
}

// Transforms, billboards and fences keep their fields through a file, a
// copy and a clone, and the loaded graph has the same bounds.
TEST(sxTransform, NodeKindsSurviveFilesCopiesAndClones) {
  sxRef<sxGroup> root(new sxGroup);
  auto* t = new sxTransform;
  t->setHPR(30, 10, 0);
  t->setXYZ(1, 2, 3);
  auto* bb = new sxBillboard;
  bb->setMode(sxBillboard::MODE_VIEWER_UP);
  bb->setAxis(sxVec3(1, 0, 0));
  bb->setXYZ(4, 5, 6);
  auto* sphere = new sxSphereFence;
  sphere->setSphere(sxSphere(sxVec3(1, 1, 1), 2));
  auto* box = new sxBoxFence;
  sxBox b;
  b.setMin(sxVec3(-1, -2, -3));
  b.setMax(sxVec3(1, 2, 3));
  box->setBox(b);
  root->addChild(t);
  t->addChild(bb);
  bb->addChild(sphere);
  t->addChild(box);
  box->addChild(new sxFence);
  sxSphere expected;
  root->getBoundingVolume(expected);
  ASSERT_FALSE(expected.isEmpty());

  sxRef<sxGroup> loaded = sxThroughFile<sxGroup>(root.get());
  ASSERT_TRUE(loaded);
  std::vector<sxRef<sxGroup>> copies = {loaded, sxRef<sxGroup>(root->makeCopy()),
                                        sxRef<sxGroup>(root->makeClone())};
  for (const sxRef<sxGroup>& g : copies) {
    ASSERT_EQ(g->getNumChildren(), 1);
    ASSERT_EQ(g->getChild(0)->getType(), sxTransform::getClassType());
    auto* t2 = static_cast<sxTransform*>(g->getChild(0));
    EXPECT_EQ(t2->getMatrix(), t->getMatrix());
    ASSERT_EQ(t2->getNumChildren(), 2);
    ASSERT_EQ(t2->getChild(0)->getType(), sxBillboard::getClassType());
    auto* bb2 = static_cast<sxBillboard*>(t2->getChild(0));
    EXPECT_EQ(std::tuple(bb2->getMode(), bb2->getAxis(), bb2->getXYZ()),
              std::tuple(bb->getMode(), bb->getAxis(), bb->getXYZ()));
    ASSERT_EQ(bb2->getNumChildren(), 1);
    ASSERT_EQ(bb2->getChild(0)->getType(), sxSphereFence::getClassType());
    EXPECT_EQ(static_cast<sxSphereFence*>(bb2->getChild(0))->getSphere(), sphere->getSphere());
    ASSERT_EQ(t2->getChild(1)->getType(), sxBoxFence::getClassType());
    auto* box2 = static_cast<sxBoxFence*>(t2->getChild(1));
    EXPECT_EQ(std::pair(box2->getBox().getMin(), box2->getBox().getMax()),
              std::pair(b.getMin(), b.getMax()));
    ASSERT_EQ(box2->getNumChildren(), 1);
    EXPECT_EQ(box2->getChild(0)->getType(), sxFence::getClassType());
    for (sxGroup* n : {g.get(), static_cast<sxGroup*>(t2), static_cast<sxGroup*>(box2)})
      EXPECT_TRUE(n->anyTravFlags(sxFence::CONTENT_FENCE));
    sxSphere bounds;
    g->getBoundingVolume(bounds);
    expectNear(bounds.getCenter(), expected.getCenter());
    EXPECT_NEAR(bounds.getRadius(), expected.getRadius(), 1e-4f);
  }
}

// A chain of 10,000 transforms goes through the fence, camera and traverser
// passes on the thread's stack and the segments the passes continue on.
TEST(sxTransform, DeepChainsPassWithoutExhaustingTheStack) {
  constexpr int depth = 10000;
  sxRef<sxGroup> root(new sxGroup);
  sxGroup* last = root.get();
  for (int i = 0; i < depth; ++i) {
    auto* t = new sxTransform(translation(0, 0, 1));
    last->addChild(t);
    last = t;
  }
  auto* probe = new Probe;
  last->addChild(probe);
  sxSphere bounds;
  root->getBoundingVolume(bounds);
  expectNear(bounds.getCenter(), sxVec3(0, 0, depth), 1e-2f);

  sxCamera camera;
  camera.traverse(root.get());
  EXPECT_EQ(std::pair(probe->visits, probe->depth), std::pair(2, depth));
  expectNear(origin(probe->seen), sxVec3(0, 0, depth), 1e-2f);

  sxTraverser walker;
  walker.setTravContext(new sxTravContext);
  walker.traverse(root.get());
  EXPECT_EQ(std::pair(probe->visits, probe->depth), std::pair(3, depth));
  expectNear(origin(probe->seenInverse), sxVec3(0, 0, -depth), 1e-2f);
}

}  // namespace
