#include <sx/collision/sxCollider.h>
#include <sx/kernel/sxKernel.h>
#include <sx/nodes/sxGroupType.h>
#include <sx/nodes/sxListener.h>
#include <sx/nodes/sxSwitch.h>
#include <sx/persist/sxEntry.h>
#include <sx/traversal/sxTravContext.h>
#include <sx/viewing/sxCamera.h>
#include <sx/viewing/sxScene.h>

#include <algorithm>
#include <cmath>

#include "nodes/sxSwitchPass.h"

SX_DEFINE_CLASS(sxSwitch, sxGroupType)

sxSwitch::sxSwitch(const sxSwitch& source)
    : sxGroup(source),
      switchFlags(source.switchFlags),
      transitionProgress(source.transitionProgress),
      transitionStart(source.transitionStart),
      transitionTime(source.transitionTime) {}

// --- the children's states

void sxSwitch::childLinked(int index) {
  const std::uint8_t state = active.empty() ? CHILD_ON : CHILD_OFF;
  const auto at = std::min(std::size_t(std::max(index, 0)), active.size());
  active.insert(active.begin() + std::ptrdiff_t(at), state);
}

void sxSwitch::childUnlinked(int index) {
  if (index >= 0 && std::size_t(index) < active.size()) active.erase(active.begin() + index);
}

void sxSwitch::adoptPerChild(const sxSwitch& src) {
  if (getNumChildren() == src.getNumChildren() && active.size() == src.active.size())
    active = src.active;
}

sxSwitch::CHILD_STATE sxSwitch::getChildState(int index) const {
  return index >= 0 && std::size_t(index) < active.size() ? CHILD_STATE(active[index]) : CHILD_OFF;
}

bool sxSwitch::isActive(int index) const {
  return getChildState(index) != CHILD_OFF;
}

bool sxSwitch::areChildrenOrdered() const {
  return true;
}

// --- selection

void sxSwitch::startTransition() {
  transitionStart = 0.0f;
  switchFlags |= SWITCH_IN_TRANSITION;
}

void sxSwitch::endTransition() {
  switchFlags &= ~SWITCH_IN_TRANSITION;
  for (auto& s : active)
    if (s == CHILD_TURNING_OFF) s = CHILD_OFF;
}

bool sxSwitch::selectChild(int index) {
  if (index >= int(active.size())) return false;
  if (isTransitionEnabled()) {
    for (auto& s : active) s = s == CHILD_ON ? CHILD_TURNING_OFF : CHILD_OFF;
    startTransition();
  } else {
    std::fill(active.begin(), active.end(), CHILD_OFF);
  }
  // A negative index selects none.
  if (index >= 0) active[index] = CHILD_ON;
  return true;
}

bool sxSwitch::selectChild(int index, bool on) {
  if (index < 0 || index >= int(active.size())) return false;
  std::uint8_t& s = active[index];
  if (!isTransitionEnabled()) {
    s = on ? CHILD_ON : CHILD_OFF;
  } else if (on == (s == CHILD_OFF)) {
    // Off to on, or on to off: a fade.
    s = on ? CHILD_ON : CHILD_TURNING_OFF;
    startTransition();
  } else {
    s = on ? CHILD_ON : CHILD_OFF;
    endTransition();
  }
  return true;
}

void sxSwitch::setAll(CHILD_STATE state) {
  std::fill(active.begin(), active.end(), state);
  if (isTransitionEnabled()) {
    transitionStart = 0.0f;
    switchFlags &= ~SWITCH_IN_TRANSITION;
  }
}

void sxSwitch::allOn() {
  setAll(CHILD_ON);
}

void sxSwitch::allOff() {
  setAll(CHILD_OFF);
}

// --- transitions

void sxSwitch::enableTransition(bool on) {
  if (on == isTransitionEnabled()) return;
  if (on) {
    switchFlags |= SWITCH_TRANSITIONS;
  } else {
    switchFlags &= ~SWITCH_TRANSITIONS;
    transitionProgress = 0.0f;
    transitionStart = 0.0f;
    endTransition();
  }
  dirtyUp(TRAV_FLAG_UPDATE);
}

void sxSwitch::setTransitionTime(float seconds) {
  transitionTime = std::isnan(seconds) ? 0.0f : seconds;
  if (!(transitionTime > 0.0f)) enableTransition(false);
}

void sxSwitch::removeSceneUpdate(sxScene* scene) {
  if (scene) scene->removeDirectCall(sxScene::DIRECT_CALL_UPDATE_FIRST, this);
}

