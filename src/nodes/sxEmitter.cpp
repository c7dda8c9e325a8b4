#include <sx/math/sxMatrix.h>
#include <sx/nodes/sxEmitter.h>
#include <sx/nodes/sxGroupType.h>
#include <sx/nodes/sxListener.h>
#include <sx/traversal/sxTraitStack.h>
#include <sx/traversal/sxTravContext.h>
#include <sx/viewing/sxScene.h>

#include <algorithm>
#include <cstring>

#include "nodes/sxGroupEdits.h"

SX_DEFINE_CLASS(sxEmitter, sxGroupType)

sxEmitter::sxEmitter() {
  addTravFlags(TRAV_FLAG_EMITTER);
}

// The listener's data belongs to the source: the copy is new to it.
sxEmitter::sxEmitter(const sxEmitter& source)
    : sxGroup(source),
      emitterFlags(source.emitterFlags),
      position(source.position),
      waveName(source.waveName),
      minDistance(source.minDistance),
      maxDistance(source.maxDistance),
      audioLevel(source.audioLevel),
      priority(source.priority),
      pitch(source.pitch),
      pan(source.pan),
      looping(source.looping) {
  addTravFlags(TRAV_FLAG_EMITTER | (isPlaying() ? TRAV_FLAG_PLAYING : 0u));
}

sxEmitter::~sxEmitter() = default;

// --- playing

void sxEmitter::play() {
  if (isPlaying()) return;
  addTravFlags(TRAV_FLAG_UPDATE);
  emitterFlags |= EMITTER_PLAY_FLAGS;
  dirtyUp(TRAV_FLAG_PLAYING | TRAV_FLAG_SOUND);
}

void sxEmitter::stop() {
  if (!isPlaying()) return;
  addTravFlags(TRAV_FLAG_UPDATE);
  emitterFlags &= ~unsigned(EMITTER_PLAY_FLAGS);
  dirtyUp(TRAV_FLAG_SOUND);
  sxGroup::cleanUp(TRAV_FLAG_PLAYING);
}

// The update bit lets the next update pass take the emitter off its
// scene's play list.
void sxEmitter::waveEnded() {
  emitterFlags &= ~unsigned(EMITTER_PLAYING);
  sxGroup::cleanUp(TRAV_FLAG_PLAYING);
  emitterData = nullptr;
  dirtyUp(TRAV_FLAG_UPDATE);
}

void sxEmitter::cleanUp(unsigned bits) {
  bits &= ~unsigned(TRAV_FLAG_EMITTER);
  if ((bits & TRAV_FLAG_REMOVED) || isPlaying()) bits &= ~unsigned(TRAV_FLAG_PLAYING);
  sxGroup::cleanUp(bits);
}

// --- placement and parameters

void sxEmitter::xform(const sxMatrix& m) {
  position.xformPt(sxVec3(position), m);
}

template <class T>
void sxEmitter::setParameter(T& field, T value) {
  if (field == value) return;
  field = value;
  changed();
}

void sxEmitter::setFlag(unsigned bit, bool on) {
  const unsigned flags = on ? emitterFlags | bit : emitterFlags & ~bit;
  if (flags == emitterFlags) return;
  emitterFlags = flags;
  if (bit != EMITTER_POSITIONABLE) changed();
}

void sxEmitter::enablePositionable(bool on) {
  setFlag(EMITTER_POSITIONABLE, on);
}

void sxEmitter::enableDoppler(bool on) {
  setFlag(EMITTER_DOPPLER, on);
}

void sxEmitter::setWaveName(const char* name) {
  if (name ? waveName && *waveName == name : !waveName) return;
  if (name)
    waveName.emplace(name);
  else
    waveName.reset();
  changed();
}

void sxEmitter::setMinDistance(float d) {
  setParameter(minDistance, d);
}
void sxEmitter::setMaxDistance(float d) {
  setParameter(maxDistance, d);
}
// A NaN level is taken as silence.
void sxEmitter::setAudioLevel(float level) {
  setParameter(audioLevel, level > 0.0f ? std::min(level, 1.0f) : 0.0f);
}
void sxEmitter::setPriority(float p) {
  setParameter(priority, p);
}
void sxEmitter::setPitch(float p) {
  setParameter(pitch, p);
}
void sxEmitter::setPan(float p) {
  setParameter(pan, p);
}
void sxEmitter::enableLooping(bool on) {
  setParameter(looping, on);
}

// --- passes

void sxEmitter::update(sxTravContext* ctx) {
  if (sxScene* scene = ctx ? ctx->getScene() : nullptr) {
    if (isPlaying())
      scene->addToPlayList(this);
    else
      scene->removeFromPlayList(this);
  }
  sxGroup::update(ctx);
}

void sxEmitter::sendParameters(sxListener* l) {
  l->setWave(this, getWaveName());
  l->setLooping(this, looping);
  l->setMinDistance(this, minDistance);
  l->setMaxDistance(this, maxDistance);
  l->setAudioLevel(this, audioLevel);
  l->setPriority(this, priority);
  l->setPitch(this, pitch);
  l->setPan(this, pan);
  l->setDoppler(this, isDopplerEnabled());
}

// The pass changes only the listener's bookkeeping on the emitter (its
// data and the changed bit), never the node itself.
void sxEmitter::apply(sxListener* listener) const {
  sxTravContext* ctx = listener ? listener->getTravContext() : nullptr;
  if (!ctx) return;
  if (isPlaying()) {
    // The scales of the audio traits on styles above reach the listener
    // before this emitter's state does.
    if (sxTraitStack* ts = ctx->getTraitStack()) ts->applyAudioTraits(listener);
    auto* self = const_cast<sxEmitter*>(this);
    if ((emitterFlags & EMITTER_CHANGED) || !emitterData) self->sendParameters(listener);
    // The back end may have stopped the emitter meanwhile.
    if (isPlaying()) {
      sxVec3 at = position;
      if (isPositionable()) at.xformPt(position, ctx->getMatrix());
      listener->outputEmitter(self, at);
    }
  }
  sxGroup::apply(listener);
}

// Every scene above parent loses the emitter from its play list, not only
// the root: a nested scene may run frames of its own. If the emitter is
// still below a scene by another path, the update bit has the next frame
// put it back.
void sxEmitter::removedFrom(sxGroup* parent) {
  if (parent && sxScene::getNumLive() > 0) {
    sxiGroupEdits::walkUp(parent, [this](const sxGroup* g) {
      if (g->isOfType(sxScene::getClassType()))
        const_cast<sxScene*>(static_cast<const sxScene*>(g))->removeFromPlayList(this);
      return false;
    });
  }
  if (getNumParents() > 0) {
    sxGroup::removedFrom(parent);
    if (isPlaying()) dirtyUp(TRAV_FLAG_UPDATE);
    return;
  }
  emitterFlags &= ~unsigned(EMITTER_PLAYING);
  emitterData = nullptr;
  sxGroup::removedFrom(parent);
  removeTravFlags(TRAV_FLAG_PLAYING);
}
