#include <sx/kernel/sxKernel.h>
#include <sx/object/sxBase.h>
#include <sx/object/sxPlugIn.h>
#include <sx/object/sxType.h>

#include <cstring>

#include "kernel/sxHooks.h"
#include "kernel/sxKernelInternal.h"
#include "kernel/sxKernelLocks.h"
#include "object/sxModuleStatic.h"

namespace {

constinit sxiModuleStatic<sxTList<sxType*>> typeList;
// The name hashes of typeList, in the same order, so that a lookup scans
// one contiguous array instead of visiting every record.
constinit sxiModuleStatic<sxTList<std::uint32_t>> typeHashes;
// Announced classes, three parallel lists.
constinit sxiModuleStatic<sxTList<char*>> registeredTypes;
constinit sxiModuleStatic<sxTList<sxType::InitFunc>> initClassFuncs;
constinit sxiModuleStatic<sxTList<sxPlugIn*>> classPlugIns;

// The hash of the case-folded name: lookups ignore case, so the hash that
// screens them must too.
std::uint32_t foldedHash(const char* s) {
  std::uint32_t w = 0;
  for (int i = 0; s[i]; ++i) {
    std::uint32_t c = sxiKernel::foldCase(std::uint8_t(s[i]));
    w ^= c << (8 * (i & 3));
    ++w;
  }
  return w;
}

char* copyString(const char* s) {
  std::size_t n = std::strlen(s) + 1;
  char* p = static_cast<char*>(sxMemory::malloc(n));
  if (p) std::memcpy(p, s, n);
  return p;
}

int findRegistered(const char* name) {
  for (int i = registeredTypes->getNum() - 1; i >= 0; --i)
    if (sxiKernel::compareIgnoreCase((*registeredTypes)[i], name) == 0) return i;
  return -1;
}

void removeRegisteredAt(int i) {
  registeredTypes->removeIndex(i);
  initClassFuncs->removeIndex(i);
  classPlugIns->removeIndex(i);
}

sxType* findCreated(const char* name, std::uint32_t hash, bool fromFirst) {
  int n = typeList->getNum();
  for (int k = 0; k < n; ++k) {
    int i = fromFirst ? k : n - 1 - k;
    if ((*typeHashes)[i] != hash) continue;
    sxType* t = (*typeList)[i];
    if (sxiKernel::compareIgnoreCase(t->getName(), name) == 0) return t;
  }
  return nullptr;
}

bool namesMatch(const sxBase* obj, const char* name) {
  const char* n = obj->getName();
  return n && sxiKernel::compareIgnoreCase(n, name) == 0;
}

}  // namespace

sxTypeRegistryLock::sxTypeRegistryLock() : lock(sxiKernel::getLock(sxiKernel::typeLock)) {
  sxiKernel::acquireLock(static_cast<sxBase*>(lock));
}

sxTypeRegistryLock::~sxTypeRegistryLock() {
  sxiKernel::releaseLock(static_cast<sxBase*>(lock));
}

sxType::sxType(sxType* parentType, const char* typeName, CreateFunc create, RemoveFunc remove,
               sxPlugIn* plugInRecord)
    : name(nullptr),
      nameHash(0),
      parent(parentType),
      plugIn(plugInRecord),
      flags(writableFlag),
      index(-1),
      createFunc(create),
      removeFunc(remove) {
  sxTypeRegistryLock lock;
  if (!typeName) typeName = "";
  if (parent) parent->children.add(this);
  if (plugIn) plugIn->addType(this);
  int r = findRegistered(typeName);
  if (r >= 0) {
    name = (*registeredTypes)[r];  // the record takes over the announced name
    removeRegisteredAt(r);
  } else {
    name = copyString(typeName);
  }
  nameHash = foldedHash(name ? name : "");
  index = typeList->add(this);
  typeHashes->add(nameHash);
}

sxType::~sxType() {
  sxTypeRegistryLock lock;
  if (removeFunc) removeFunc();
  if (parent) parent->children.checkRemoveOrdered(this);
  for (sxType* child : children) child->parent = nullptr;
  if (plugIn) plugIn->removeType(this);
  int at = typeList->getIndex(this);
  if (at >= 0) {
    typeList->removeIndex(at);
    typeHashes->removeIndex(at);
  }
  // Objects still listed (only at module unload) forget this record.
  for (sxBase* obj : instances)
    if (obj->listedType == this) obj->listedType = nullptr;
  sxMemory::free(name);
}

void sxType::remove(sxType* type) {
  delete type;
}

unsigned sxType::getVersion() const {
  return plugIn ? plugIn->getVersion() : sxGetVersion();
}

void sxType::setWritable(bool writable) {
  flags = writable ? (flags | writableFlag) : (flags & ~writableFlag);
}

bool sxType::isOfType(const sxType* other) const {
  if (!other) return false;
  for (const sxType* t = this; t; t = t->parent)
    if (t == other) return true;
  return false;
}

