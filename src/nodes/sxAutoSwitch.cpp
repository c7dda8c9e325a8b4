#include <sx/kernel/sxKernel.h>
#include <sx/nodes/sxAutoSwitch.h>
#include <sx/nodes/sxGroupType.h>
#include <sx/persist/sxEntry.h>
#include <sx/traversal/sxTravContext.h>
#include <sx/viewing/sxScene.h>

SX_DEFINE_CLASS(sxAutoSwitch, sxGroupType)

sxAutoSwitch::sxAutoSwitch() {
  sequencer.reset();
}

// --- the children

void sxAutoSwitch::childLinked(int index) {
  sxSwitch::childLinked(index);
  sequencer.setNumItems(getNumChildren());
}

// The number of items stays: the sequence keeps its length (and its
// per-child durations) until a child is added.
void sxAutoSwitch::childUnlinked(int index) {
  sxSwitch::childUnlinked(index);
  const int current = sequencer.getSelectedItem();
  if (index == current)
    enabled = false;
  else if (index < current)
    sequencer.setSelectedItem(current - 1);
}

void sxAutoSwitch::adoptPerChild(const sxSwitch& src) {
  sxSwitch::adoptPerChild(src);
  if (src.isOfType(getClassType())) {
    const auto& from = static_cast<const sxAutoSwitch&>(src);
    enabled = from.enabled;
    sequencer = from.sequencer;
  }
}

// --- the sequencer

void sxAutoSwitch::enable(bool on) {
  enabled = on;
}

void sxAutoSwitch::pause() {
  sequencer.pause();
}

void sxAutoSwitch::resume() {
  sequencer.resume();
}

void sxAutoSwitch::setMode(sxIterator::MODE mode) {
  sequencer.setMode(mode);
}

void sxAutoSwitch::setDirection(sxIterator::DIRECTION direction) {
  sequencer.setDirection(direction);
}

void sxAutoSwitch::setCycle(sxIterator::CYCLE cycle) {
  sequencer.setCycle(cycle);
  sequencer.reset();
}

void sxAutoSwitch::reset() {
  sequencer.reset();
}

void sxAutoSwitch::setTime(float seconds) {
  sequencer.setTime(seconds);
}

void sxAutoSwitch::setChildTime(int index, float seconds) {
  sequencer.setItemTime(index, seconds);
}

void sxAutoSwitch::setChildTime(float seconds) {
  sequencer.setItemTime(seconds);
}

void sxAutoSwitch::setFrameCount(int frames) {
  sequencer.setFrameCount(frames);
}

void sxAutoSwitch::setChildFrameCount(int index, int frames) {
  sequencer.setItemFrameCount(index, frames);
}

void sxAutoSwitch::setChildFrameCount(int frames) {
  sequencer.setItemFrameCount(frames);
}

// --- passes

void sxAutoSwitch::apply(sxCamera* camera) const {
  if (enabled) sxSwitch::apply(camera);
}

void sxAutoSwitch::apply(sxListener* listener) const {
  if (enabled) sxSwitch::apply(listener);
}

void sxAutoSwitch::apply(sxCollider* collider) const {
  if (enabled) sxSwitch::apply(collider);
}

// Stepping needs the per-frame call whether or not transitions are on.
void sxAutoSwitch::update(sxTravContext* ctx) {
  sxScene* scene = ctx ? ctx->getScene() : nullptr;
  if (scene && anyTravFlags(TRAV_FLAG_UPDATE))
    scene->addDirectCall(sxScene::DIRECT_CALL_UPDATE_FIRST, this);
  sxGroup::update(ctx);
}

void sxAutoSwitch::updateDirect(sxScene* scene, bool first) {
  if (!enabled || sequencer.isPaused()) return;
  const int i = sequencer.update();
  if (i >= 0 && !isActive(i)) selectChild(i);
  sxSwitch::updateDirect(scene, first);
}

// --- copies and files

sxGroup* sxAutoSwitch::copyGroup() const {
  return newSwitchCopy(*this, false);
}

sxGroup* sxAutoSwitch::cloneGroup() const {
  return newSwitchCopy(*this, true);
}

sxEntry* sxAutoSwitch::write(sxFile* file, sxEntry* entry) const {
  sxEntry* created = sxSwitch::write(file, entry);
  sxEntry* e = entry ? entry : created;
  if (!e) return created;
  e->writeInt(enabled ? 1 : 0);
  sequencer.write(e);
  return created;
}

sxEntry* sxAutoSwitch::read(sxFile* file, sxEntry* entry) {
  sxEntry* e = sxSwitch::read(file, entry);
  if (!e) return nullptr;
  enabled = e->readInt() != 0;
  sequencer.read(e);
  if (sequencer.getNumItems() < 0) sequencer.setNumItems(0);
  return e;
}
