#include "sxDemoRun.h"

#include <chrono>
#include <cmath>

namespace {

double msSince(std::chrono::steady_clock::time_point t0) {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count();
}

unsigned selectionOf(const sxSwitch* sw) {
  unsigned bits = 0;
  for (int i = 0; i < sw->getNumChildren() && i < 32; ++i)
    if (sw->isActive(i)) bits |= 1u << i;
  return bits;
}

}  // namespace

sxDemoRunner::sxDemoRunner(const sxDemoParts& p, const sxDemoConfig& c)
    : parts(p),
      config(c),
      tick(sxEvent::findOrCreate(sxDemoTickEvent)),
      camera(new sxCamera),
      listener(new sxListener),
      stats(new sxStats) {
  // findOrCreate hands over a reference of its own.
  if (tick) tick->unRef();
  for (sxDemoToggle* t : parts.toggles)
    if (tick) tick->addAction(t);
  sxFrustum view;
  view.makeFOV(70.0f, 50.0f, 1.0f, 700.0f);
  camera->setFrustum(view);
  camera->getTravContext()->setStats(stats.get());
  for (const sxSwitch* sw : parts.switches) selections.push_back(selectionOf(sw));
}

sxDemoRunner::~sxDemoRunner() {
  for (sxDemoToggle* t : parts.toggles)
    if (tick) tick->removeAction(t);
}

// A tenth of the objects turn and bob each frame; sound sources start and
// stop on staggered cycles, so that about half of them play at a time.
void sxDemoRunner::animate() {
  const int n = int(parts.transforms.size());
  sxMatrix m;
  for (int i = frame % 10; i < n; i += 10) {
    sxTransform* t = parts.transforms[std::size_t(i)];
    sxVec3 at;
    t->getXYZ(at);
    m.makeHPR(float((frame * 3 + i) % 360), 0.0f, 0.0f);
    m.setXYZ(at.x, at.y, 2.0f * std::sin(float(frame + i) * 0.05f));
    t->setMatrix(m);
  }
  for (std::size_t k = 0; k < parts.emitters.size(); ++k) {
    const int phase = (frame + int(k) * 13) % 120;
    if (phase == 0) parts.emitters[k]->play();
    if (phase == 60) parts.emitters[k]->stop();
  }
  if (tick && config.tickEvery > 0 && frame % config.tickEvery == 0)
    tick->trigger(parts.scene.get());
}

void sxDemoRunner::placeViewer() {
  const float a = float(frame) * 0.01f;
  const float r = parts.extent * 0.6f + 50.0f;
  const sxVec3 eye(r * std::cos(a), r * std::sin(a), 40.0f);
  sxVec3 dir(-eye.x, -eye.y, -eye.z);
  dir.normalize();
  sxMatrix m;
  m.makeAlongDirection(dir, sxVec3(0.0f, 0.0f, 1.0f));
  m.setXYZ(eye);
  camera->setMatrix(m);
  listener->setMatrix(m);
}

int sxDemoRunner::countSwitchChanges() {
  int changes = 0;
  for (std::size_t i = 0; i < parts.switches.size(); ++i) {
    const unsigned now = selectionOf(parts.switches[i]);
    changes += now != selections[i];
    selections[i] = now;
  }
  return changes;
}

sxDemoFrame sxDemoRunner::step() {
  sxDemoFrame f;
  auto t0 = std::chrono::steady_clock::now();
  animate();
  parts.scene->update();
  f.updateMs = msSince(t0);

  placeViewer();
  stats->reset();
  t0 = std::chrono::steady_clock::now();
  camera->traverse(parts.scene.get());
  f.cameraMs = msSince(t0);
  f.visited = stats->getNumGroups();
  f.culled = stats->getNumCulled();

  t0 = std::chrono::steady_clock::now();
  listener->traverse(parts.scene.get());
  f.listenerMs = msSince(t0);

  f.switchChanges = countSwitchChanges();
  f.playing = parts.scene->getPlayList().getNum();
  ++frame;
  return f;
}