bool sxType::instanceIsOfType(const sxBase* obj, const sxType* type) {
  return obj && obj->isOfType(type);
}

sxBase* sxType::createClassInstance(const sxBase* source) const {
  return createFunc ? createFunc(source) : nullptr;
}

int sxType::getNumChildren() const {
  sxTypeRegistryLock lock;
  return children.getNum();
}

sxType* sxType::getChild(int i) const {
  sxTypeRegistryLock lock;
  return children.indexInRange(i) ? children[i] : nullptr;
}

// --- instance lists

void sxType::addInstance(sxBase* obj) {
  if (!obj) return;
  if (obj->isDisposable()) return;  // arena copies are never listed
  sxTypeRegistryLock lock;
  if (plugIn) plugIn->ref();
  if (this == sxBase::getClassType()) {
    if (obj->baseSlot.load(std::memory_order_relaxed) >= 0) return;
    obj->baseSlot.store(std::int32_t(instances.size()), std::memory_order_relaxed);
  } else if (obj->listedType == this) {
    return;
  } else if (!obj->listedType) {
    obj->listedType = this;
    obj->ownSlot = std::int32_t(instances.size());
  } else {
    // Listed under another class already: an untracked extra entry.
    for (sxBase* o : instances)
      if (o == obj) return;
  }
  instances.push_back(obj);
}

// Unordered removal: the last instance moves into the hole and its slot
// follows it.
void sxType::removeAt(std::size_t i) {
  std::size_t last = instances.size() - 1;
  sxBase* moved = instances[last];
  instances[i] = moved;
  instances.pop_back();
  if (i == last) return;
  if (this == sxBase::getClassType())
    moved->baseSlot.store(std::int32_t(i), std::memory_order_relaxed);
  else if (moved->listedType == this)
    moved->ownSlot = std::int32_t(i);
}

bool sxType::removeInstance(sxBase* obj) {
  if (!obj) return false;
  sxTypeRegistryLock lock;
  bool found = false;
  std::size_t n = instances.size();
  const std::int32_t baseSlot = obj->baseSlot.load(std::memory_order_relaxed);
  if (this == sxBase::getClassType() && baseSlot >= 0 && std::size_t(baseSlot) < n &&
      instances[std::size_t(baseSlot)] == obj) {
    removeAt(std::size_t(baseSlot));
    obj->baseSlot.store(sxBase::unlistedSlot, std::memory_order_relaxed);
    found = true;
  } else if (obj->listedType == this && obj->ownSlot >= 0 && std::size_t(obj->ownSlot) < n &&
             instances[obj->ownSlot] == obj) {
    removeAt(std::size_t(obj->ownSlot));
    obj->listedType = nullptr;
    obj->ownSlot = sxBase::unlistedSlot;
    found = true;
  } else {
    for (std::size_t i = n; i-- > 0;) {
      if (instances[i] != obj) continue;
      removeAt(i);
      found = true;
      break;
    }
  }
  if (plugIn) plugIn->unRef();
  if (isDeletePending() && instances.empty()) delete this;
  return found;
}

bool sxType::deleteType() {
  sxTypeRegistryLock lock;
  if (instances.empty()) {
    delete this;
    return true;
  }
  flags |= deletePendingFlag;
  return false;
}

int sxType::countRecursive() const {
  int n = int(instances.size());
  for (sxType* c : children) n += c->countRecursive();
  return n;
}

int sxType::getNum(bool recursive) const {
  sxTypeRegistryLock lock;
  return recursive ? countRecursive() : int(instances.size());
}

sxBase* sxType::getRecursive(int& i) const {
  if (std::size_t(i) < instances.size()) return instances[std::size_t(i)];
  i -= int(instances.size());
  for (sxType* c : children)
    if (sxBase* obj = c->getRecursive(i)) return obj;
  return nullptr;
}

sxBase* sxType::get(int i, bool recursive) const {
  if (i < 0) return nullptr;
  sxTypeRegistryLock lock;
  if (!recursive) return std::size_t(i) < instances.size() ? instances[std::size_t(i)] : nullptr;
  return getRecursive(i);
}

sxBase* sxType::find(const char* objName, const sxBase* start, bool recursive) const {
  if (!objName) return nullptr;
  sxTypeRegistryLock lock;
  bool passed = start == nullptr;
  // Walks in get() order: own instances, then each child type's.
  struct Walk {
    const char* name;
    const sxBase* start;
    bool& passed;
    sxBase* visit(const sxType* t, bool recursive) {
      for (sxBase* obj : t->instances) {
        if (!namesMatch(obj, name)) continue;
        if (passed) return obj;
        if (obj == start) passed = true;
      }
      if (recursive)
        for (sxType* c : t->children)
          if (sxBase* obj = visit(c, true)) return obj;
      return nullptr;
    }
  } walk{objName, start, passed};
  return walk.visit(this, recursive);
}

