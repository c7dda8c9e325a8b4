#include <sx/object/sxArena.h>
#include <sx/object/sxBase.h>
#include <sx/object/sxType.h>

#include <cstring>

#include "object/sxDeletion.h"

SX_IMPLEMENT_CLASS_STATICS(sxBase, void, sxType)

namespace {

// The arenas of the arena copies being built on this thread, innermost last,
// and whether the next sxBase to be copy-constructed is such a copy.
struct CopyState {
  static constexpr int maxDepth = 32;
  sxArena* arenas[maxDepth];
  int depth = 0;
  bool pendingUnlisted = false;
};
thread_local CopyState copyState;

char* copyInto(const char* s, sxArena* arena) {
  if (!s) return nullptr;
  std::size_t n = std::strlen(s) + 1;
  void* p = arena ? arena->malloc(unsigned(n)) : sxMemory::malloc(n);
  if (p) std::memcpy(p, s, n);
  return static_cast<char*>(p);
}

}  // namespace

void sxiListInstance(sxBase* obj, sxType* type) {
  if (obj) obj->listInstance(type);
}

void sxBase::beginArenaCopy(sxArena* arena) {
  if (copyState.depth < CopyState::maxDepth) copyState.arenas[copyState.depth] = arena;
  ++copyState.depth;
  copyState.pendingUnlisted = true;
}

void sxBase::endArenaCopy() {
  if (copyState.depth > 0) --copyState.depth;
  copyState.pendingUnlisted = false;
}

sxArena* sxBase::getCopyArena() {
  int d = copyState.depth;
  return d > 0 && d <= CopyState::maxDepth ? copyState.arenas[d - 1] : nullptr;
}

void* sxBase::operator new(std::size_t size, sxArena* arena) noexcept {
  return arena ? arena->malloc(unsigned(size)) : nullptr;
}

sxBase::sxBase(bool unlisted) {
  if (unlisted) return;
  if (sxType* t = sxClassImpl<sxBase, void, sxType>::type()) t->addInstance(this);
}

sxBase::sxBase(const sxBase& source) : sxMemory(), flags(source.flags) {
  if (copyState.pendingUnlisted) {
    // The sxBase part of an arena copy: unlisted, its name in the arena.
    copyState.pendingUnlisted = false;
    baseSlot.store(disposableSlot, std::memory_order_relaxed);
    name = copyInto(source.name, getCopyArena());
    return;
  }
  name = copyInto(source.name, nullptr);
  if (sxType* t = sxClassImpl<sxBase, void, sxType>::type()) t->addInstance(this);
}

sxBase::sxBase(const sxBase& source, sxArena* arena)
    : sxMemory(),
      flags(source.flags),
      name(copyInto(source.name, arena)),
      baseSlot(disposableSlot) {}

sxBase& sxBase::operator=(const sxBase& source) {
  if (this != &source) {
    flags = source.flags;
    setName(source.name);
  }
  return *this;
}

sxBase::~sxBase() {
  if (!isDisposable()) {
    sxTypeRegistryLock lock;
    deleteInstance();
    if (baseSlot.load(std::memory_order_relaxed) >= 0)
      if (sxType* t = getClassType()) t->removeInstance(this);
  }
  if (attributes) {
    for (int i = attributes->getNum() - 1; i >= 0; --i) (*attributes)[i]->unRef();
    sxDelete(attributes);
    attributes = nullptr;
  }
  if (!isDisposable()) sxMemory::free(name);
  name = nullptr;
}

void sxBase::deleteInstance() {
  if (sxType* t = listedType) t->removeInstance(this);
}

void sxBase::listInstance(sxType* type) {
  if (!type || isDisposable() || listedType == type) return;
  sxTypeRegistryLock lock;
  if (listedType) listedType->removeInstance(this);
  type->addInstance(this);
}

sxBase* sxBase::createCopy() const {
  return sxClassImpl<sxBase, void, sxType>::copy(*this);
}

sxType* sxBase::getType() const {
  return sxClassImpl<sxBase, void, sxType>::type();
}

sxBase* sxBase::createDisposableCopy(sxArena* arena) const {
  if (!arena) return nullptr;
  return new (arena) sxBase(*this, arena);
}

// Counts change with single atomic operations; the decision about a
// released object is taken by the deletion policy.
void sxBase::ref() {
  refCount.fetch_add(1, std::memory_order_relaxed);
}

void sxBase::unRef() {
  if (refCount.fetch_sub(1, std::memory_order_acq_rel) - 1 > 0) return;
  sxiDeletion::release(this);
}

void sxBase::enableDynamic(bool enable) {
  flags = enable ? (flags | dynamicFlag) : (flags & ~dynamicFlag);
}

void sxBase::initRenderContext(sxRenderContext*) const {}

void sxBase::setName(const char* newName) {
  if (!newName) {
    if (!isDisposable()) sxMemory::free(name);
    name = nullptr;
    return;
  }
  if (newName == name) return;
  std::size_t n = std::strlen(newName) + 1;
  // An arena copy's name lives in the arena and is never freed.
  char* p = static_cast<char*>(isDisposable() ? sxMemory::malloc(n) : sxMemory::realloc(name, n));
  if (!p) return;
  std::memmove(p, newName, n);
  name = p;
}

void sxBase::addAttribute(sxBase* attribute) {
  if (!attribute) return;
  if (!attributes) attributes = sxNew<sxTList<sxBase*>>();
  if (!attributes) return;
  attribute->ref();
  attributes->add(attribute);
}

bool sxBase::isOfType(const sxType* type) const {
  sxType* t = getType();
  return t && t->isOfType(type);
}

bool sxBase::isOfType(const sxBase* other) const {
  return other && isOfType(other->getType());
}

bool sxBase::isOfExactType(const sxType* type) const {
  return type && getType() == type;
}

bool sxBase::isOfExactType(const sxBase* other) const {
  return other && getType() == other->getType();
}

bool sxBase::operator==(const sxBase& other) const {
  if (flags != other.flags) return false;
  if (!name || !other.name) return name == other.name;
  return std::strcmp(name, other.name) == 0;
}

int sxBase::getNumPendingDeletions() {
  return sxiDeletion::pending();
}

void sxBase::markDeleted(sxBase*) {
  sxiDeletion::addPending(-1);
}