void sxSwitch::update(sxTravContext* ctx) {
  sxScene* scene = ctx ? ctx->getScene() : nullptr;
  if (scene && anyTravFlags(TRAV_FLAG_UPDATE)) {
    if (isTransitionEnabled())
      scene->addDirectCall(sxScene::DIRECT_CALL_UPDATE_FIRST, this);
    else
      removeSceneUpdate(scene);
  }
  sxGroup::update(ctx);
}

void sxSwitch::updateDirect(sxScene*, bool) {
  if (!isTransitionEnabled() || !isInTransition()) return;
  const float now = float(sxGetTime());
  // The first frame only starts the clock; a start in the future (a file
  // from another run) starts it again.
  if (transitionStart <= 0.0f || now < transitionStart) {
    transitionStart = now;
    transitionProgress = 0.0f;
    return;
  }
  const float elapsed = now - transitionStart;
  if (elapsed < transitionTime) {
    transitionProgress = elapsed / transitionTime;
  } else {
    transitionProgress = 1.0f;
    endTransition();
  }
}

// --- passes

template <class Agent>
void sxSwitch::applySelection(Agent* agent, bool fade) const {
  using namespace sxiSwitchPass;
  sxTravContext* ctx = begin(this, agent);
  if (!ctx) return;
  // The states are read afresh at every step: the count is the children's.
  auto has = [this](int i, unsigned bit) { return (getChildState(i) & bit) != 0; };
  if (!fade || !isInTransition()) {
    if (fade) setFade(ctx, MODE_NONE, 1.0f);
    for (int i = 0; i < getNumChildren(); ++i)
      if (has(i, CHILD_ON)) visit(this, i, agent, ctx);
    return;
  }
  SavedFade saved(ctx);
  setFade(ctx, MODE_FADE_OUT, 1.0f - transitionProgress);
  for (int i = 0; i < getNumChildren(); ++i)
    if (has(i, CHILD_TURNING_OFF)) visit(this, i, agent, ctx);
  setFade(ctx, MODE_FADE_IN, transitionProgress);
  for (int i = 0; i < getNumChildren(); ++i)
    if (has(i, CHILD_ON)) visit(this, i, agent, ctx);
}

void sxSwitch::apply(sxCamera* camera) const {
  applySelection(camera, true);
}

void sxSwitch::apply(sxListener* listener) const {
  applySelection(listener, true);
}

void sxSwitch::apply(sxCollider* collider) const {
  applySelection(collider, false);
}

// --- copies and files

sxGroup* sxSwitch::copyGroup() const {
  return newSwitchCopy(*this, false);
}

sxGroup* sxSwitch::cloneGroup() const {
  return newSwitchCopy(*this, true);
}

sxEntry* sxSwitch::write(sxFile* file, sxEntry* entry) const {
  sxEntry* created = sxGroup::write(file, entry);
  sxEntry* e = entry ? entry : created;
  if (!e) return created;
  e->writeInt(int(active.size()));
  for (std::uint8_t s : active) e->writeByte(s);
  e->writeInt(int(switchFlags));
  e->writeFloat(transitionProgress);
  e->writeFloat(transitionStart);
  e->writeFloat(transitionTime);
  return created;
}

// The group part has linked the children, each with a default state; the
// record's states go to the children they were written for. A count that
// does not match (a child the file could not give) keeps the defaults of
// the children it misses and skips the states it has too many; whatever
// does not fit a state or a time is made to.
sxEntry* sxSwitch::read(sxFile* file, sxEntry* entry) {
  sxEntry* e = sxGroup::read(file, entry);
  if (!e) return nullptr;
  const int count = e->readInt();
  for (int i = 0; i < count; ++i) {
    const int at = e->getCursor();
    const int s = e->readByte();
    if (e->getCursor() == at) break;
    // Both bits set is no state: on.
    if (std::size_t(i) < active.size()) active[i] = std::uint8_t((s & 0x3) == 0x3 ? 1 : s & 0x3);
  }
  switchFlags = unsigned(e->readInt()) & (SWITCH_TRANSITIONS | SWITCH_IN_TRANSITION);
  const float progress = e->readFloat();
  const float start = e->readFloat();
  const float time = e->readFloat();
  transitionProgress = progress >= 0.0f ? std::min(progress, 1.0f) : 0.0f;
  transitionStart = std::isfinite(start) ? start : 0.0f;
  transitionTime = std::isnan(time) ? 0.0f : time;
  // This switch's own fade, whatever a kind makes of enableTransition.
  if (!(transitionTime > 0.0f)) sxSwitch::enableTransition(false);
  // Children fade out only in a running transition; otherwise they are off.
  if (!isTransitionEnabled() || !isInTransition()) endTransition();
  return e;
}