void sxType::lockInstanceList() const {
  sxiKernel::acquireLock(sxiKernel::getLock(sxiKernel::typeLock));
}

void sxType::unlockInstanceList() const {
  sxiKernel::releaseLock(sxiKernel::getLock(sxiKernel::typeLock));
}

// --- the registry

int sxType::getNumTypes() {
  sxTypeRegistryLock lock;
  return typeList->getNum();
}

sxType* sxType::getType(int i) {
  sxTypeRegistryLock lock;
  return typeList->indexInRange(i) ? (*typeList)[i] : nullptr;
}

sxType* sxType::findType(const char* typeName) {
  if (!typeName || !*typeName) return nullptr;
  sxTypeRegistryLock lock;
  std::uint32_t h = foldedHash(typeName);
  if (sxType* t = findCreated(typeName, h, false)) return t;
  int r = findRegistered(typeName);
  if (r < 0) return nullptr;
  (*initClassFuncs)[r]((*classPlugIns)[r]);
  return findCreated(typeName, h, false);
}

sxBase* sxType::createInstance(const char* typeName) {
  if (!typeName || !*typeName) return nullptr;
  sxTypeRegistryLock lock;
  std::uint32_t h = foldedHash(typeName);
  sxType* t = findCreated(typeName, h, true);
  if (!t) {
    int r = findRegistered(typeName);
    if (r < 0) return nullptr;
    (*initClassFuncs)[r]((*classPlugIns)[r]);
    t = findCreated(typeName, h, true);
  }
  return t ? t->createClassInstance(nullptr) : nullptr;
}

void sxType::registerClass(const char* typeName, InitFunc init, sxPlugIn* plugInRecord) {
  if (!typeName || !*typeName || !init) return;
  sxTypeRegistryLock lock;
  char* copy = copyString(typeName);
  if (!copy) return;
  registeredTypes->add(copy);
  initClassFuncs->add(init);
  classPlugIns->add(plugInRecord);
}

void sxType::initClass(const char* typeName, InitFunc init) {
  sxTypeRegistryLock lock;
  int r = typeName ? findRegistered(typeName) : -1;
  if (r >= 0)
    (*initClassFuncs)[r]((*classPlugIns)[r]);
  else if (init)
    init(nullptr);
}

void sxType::initAllRegisteredClasses() {
  sxTypeRegistryLock lock;
  while (int n = registeredTypes->getNum()) {
    (*initClassFuncs)[n - 1]((*classPlugIns)[n - 1]);
    // An initialisation function that made no record would loop for ever;
    // drop its announcement instead.
    if (registeredTypes->getNum() == n) {
      sxMemory::free((*registeredTypes)[n - 1]);
      removeRegisteredAt(n - 1);
    }
  }
}

int sxType::getNumRegisteredClasses() {
  sxTypeRegistryLock lock;
  return registeredTypes->getNum();
}

const char* sxType::getRegisteredClassName(int i) {
  sxTypeRegistryLock lock;
  return registeredTypes->indexInRange(i) ? (*registeredTypes)[i] : nullptr;
}

sxPlugIn* sxType::getRegisteredClassPlugIn(int i) {
  sxTypeRegistryLock lock;
  return classPlugIns->indexInRange(i) ? (*classPlugIns)[i] : nullptr;
}

void sxType::removeRegisteredClasses(sxPlugIn* plugInRecord) {
  sxTypeRegistryLock lock;
  for (int i = registeredTypes->getNum() - 1; i >= 0; --i) {
    if (i >= registeredTypes->getNum() || (*classPlugIns)[i] != plugInRecord) continue;
    sxMemory::free((*registeredTypes)[i]);
    removeRegisteredAt(i);
  }
}

void sxType::removeRegisteredClassData() {
  sxTypeRegistryLock lock;
  for (char* s : *registeredTypes) sxMemory::free(s);
  registeredTypes->setSize(0);
  initClassFuncs->setSize(0);
  classPlugIns->setSize(0);
}

sxBase* sxType::importAs(sxType* type, const char* fileName) {
  if (!type) return nullptr;
  sxBase* obj = sxiHooks::importFile ? sxiHooks::importFile(fileName) : nullptr;
  if (obj && !obj->isOfType(type)) {
    obj->unRef();
    return nullptr;
  }
  return obj;
}

void sxType::initRegistry() {
  typeList->setSize(64);
  typeHashes->setSize(64);
  registeredTypes->setSize(64);
  initClassFuncs->setSize(64);
  classPlugIns->setSize(64);
}

void sxType::cleanUpRegistry() {
  removeRegisteredClassData();
  // Records still alive at module unload are destroyed newest first.
  while (typeList->getNum() > 0) delete (*typeList)[typeList->getNum() - 1];
  typeList->setSize(0);
  typeHashes->setSize(0);
}
