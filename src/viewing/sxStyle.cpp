#include <sx/collision/sxCollider.h>
#include <sx/nodes/sxGroupType.h>
#include <sx/nodes/sxListener.h>
#include <sx/persist/sxEntry.h>
#include <sx/persist/sxFile.h>
#include <sx/traversal/sxTraitStack.h>
#include <sx/traversal/sxTravContext.h>
#include <sx/viewing/sxCamera.h>
#include <sx/viewing/sxStyle.h>

#include <type_traits>

#include "persist/sxFileState.h"

SX_DEFINE_CLASS(sxStyle, sxGroupType)

namespace {

template <class T>
bool addTo(sxStyle* style, sxTList<T*>& list, T* trait) {
  if (!trait || list.contains(trait)) return false;
  trait->ref();
  list.add(trait);
  // One trait per type: the older one of the new trait's type goes.
  int index = trait->getTraitIndex();
  if (index < 0) return true;
  for (int k = 0; k < list.getNum() - 1; ++k) {
    if (list[k]->getTraitIndex() == index) {
      style->removeTrait(list[k]);
      break;
    }
  }
  return true;
}

template <class T>
bool removeFrom(sxTList<T*>& list, T* trait) {
  if (!trait || !list.checkRemoveOrdered(trait)) return false;
  trait->unRef();
  return true;
}

template <class T>
void share(sxTList<T*>& to, const sxTList<T*>& from) {
  to = from;
  for (int k = 0; k < to.getNum(); ++k) to[k]->ref();
}

template <class T>
void release(sxTList<T*>& list) {
  while (list.getNum() > 0) list.removeLast()->unRef();
}

template <class T>
void pushAll(sxTraitStack* ts, const sxTList<T*>& list, sxTravContext* ctx) {
  for (int k = 0; k < list.getNum(); ++k) ts->pushTrait(list[k], ctx);
}

template <class T>
void popAll(sxTraitStack* ts, const sxTList<T*>& list, sxTravContext* ctx) {
  for (int k = list.getNum() - 1; k >= 0; --k) ts->popTrait(list[k], ctx);
}

}  // namespace

sxStyle::sxStyle(const sxStyle& source) : sxGroup(source) {
  share(visualTraits, source.visualTraits);
  share(audioTraits, source.audioTraits);
  share(travTraits, source.travTraits);
}

sxStyle::~sxStyle() {
  releaseTraits();
}

void sxStyle::releaseTraits() {
  release(visualTraits);
  release(audioTraits);
  release(travTraits);
}

bool sxStyle::addTrait(sxVisualTrait* trait) {
  return addTo(this, visualTraits, trait);
}
bool sxStyle::addTrait(sxAudioTrait* trait) {
  return addTo(this, audioTraits, trait);
}
bool sxStyle::addTrait(sxTravTrait* trait) {
  return addTo(this, travTraits, trait);
}
bool sxStyle::removeTrait(sxVisualTrait* trait) {
  return removeFrom(visualTraits, trait);
}
bool sxStyle::removeTrait(sxAudioTrait* trait) {
  return removeFrom(audioTraits, trait);
}
bool sxStyle::removeTrait(sxTravTrait* trait) {
  return removeFrom(travTraits, trait);
}

template <class Pass>
bool sxStyle::withTraits(sxTravContext* ctx, Pass&& pass) const {
  sxTraitStack* ts = ctx ? ctx->getTraitStack() : nullptr;
  if (!ts) return pass();
  pushAll(ts, travTraits, ctx);
  if (!ctx->anyFlags(sxTravContext::FLAG_PRUNE)) {
    pushAll(ts, visualTraits, ctx);
    pushAll(ts, audioTraits, ctx);
    // A stop leaves everything pushed, as it leaves the path.
    if (!pass()) return false;
    popAll(ts, audioTraits, ctx);
    popAll(ts, visualTraits, ctx);
  }
  popAll(ts, travTraits, ctx);
  return true;
}

sxTraverser::TRAV_STATE sxStyle::apply(sxTraverser* traverser, bool skipPreApply) {
  sxTraverser::TRAV_STATE entry;
  if (!entersTraversal(traverser, skipPreApply, entry)) return entry;
  const bool popped = withTraits(traverser->getTravContext(), [&] {
    return sxGroup::apply(traverser, true) != sxTraverser::TRAV_STOP;
  });
  return popped ? sxTraverser::TRAV_CONTINUE : sxTraverser::TRAV_STOP;
}

template <class Agent>
void sxStyle::passWithTraits(Agent* agent) const {
  if (!agent) return;
  withTraits(agent->getTravContext(), [&] {
    sxGroup::apply(agent);
    return true;
  });
}

void sxStyle::apply(sxCamera* camera) const {
  passWithTraits(camera);
}

void sxStyle::apply(sxListener* listener) const {
  passWithTraits(listener);
}

void sxStyle::apply(sxCollider* collider) const {
  passWithTraits(collider);
}

// --- persistence

namespace {

template <class T>
void writeTraits(sxFile* file, sxEntry* e, const sxTList<T*>& list) {
  e->writeInt(list.getNum());
  for (int k = 0; k < list.getNum(); ++k) list[k]->writeRef(file, e);
}

template <class T>
const sxTList<T*>& traitsOf(const sxStyle* style) {
  if constexpr (std::is_same_v<T, sxVisualTrait>)
    return style->getVisualTraits();
  else if constexpr (std::is_same_v<T, sxAudioTrait>)
    return style->getAudioTraits();
  else
    return style->getTravTraits();
}

template <class T>
void readTraits(sxStyle* style, sxFile* file, sxEntry* e) {
  const int count = e->readInt();
  for (int i = 0; i < count; ++i) {
    const int at = e->getCursor();
    sxBase* obj = sxBase::readRef(file, e);
    // A damaged count ends with the data.
    if (e->getCursor() == at) break;
    if (!obj) continue;
    // A trait of the wrong family, one listed twice, and one that a later
    // trait of its type replaces are left out: released with the file
    // unless something else took them.
    if (!obj->isOfType(T::getClassType())) {
      sxiFileAccess::drop(file, obj);
      continue;
    }
    T* trait = static_cast<T*>(obj);
    const sxTList<T*>& held = traitsOf<T>(style);
    for (int k = 0; k < held.getNum(); ++k)
      if (held[k] != trait && held[k]->getTraitIndex() == trait->getTraitIndex())
        sxiFileAccess::drop(file, held[k]);
    if (!style->addTrait(trait)) sxiFileAccess::drop(file, trait);
  }
}

}  // namespace

sxEntry* sxStyle::write(sxFile* file, sxEntry* entry) const {
  sxEntry* created = sxGroup::write(file, entry);
  sxEntry* e = entry ? entry : created;
  if (!e) return created;
  writeTraits(file, e, visualTraits);
  writeTraits(file, e, audioTraits);
  writeTraits(file, e, travTraits);
  return created;
}

sxEntry* sxStyle::read(sxFile* file, sxEntry* entry) {
  releaseTraits();
  sxEntry* e = sxGroup::read(file, entry);
  if (!e) return nullptr;
  readTraits<sxVisualTrait>(this, file, e);
  readTraits<sxAudioTrait>(this, file, e);
  readTraits<sxTravTrait>(this, file, e);
  return e;
}
