#include <sx/object/sxArena.h>
#include <sx/object/sxBase.h>
#include <sx/object/sxType.h>

#include <cstring>

#include "object/sxAttributeTable.h"
#include "object/sxDeletion.h"
#include "object/sxObjectPool.h"
#include "platform/sxPlatform.h"

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

void* sxBase::operator new(std::size_t size) noexcept {
  return sxiObjectPool::allocate(size);
}

void sxBase::operator delete(void* p, std::size_t size) noexcept {
  sxiObjectPool::release(p, size);
}

namespace {
// The object that newListed made last on this thread and the list id of
// its class, until the object's sxBase part is built.
struct PendingListing {
  void* object;
  std::uint16_t listId;
};
SX_TLS_FAST constinit thread_local PendingListing pendingListing{};
}  // namespace

void* sxBase::newListed(std::size_t size, const sxType* type) noexcept {
  void* p = sxiObjectPool::allocate(size);
  if (p && type && type->listId != 0) pendingListing = {p, type->listId};
  return p;
}

// Only the object itself matches: an object made while the arguments of
// another's constructor were worked out took the note over, and the other
// is then listed the usual way.
bool sxBase::takePendingListing() {
  if (pendingListing.object != this) return false;
  pendingListing.object = nullptr;
  slot.store(pendingSlot, std::memory_order_relaxed);
  listId.store(pendingListing.listId, std::memory_order_relaxed);
  return true;
}

void* sxBase::operator new(std::size_t size, sxArena* arena) noexcept {
  return arena ? arena->malloc(unsigned(size)) : nullptr;
}

sxBase::sxBase(bool unlisted) {
  if (unlisted) {
    if (pendingListing.object == this) pendingListing.object = nullptr;
    return;
  }
  if (takePendingListing()) return;
  if (sxType* t = sxClassImpl<sxBase, void, sxType>::type()) t->addInstance(this);
}

sxBase::sxBase(const sxBase& source) : sxMemory(), flags(source.flags) {
  if (copyState.pendingUnlisted) {
    // The sxBase part of an arena copy: unlisted, its name in the arena.
    copyState.pendingUnlisted = false;
    slot.store(disposableSlot, std::memory_order_relaxed);
    initName(source.getName(), getCopyArena());
    return;
  }
  initName(source.getName(), nullptr);
  if (takePendingListing()) return;
  if (sxType* t = sxClassImpl<sxBase, void, sxType>::type()) t->addInstance(this);
}

sxBase::sxBase(const sxBase& source, sxArena* arena)
    : sxMemory(), flags(source.flags), slot(disposableSlot) {
  initName(source.getName(), arena);
}

sxBase& sxBase::operator=(const sxBase& source) {
  if (this != &source) {
    flags = source.flags;
    setName(source.getName());
  }
  return *this;
}

sxBase::~sxBase() {
  deleteInstance();
  if (state & attributesBit) {
    state &= std::uint16_t(~attributesBit);
    if (sxTList<sxBase*>* attributes = sxiAttributeTable::take(this)) {
      for (int i = attributes->getNum() - 1; i >= 0; --i) (*attributes)[i]->unRef();
      sxDelete(attributes);
    }
  }
  freeName();
}

void sxBase::deleteInstance() {
  if (isDisposable() || slot.load(std::memory_order_relaxed) == pendingSlot) return;
  if (sxType* t = sxType::fromListId(listId.load(std::memory_order_relaxed)))
    t->removeInstance(this);
}

void sxBase::listInstance(sxType* type) {
  if (!type || isDisposable()) return;
  const std::uint16_t at = listId.load(std::memory_order_relaxed);
  if (slot.load(std::memory_order_relaxed) == pendingSlot) {
    if (at != type->listId) return;  // a class further down its chain lists it
    slot.store(unlistedSlot, std::memory_order_relaxed);
    listId.store(0, std::memory_order_relaxed);
    type->addInstance(this);
    return;
  }
  if (at != 0 && at == type->listId) return;
  // Out of the list of the class whose constructor listed it before, into
  // this one's: never both lists' locks at once.
  if (sxType* old = sxType::fromListId(at)) old->removeInstance(this);
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

void sxBase::initName(const char* source, sxArena* arena) {
  if (!source) return;
  const std::size_t n = std::strlen(source) + 1;
  if (n <= shortNameSize) {
    std::memcpy(shortName, source, n);
    state |= shortNameBit;
    return;
  }
  void* p = arena ? arena->malloc(unsigned(n)) : sxMemory::malloc(n);
  if (p) std::memcpy(p, source, n);
  heapName = static_cast<char*>(p);
}

// An arena copy's long name lives in the arena and is never freed.
void sxBase::freeName() {
  if (state & shortNameBit)
    state &= std::uint16_t(~shortNameBit);
  else if (!isDisposable())
    sxMemory::free(heapName);
  heapName = nullptr;
}

void sxBase::setName(const char* newName) {
  if (newName == getName()) return;
  if (!newName) {
    freeName();
    return;
  }
  const std::size_t n = std::strlen(newName) + 1;
  if (n <= shortNameSize) {
    // newName may lie in the block that is freed.
    char copy[shortNameSize];
    std::memcpy(copy, newName, n);
    freeName();
    std::memcpy(shortName, copy, n);
    state |= shortNameBit;
    return;
  }
  // A longer name than 15 characters cannot be part of a short one; part
  // of a long one fits the block it lies in, which realloc then keeps.
  const bool ownBlock = !(state & shortNameBit) && heapName && !isDisposable();
  char* p = static_cast<char*>(ownBlock ? sxMemory::realloc(heapName, n) : sxMemory::malloc(n));
  if (!p) return;
  std::memmove(p, newName, n);
  if (!ownBlock) freeName();
  heapName = p;
}

void sxBase::addAttribute(sxBase* attribute) {
  if (!attribute) return;
  sxTList<sxBase*>* attributes = sxiAttributeTable::findOrMake(this);
  if (!attributes) return;
  state |= attributesBit;
  attribute->ref();
  attributes->add(attribute);
}

const sxTList<sxBase*>* sxBase::findAttributes() const {
  return sxiAttributeTable::find(this);
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
  const char* a = getName();
  const char* b = other.getName();
  if (!a || !b) return a == b;
  return std::strcmp(a, b) == 0;
}

int sxBase::getNumPendingDeletions() {
  return sxiDeletion::pending();
}

void sxBase::markDeleted(sxBase*) {
  sxiDeletion::addPending(-1);
}
