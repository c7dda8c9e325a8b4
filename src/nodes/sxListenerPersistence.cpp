#include <sx/nodes/sxListener.h>
#include <sx/persist/sxEntry.h>
#include <sx/persist/sxFile.h>
#include <sx/traversal/sxTraitStack.h>

#include "persist/sxFileState.h"

namespace {

// A reference that the record holds; an object of another kind is left
// out and released with the file unless something else took it.
template <class T>
T* readRefOf(sxFile* file, sxEntry* e) {
  sxBase* obj = sxBase::readRef(file, e);
  if (!obj) return nullptr;
  if (obj->isOfType(T::getClassType())) return static_cast<T*>(obj);
  sxiFileAccess::drop(file, obj);
  return nullptr;
}

}  // namespace

// The audio references are as many as the traversal traits: the format
// bounds that loop by the traversal-trait count. Slots past the last audio
// trait hold no reference, and audio traits past the count are not kept.
sxEntry* sxListener::write(sxFile* file, sxEntry* entry) const {
  sxEntry* created = sxBase::write(file, entry);
  sxEntry* e = entry ? entry : created;
  if (!e) return created;
  matrix.write(e);
  e->writeFloats(&xyz.x, 3);
  e->writeFloats(&hpr.x, 3);
  e->writeInt(getNumAudioTraits());
  for (int i = 0; i < getNumTravTraits(); ++i) {
    if (i < getNumAudioTraits())
      audioTraits[std::size_t(i)]->writeRef(file, e);
    else
      e->writeInt(-1);
  }
  e->writeInt(getNumTravTraits());
  for (const auto& t : travTraits) t->writeRef(file, e);
  if (travContext)
    travContext->writeRef(file, e);
  else
    e->writeInt(-1);
  return created;
}

// The traversal-trait count that bounds the audio references comes after
// them, so it is taken from the size of the rest of the record: n audio
// references, n itself, n traversal references and the context's. Counts
// in the file are never used to size anything.
sxEntry* sxListener::read(sxFile* file, sxEntry* entry) {
  sxEntry* e = sxBase::read(file, entry);
  if (!e) return nullptr;
  sxMatrix m;
  m.read(e);
  // The file's type word is not trusted: a wrong one gives wrong products.
  m.identifyType();
  matrix = m;
  e->readFloats(&xyz.x, 3);
  e->readFloats(&hpr.x, 3);
  placementChanged();
  audioTraits.clear();
  travTraits.clear();
  const int numAudio = e->readInt();
  const int rest = e->getDataSize() - e->getCursor();
  if (rest < 8 || rest % 8 != 0) return nullptr;
  const int n = rest / 8 - 1;
  for (int i = 0; i < n; ++i)
    if (sxAudioTrait* t = readRefOf<sxAudioTrait>(file, e); t && !(i < numAudio && addTrait(t)))
      sxiFileAccess::drop(file, t);
  if (e->readInt() != n) return nullptr;
  for (int i = 0; i < n; ++i)
    if (sxTravTrait* t = readRefOf<sxTravTrait>(file, e); t && !addTrait(t))
      sxiFileAccess::drop(file, t);
  if (sxTravContext* ctx = readRefOf<sxTravContext>(file, e)) {
    // A context is saved without its trait stack.
    if (!ctx->getTraitStack()) ctx->setTraitStack(new sxTraitStack(stackTypes, true));
    setTravContext(ctx);
  }
  return e;
}
