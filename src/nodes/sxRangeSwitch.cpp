#include <sx/collision/sxCollider.h>
#include <sx/math/sxSphere.h>
#include <sx/nodes/sxGroupType.h>
#include <sx/nodes/sxListener.h>
#include <sx/nodes/sxRangeSwitch.h>
#include <sx/persist/sxEntry.h>
#include <sx/traversal/sxTravContext.h>
#include <sx/traversal/sxViewpoint.h>
#include <sx/viewing/sxCamera.h>

#include <algorithm>
#include <cmath>

#include "nodes/sxSwitchPass.h"

SX_DEFINE_CLASS(sxRangeSwitch, sxGroupType)

namespace {

constexpr float rangeStep = 1000.0f;
constexpr float firstTransition = 50.0f;
// Not 1 / (2 x 50): the first band's blend is gentler by convention.
constexpr float firstBlendFactor = 0.0004f;

bool isValidLength(float v) {
  return std::isfinite(v) && v >= 0.0f;
}

float blendFactorOf(float transition) {
  return transition > 0.0f ? 1.0f / (2.0f * transition) : 0.0f;
}

}  // namespace

sxRangeSwitch::sxRangeSwitch(const sxRangeSwitch& source)
    : sxSwitch(source),
      center(source.center),
      transitionEnabled(source.transitionEnabled),
      centerSet(source.centerSet) {}

// --- the range records

void sxRangeSwitch::childLinked(int index) {
  sxSwitch::childLinked(index);
  const auto at = std::min(std::size_t(std::max(index, 0)), ranges.size());
  Range r{rangeStep, firstTransition, firstBlendFactor};
  if (at > 0) {
    const Range& before = ranges[at - 1];
    r = {before.range + rangeStep, before.transition, blendFactorOf(before.transition)};
  }
  ranges.insert(ranges.begin() + std::ptrdiff_t(at), r);
}

void sxRangeSwitch::childUnlinked(int index) {
  sxSwitch::childUnlinked(index);
  if (index >= 0 && std::size_t(index) < ranges.size()) ranges.erase(ranges.begin() + index);
}

void sxRangeSwitch::adoptPerChild(const sxSwitch& src) {
  sxSwitch::adoptPerChild(src);
  if (!src.isOfType(getClassType())) return;
  const auto& from = static_cast<const sxRangeSwitch&>(src);
  if (ranges.size() == from.ranges.size()) ranges = from.ranges;
}

bool sxRangeSwitch::setRange(int index, float range) {
  if (index < 0 || std::size_t(index) >= ranges.size() || !isValidLength(range)) return false;
  ranges[index].range = range;
  return true;
}

bool sxRangeSwitch::setTransition(int index, float transition) {
  if (index < 0 || std::size_t(index) >= ranges.size() || !isValidLength(transition)) return false;
  ranges[index].transition = transition;
  ranges[index].blendFactor = blendFactorOf(transition);
  return true;
}

float sxRangeSwitch::getRange(int index) const {
  return index >= 0 && std::size_t(index) < ranges.size() ? ranges[index].range : 0.0f;
}

float sxRangeSwitch::getTransition(int index) const {
  return index >= 0 && std::size_t(index) < ranges.size() ? ranges[index].transition : 0.0f;
}

void sxRangeSwitch::setCenter(const sxVec3& c) {
  center = c;
  centerSet = true;
  dirtyUp(TRAV_FLAG_FENCES);
}

void sxRangeSwitch::autoCenter() {
  if (!centerSet) return;
  centerSet = false;
  dirtyUp(TRAV_FLAG_FENCES);
}

void sxRangeSwitch::enableTransition(bool on) {
  transitionEnabled = on;
}

// --- selection

float sxRangeSwitch::calcSwitch(float distance, sxTravContext* ctx, short& first,
                                short& second) const {
  first = second = -1;
  float factor = 0.0f;
  const int n = int(ranges.size());
  const float d = ctx->getRangeSwitchScale() * distance;
  int i = 0;
  while (i < n && !(d <= ranges[i].range)) ++i;
  if (i < n) {
    first = short(i);
    if (transitionEnabled) {
      const Range& r = ranges[i];
      if (d <= r.range - r.transition) {
        // The lower zone: the blend of the band below into this one.
        if (i >= 1 && d < ranges[i - 1].range + ranges[i - 1].transition) {
          const Range& below = ranges[i - 1];
          factor = (d - (below.range - below.transition)) * below.blendFactor;
          first = short(i - 1);
          second = short(i);
        }
      } else {
        factor = (d - (r.range - r.transition)) * r.blendFactor;
        if (i + 1 < n) second = short(i + 1);
      }
    }
  } else if (n > 0 && transitionEnabled && d < ranges[n - 1].range + ranges[n - 1].transition) {
    // Past the last band: fading out.
    const Range& last = ranges[n - 1];
    factor = (d - (last.range - last.transition)) * last.blendFactor;
    first = short(n - 1);
  }
  const int most = getNumChildren() - 1;
  if (first > most) first = short(most);
  if (second > most) second = short(most);
  // Records read from a file may not add up; the factor stays a blend.
  return factor > 0.0f ? std::min(factor, 1.0f) : 0.0f;
}

