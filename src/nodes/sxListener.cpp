#include <sx/nodes/sxEmitter.h>
#include <sx/nodes/sxListener.h>
#include <sx/traversal/sxTraitStack.h>

#include <algorithm>

#include "viewing/sxPassEntry.h"

SX_DEFINE_CLASS(sxListener)

namespace {

template <class T>
bool addTo(std::vector<sxRef<T>>& list, T* trait) {
  if (!trait || std::find(list.begin(), list.end(), trait) != list.end()) return false;
  list.emplace_back(trait);
  return true;
}

template <class T>
bool removeFrom(std::vector<sxRef<T>>& list, T* trait) {
  auto it = std::find(list.begin(), list.end(), trait);
  if (!trait || it == list.end()) return false;
  list.erase(it);
  return true;
}

}  // namespace

sxTravContext* sxListener::newContext() {
  sxTravContext* ctx = sxiPassEntry::newContext(stackTypes);
  if (ctx) ctx->setTravMask(sxEmitter::TRAV_FLAG_PLAYING);
  return ctx;
}

sxListener::sxListener() : travContext(newContext()) {}

sxListener::sxListener(const sxListener& source)
    : sxBase(source),
      matrix(source.matrix),
      xyz(source.xyz),
      hpr(source.hpr),
      viewpoint(source.viewpoint),
      audioTraits(source.audioTraits),
      travTraits(source.travTraits),
      travContext(newContext()) {}

sxListener::~sxListener() = default;

// --- traits

bool sxListener::addTrait(sxTravTrait* trait) {
  return addTo(travTraits, trait);
}
bool sxListener::addTrait(sxAudioTrait* trait) {
  return addTo(audioTraits, trait);
}
bool sxListener::removeTrait(sxTravTrait* trait) {
  return removeFrom(travTraits, trait);
}
bool sxListener::removeTrait(sxAudioTrait* trait) {
  return removeFrom(audioTraits, trait);
}

void sxListener::setTravContext(sxTravContext* context) {
  travContext = context;
}

void sxListener::applyTraits() {
  sxTravContext* ctx = travContext.get();
  sxTraitStack* ts = ctx ? ctx->getTraitStack() : nullptr;
  if (!ts) return;
  for (const auto& t : travTraits) ts->pushTrait(t.get(), ctx);
  if (ctx->anyFlags(sxTravContext::FLAG_PRUNE)) return;
  for (const auto& t : audioTraits) ts->pushTrait(t.get(), ctx);
  ts->applyAudioTraits(this);
}

// A pruning trait on the listener cuts off the whole graph: it hears
// nothing, as a style's prune cuts off what lies below the style.
void sxListener::traverse(sxGroup* root) {
  sxiPassEntry::run(this, root, &viewpoint, [this] {
    applyTraits();
    return !travContext->anyFlags(sxTravContext::FLAG_PRUNE);
  });
}

// --- placement

void sxListener::setXYZ(const sxVec3& v) {
  xyz = v;
  matrix.setXYZ(v);
  placementChanged();
}
void sxListener::setXYZ(float x, float y, float z) {
  setXYZ(sxVec3(x, y, z));
}
void sxListener::setHPR(const sxVec3& v) {
  hpr = v;
  matrix.setHPR(v);
  placementChanged();
}
void sxListener::setHPR(float h, float p, float r) {
  setHPR(sxVec3(h, p, r));
}
void sxListener::setMatrix(const sxMatrix& m) {
  matrix = m;
  matrix.getXYZ(xyz);
  matrix.getHPR(hpr);
  placementChanged();
}

// --- what emitters hand over: an audio back end overrides these

void sxListener::setWave(sxEmitter*, const char*) {}
const char* sxListener::getWave(const sxEmitter* e) const {
  return e ? e->getWaveName() : nullptr;
}
void sxListener::setLooping(sxEmitter*, bool) {}
bool sxListener::getLooping(const sxEmitter* e) const {
  return e && e->isLoopingEnabled();
}
void sxListener::setMinDistance(sxEmitter*, float) {}
float sxListener::getMinDistance(const sxEmitter* e) const {
  return e ? e->getMinDistance() : 1.0f;
}
void sxListener::setMaxDistance(sxEmitter*, float) {}
float sxListener::getMaxDistance(const sxEmitter* e) const {
  return e ? e->getMaxDistance() : 100.0f;
}
void sxListener::setPriority(sxEmitter*, float) {}
float sxListener::getPriority(const sxEmitter* e) const {
  return e ? e->getPriority() : 1.0f;
}
void sxListener::setPriorityScale(float) {}
void sxListener::setAudioLevel(sxEmitter*, float) {}
float sxListener::getAudioLevel(const sxEmitter* e) const {
  return e ? e->getAudioLevel() : 1.0f;
}
void sxListener::setAudioLevelScale(float) {}
void sxListener::setPan(sxEmitter*, float) {}
float sxListener::getPan(const sxEmitter* e) const {
  return e ? e->getPan() : 0.0f;
}
void sxListener::setPitch(sxEmitter*, float) {}
float sxListener::getPitch(const sxEmitter* e) const {
  return e ? e->getPitch() : 1.0f;
}
void sxListener::setDoppler(sxEmitter*, bool) {}
bool sxListener::getDoppler(const sxEmitter* e) const {
  return e && e->isDopplerEnabled();
}
void sxListener::outputEmitter(sxEmitter*, const sxVec3&) {}

// --- for audio back ends

void sxListener::hasStopped(sxEmitter* e) {
  if (e) e->waveEnded();
}
void sxListener::hasBeenUpdated(sxEmitter* e) {
  if (e) e->emitterFlags &= ~unsigned(sxEmitter::EMITTER_CHANGED);
}
void sxListener::setEmitterData(sxEmitter* e, void* data) {
  if (e) e->emitterData = data;
}
void* sxListener::getEmitterData(const sxEmitter* e) {
  return e ? e->emitterData : nullptr;
}
unsigned sxListener::getEmitterFlags(const sxEmitter* e) {
  return e ? e->emitterFlags : 0u;
}
