#include "sxDemoScene.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <unordered_set>

SX_DEFINE_CLASS(sxDemoToggle, sxGroupType)

void sxDemoToggle::eventTriggered(sxBase*, sxEvent*) {
  for (int i = 0; i < getNumChildren(); ++i) {
    sxGroup* child = getChild(i);
    if (!child->isOfType(sxSwitch::getClassType())) continue;
    auto* sw = static_cast<sxSwitch*>(child);
    const int n = sw->getNumChildren();
    if (n == 0) continue;
    int on = 0;
    while (on < n && !sw->isActive(on)) ++on;
    sw->selectChild((on + 1) % n);
    ++toggles;
  }
}

namespace {

template <class T>
sxRef<T> make(const char* name = nullptr) {
  sxRef<T> node(new T);
  if (name) node->setName(name);
  return node;
}

sxRef<sxSphereFence> leaf(float radius) {
  sxRef<sxSphereFence> f = make<sxSphereFence>();
  f->setSphere(sxSphere(sxVec3(0.0f, 0.0f, 0.0f), radius));
  // One leaf of each size serves every object: instancing.
  f->setNodeFlags(sxGroup::NODE_SHARE_INSTANCES);
  return f;
}

}  // namespace

void sxDemoInitClasses() {
  sxDemoToggle::initClass();
}

sxRef<sxScene> sxBuildDemoScene(const sxDemoConfig& config) {
  sxDemoInitClasses();
  sxRef<sxScene> scene = make<sxScene>("demo");
  sxRef<sxStyle> world = make<sxStyle>("world");
  scene->addChild(world.get());

  // Three levels of detail, shared by all objects.
  sxRef<sxSphereFence> fine = leaf(1.5f), coarse = leaf(1.6f), hint = leaf(2.0f);
  sxRef<sxSphereFence> sprite = leaf(1.0f);

  const int side = std::max(1, int(std::ceil(std::sqrt(double(config.objects)))));
  const float half = float(side) * config.spacing * 0.5f;
  char name[32];
  sxRef<sxGroup> row;
  for (int i = 0; i < config.objects; ++i) {
    if (i % side == 0) {
      std::snprintf(name, sizeof name, "row %d", i / side);
      row = make<sxGroup>(name);
      world->addChild(row.get());
    }
    std::snprintf(name, sizeof name, "object %d", i);
    sxRef<sxTransform> t = make<sxTransform>(name);
    t->setXYZ(float(i % side) * config.spacing - half, float(i / side) * config.spacing - half,
              0.0f);
    row->addChild(t.get());
    if (config.billboardEvery > 0 && i % config.billboardEvery == 0) {
      sxRef<sxBillboard> b = make<sxBillboard>();
      b->addChild(sprite.get());
      t->addChild(b.get());
    } else {
      sxRef<sxRangeSwitch> lod = make<sxRangeSwitch>();
      for (sxGroup* level : {fine.get(), coarse.get(), hint.get()}) lod->addChild(level);
      lod->setRange(0, 60.0f);
      lod->setRange(1, 200.0f);
      lod->setRange(2, 600.0f);
      t->addChild(lod.get());
    }
    if (config.emitterEvery > 0 && i % config.emitterEvery == 0) {
      std::snprintf(name, sizeof name, "sound %d", i);
      sxRef<sxEmitter> e = make<sxEmitter>(name);
      e->setWaveName("engine.wav");
      e->enableLooping(true);
      t->addChild(e.get());
    }
  }

  // A signal that steps through its lights on its own.
  sxRef<sxAutoSwitch> signal = make<sxAutoSwitch>("signal");
  for (float r : {1.0f, 1.1f, 1.2f}) signal->addChild(leaf(r).get());
  signal->setMode(sxIterator::TIME);
  signal->setCycle(sxIterator::LOOP);
  signal->setTime(0.75f);
  world->addChild(signal.get());

  // Doors that the demo event opens and closes with a cross-fade.
  sxRef<sxDemoToggle> doors = make<sxDemoToggle>("doors");
  for (int d = 0; d < 4; ++d) {
    sxRef<sxSwitch> door = make<sxSwitch>();
    door->addChild(leaf(3.0f).get());
    door->addChild(leaf(3.5f).get());
    door->enableTransition(true);
    door->setTransitionTime(config.fadeSeconds);
    doors->addChild(door.get());
  }
  world->addChild(doors.get());
  return scene;
}

bool sxDemoParts::find(sxScene* root) {
  *this = sxDemoParts();
  if (!root) return false;
  scene = root;
  std::unordered_set<const sxGroup*> seen;
  std::vector<sxGroup*> todo{root};
  sxVec3 lo(0, 0, 0), hi(0, 0, 0);
  while (!todo.empty()) {
    sxGroup* g = todo.back();
    todo.pop_back();
    if (!seen.insert(g).second) continue;
    ++nodes;
    if (g->isOfType(sxTransform::getClassType())) {
      auto* t = static_cast<sxTransform*>(g);
      transforms.push_back(t);
      sxVec3 p;
      t->getXYZ(p);
      extent = std::max({extent, std::fabs(p.x), std::fabs(p.y)});
    } else if (g->isOfType(sxRangeSwitch::getClassType())) {
      rangeSwitches.push_back(static_cast<sxRangeSwitch*>(g));
    } else if (g->isOfType(sxSwitch::getClassType())) {
      switches.push_back(static_cast<sxSwitch*>(g));
    } else if (g->isOfType(sxBillboard::getClassType())) {
      billboards.push_back(static_cast<sxBillboard*>(g));
    } else if (g->isOfType(sxEmitter::getClassType())) {
      emitters.push_back(static_cast<sxEmitter*>(g));
    } else if (g->isOfType(sxDemoToggle::getClassType())) {
      toggles.push_back(static_cast<sxDemoToggle*>(g));
    }
    for (int i = g->getNumChildren() - 1; i >= 0; --i) todo.push_back(g->getChild(i));
  }
  return true;
}