bool sxRangeSwitch::pick(sxTravContext* ctx, short& first, short& second, float& factor) const {
  const sxViewpoint* viewpoint = ctx->getViewpoint();
  if (!viewpoint) return false;
  const sxVec3 placed = center * ctx->getMatrix();
  factor = calcSwitch(placed.distance(viewpoint->getPosition()), ctx, first, second);
  return true;
}

sxTraverser::TRAV_STATE sxRangeSwitch::apply(sxTraverser* t, bool skipPreApply) {
  sxTraverser::TRAV_STATE entry;
  if (!entersTraversal(t, skipPreApply, entry)) return entry;
  sxTravContext* ctx = t->getTravContext();
  if (!ctx) return sxTraverser::TRAV_CONTINUE;
  short first = -1, second = -1;
  float factor = 0.0f;
  if (!pick(ctx, first, second, factor)) return sxGroup::apply(t, true);
  if (first < 0 || !ctx->pushGroup(this)) return sxTraverser::TRAV_CONTINUE;
  sxGroup* child = getChild(first);
  // A stop leaves the path on the context, as in the group descent.
  if (sxiDeepCall([&] { return child->apply(t, true); }) == sxTraverser::TRAV_STOP)
    return sxTraverser::TRAV_STOP;
  ctx->popGroup();
  return sxTraverser::TRAV_CONTINUE;
}

template <class Agent>
void sxRangeSwitch::applyRange(Agent* agent, bool fade) const {
  using namespace sxiSwitchPass;
  sxTravContext* ctx = agent ? agent->getTravContext() : nullptr;
  short first = -1, second = -1;
  float factor = 0.0f;
  if (!ctx || !pick(ctx, first, second, factor)) {
    sxGroup::apply(agent);
    return;
  }
  begin(this, agent);
  if (!fade || factor <= 0.0f) {
    if (fade) setFade(ctx, MODE_NONE, 1.0f);
    visit(this, first, agent, ctx);
    return;
  }
  SavedFade saved(ctx);
  setFade(ctx, MODE_FADE_OUT, 1.0f - factor);
  visit(this, first, agent, ctx);
  setFade(ctx, MODE_FADE_IN, factor);
  visit(this, second, agent, ctx);
}

void sxRangeSwitch::apply(sxCamera* camera) const {
  applyRange(camera, true);
}

void sxRangeSwitch::apply(sxListener* listener) const {
  applyRange(listener, true);
}

void sxRangeSwitch::apply(sxCollider* collider) const {
  applyRange(collider, false);
}

// The children's bounds are grown in the switch's own space, so that their
// centre is the switch's centre; the enclosing volume gets them placed.
void sxRangeSwitch::updateFences(sxTravContext* ctx) {
  if (centerSet || !ctx) {
    sxGroup::updateFences(ctx);
    return;
  }
  sxSphere bounds;
  const bool pushed = ctx->pushVolume(&bounds);
  ctx->pushIdentMatrix();
  sxGroup::updateFences(ctx);
  ctx->popMatrix();
  if (pushed) ctx->popVolume();
  if (bounds.isEmpty()) return;
  center = bounds.getCenter();
  if (sxVolume* enclosing = ctx->getVolume()) {
    sxSphere placed(bounds);
    placed.xform(ctx->getMatrix());
    enclosing->extendAround(placed);
  }
}

// --- copies and files

sxGroup* sxRangeSwitch::copyGroup() const {
  return newSwitchCopy(*this, false);
}

sxGroup* sxRangeSwitch::cloneGroup() const {
  return newSwitchCopy(*this, true);
}

sxEntry* sxRangeSwitch::write(sxFile* file, sxEntry* entry) const {
  sxEntry* created = sxSwitch::write(file, entry);
  sxEntry* e = entry ? entry : created;
  if (!e) return created;
  e->writeInt(int(ranges.size()));
  for (const Range& r : ranges) {
    e->writeFloat(r.range);
    e->writeFloat(r.transition);
    e->writeFloat(r.blendFactor);
  }
  e->writeInt(centerSet ? 1 : 0);
  e->writeFloats(&center.x, 3);
  e->writeInt(transitionEnabled ? 1 : 0);
  return created;
}

// The group part has linked the children, each with a default record; the
// file's records go to the children they were written for, those beyond
// the children are skipped. A length that is no length keeps the default,
// a blend factor that is none is computed from the width.
sxEntry* sxRangeSwitch::read(sxFile* file, sxEntry* entry) {
  sxEntry* e = sxSwitch::read(file, entry);
  if (!e) return nullptr;
  const int count = e->readInt();
  for (int i = 0; i < count; ++i) {
    const int at = e->getCursor();
    float v[3] = {};
    e->readFloats(v, 3);
    if (e->getCursor() == at) break;
    if (std::size_t(i) >= ranges.size()) continue;
    Range& r = ranges[i];
    if (isValidLength(v[0])) r.range = v[0];
    if (isValidLength(v[1])) r.transition = v[1];
    r.blendFactor = isValidLength(v[2]) ? v[2] : blendFactorOf(r.transition);
  }
  centerSet = e->readInt() != 0;
  float c[3] = {};
  e->readFloats(c, 3);
  if (std::isfinite(c[0]) && std::isfinite(c[1]) && std::isfinite(c[2]))
    center.set(c[0], c[1], c[2]);
  else
    centerSet = false;
  transitionEnabled = e->readInt() != 0;
  // The centre is computed by the next fence pass unless the file set it.
  if (!centerSet) dirtyUp(TRAV_FLAG_FENCES);
  return e;
}
