#include <sx/nodes/sxGroupType.h>
#include <sx/traversal/sxTraitStack.h>
#include <sx/traversal/sxTravContext.h>
#include <sx/viewing/sxStyle.h>

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

// A copy or clone of a style shares the traits: they are read-only while
// traversed.
sxGroup* sxStyle::copyGroup() const {
  return newCopyOf(*this, false);
}

sxGroup* sxStyle::cloneGroup() const {
  return newCopyOf(*this, true);
}

sxTraverser::TRAV_STATE sxStyle::apply(sxTraverser* traverser, bool skipPreApply) {
  if (!skipPreApply) {
    sxTraverser::TRAV_STATE s = traverser->preApply(this);
    if (s != sxTraverser::TRAV_CONTINUE) return s;
  }
  sxTravContext* ctx = traverser->getTravContext();
  sxTraitStack* ts = ctx ? ctx->getTraitStack() : nullptr;
  if (!ts) return sxGroup::apply(traverser, true);
  pushAll(ts, travTraits, ctx);
  if (!ctx->anyFlags(sxTravContext::FLAG_PRUNE)) {
    pushAll(ts, visualTraits, ctx);
    pushAll(ts, audioTraits, ctx);
    if (sxGroup::apply(traverser, true) == sxTraverser::TRAV_STOP) return sxTraverser::TRAV_STOP;
    popAll(ts, audioTraits, ctx);
    popAll(ts, visualTraits, ctx);
  }
  popAll(ts, travTraits, ctx);
  return sxTraverser::TRAV_CONTINUE;
}
