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

using sxiKernel::copyString;

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

// Takes an instance lock for a scope, unless the calling thread holds it
// across calls already.
class ListScope {
 public:
  explicit ListScope(sxiInstanceLock& lock) : lock(lock), entered(lock.enter()) {}
  ~ListScope() {
    if (entered) lock.leave();
  }
  ListScope(const ListScope&) = delete;
  ListScope& operator=(const ListScope&) = delete;

 private:
  sxiInstanceLock& lock;
  bool entered;
};

// Type records by the list id that their listed objects carry. Ids are
// handed out under the registry lock; finding a record takes no lock: its
// page is made before the id is handed out and kept until unload.
class ListIds {
 public:
  sxType* find(std::uint16_t id) const {
    const Page* page = id ? pages[id / pageSize].load(std::memory_order_acquire) : nullptr;
    return page ? page->at[id % pageSize].load(std::memory_order_acquire) : nullptr;
  }

  // 0 when every id is taken.
  std::uint16_t add(sxType* type) {
    std::uint32_t id = next < limit ? next++ : 0;
    for (std::uint32_t i = 1; id == 0 && i < limit; ++i)
      if (!find(std::uint16_t(i))) id = i;  // ids of destroyed records come back last
    if (id == 0) return 0;
    std::atomic<Page*>& page = pages[id / pageSize];
    if (!page.load(std::memory_order_relaxed)) {
      Page* made = sxNew<Page>();
      if (!made) return 0;
      page.store(made, std::memory_order_release);
    }
    page.load(std::memory_order_relaxed)->at[id % pageSize].store(type, std::memory_order_release);
    return std::uint16_t(id);
  }

  void remove(std::uint16_t id) {
    if (Page* page = id ? pages[id / pageSize].load(std::memory_order_relaxed) : nullptr)
      page->at[id % pageSize].store(nullptr, std::memory_order_release);
  }

  void clear() {
    for (std::atomic<Page*>& page : pages) sxDelete(page.exchange(nullptr));
    next = 1;
  }

 private:
  static constexpr std::uint32_t limit = 65536, pageSize = 256;
  struct Page {
    std::atomic<sxType*> at[pageSize] = {};
  };
  std::atomic<Page*> pages[limit / pageSize] = {};
  std::uint32_t next = 1;
};
constinit ListIds listIds;

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
  listId = listIds.add(this);
  // A class made while this thread holds the lists of its parent (or all
  // lists) across calls is held as often, so that the releases find it held.
  const sxType* cover = parent ? parent : sxBase::getClassType();
  for (unsigned n = cover ? cover->instanceLock.holdsHere() : 0; n > 0; --n) instanceLock.hold();
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
  {
    // Objects still listed (only at module unload) forget this record.
    ListScope scope(instanceLock);
    for (sxBase* obj : instances) {
      if (listId == 0 || obj->listId.load(std::memory_order_relaxed) != listId) continue;
      obj->listId.store(0, std::memory_order_relaxed);
      obj->slot.store(sxBase::unlistedSlot, std::memory_order_relaxed);
    }
  }
  listIds.remove(listId);
  while (instanceLock.holdsHere() > 0) instanceLock.unhold();
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

sxType* sxType::fromListId(std::uint16_t id) {
  return listIds.find(id);
}

bool sxType::listsAll() const {
  return this == sxBase::getClassType();
}

void sxType::addInstance(sxBase* obj) {
  if (!obj) return;
  if (obj->isDisposable()) return;  // arena copies are never listed
  if (plugIn) plugIn->ref();
  ListScope scope(instanceLock);
  const std::uint16_t at = obj->listId.load(std::memory_order_relaxed);
  if (listId != 0 && at == listId) return;
  if (listId != 0 && at == 0) {
    obj->slot.store(std::int32_t(instances.size()), std::memory_order_relaxed);
    obj->listId.store(listId, std::memory_order_relaxed);
  } else {
    // Listed under another class already (or no ids left): an entry that
    // is found by search.
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
  if (i != last && listId != 0 && moved->listId.load(std::memory_order_relaxed) == listId)
    moved->slot.store(std::int32_t(i), std::memory_order_relaxed);
}

bool sxType::removeInstance(sxBase* obj) {
  if (!obj) return false;
  bool found = false, orphaned = false;
  {
    ListScope scope(instanceLock);
    const std::size_t n = instances.size();
    const std::int32_t at = obj->slot.load(std::memory_order_relaxed);
    if (listId != 0 && obj->listId.load(std::memory_order_relaxed) == listId && at >= 0 &&
        std::size_t(at) < n && instances[std::size_t(at)] == obj) {
      removeAt(std::size_t(at));
      obj->slot.store(sxBase::unlistedSlot, std::memory_order_relaxed);
      obj->listId.store(0, std::memory_order_relaxed);
      found = true;
    } else {
      for (std::size_t i = n; i-- > 0;) {
        if (instances[i] != obj) continue;
        removeAt(i);
        found = true;
        break;
      }
    }
    orphaned = isDeletePending() && instances.empty();
  }
  if (plugIn) plugIn->unRef();
  if (orphaned) deleteIfOrphaned();
  return found;
}

// The record goes with its last instance once it was asked to; it is
// destroyed under the registry lock, which no list lock is held across.
void sxType::deleteIfOrphaned() {
  sxTypeRegistryLock lock;
  bool empty;
  {
    ListScope scope(instanceLock);
    empty = isDeletePending() && instances.empty();
    if (empty) flags &= ~deletePendingFlag;  // one thread destroys it
  }
  if (empty) delete this;
}

bool sxType::deleteType() {
  sxTypeRegistryLock lock;
  {
    ListScope scope(instanceLock);
    if (!instances.empty()) {
      flags |= deletePendingFlag;
      return false;
    }
  }
  delete this;
  return true;
}

int sxType::countOwn() const {
  ListScope scope(instanceLock);
  return int(instances.size());
}

// The following walk the registry or the child lists: the registry lock
// is held.
int sxType::countListed() const {
  if (!listsAll()) return countOwn();
  int n = 0;
  for (sxType* t : *typeList) n += t->countOwn();
  return n;
}

int sxType::countRecursive() const {
  int n = countOwn();
  for (sxType* c : children) n += c->countRecursive();
  return n;
}

int sxType::getNum(bool recursive) const {
  if (!recursive && !listsAll()) return countOwn();
  sxTypeRegistryLock lock;
  int n = countListed();
  if (recursive)
    for (sxType* c : children) n += c->countRecursive();
  return n;
}

sxBase* sxType::getOwn(int& i) const {
  ListScope scope(instanceLock);
  if (std::size_t(i) < instances.size()) return instances[std::size_t(i)];
  i -= int(instances.size());
  return nullptr;
}

sxBase* sxType::getListed(int& i) const {
  if (!listsAll()) return getOwn(i);
  for (sxType* t : *typeList)
    if (sxBase* obj = t->getOwn(i)) return obj;
  return nullptr;
}

sxBase* sxType::getRecursive(int& i) const {
  if (sxBase* obj = getOwn(i)) return obj;
  for (sxType* c : children)
    if (sxBase* obj = c->getRecursive(i)) return obj;
  return nullptr;
}

sxBase* sxType::get(int i, bool recursive) const {
  if (i < 0) return nullptr;
  if (!recursive && !listsAll()) return getOwn(i);
  sxTypeRegistryLock lock;
  if (sxBase* obj = getListed(i)) return obj;
  if (recursive)
    for (sxType* c : children)
      if (sxBase* obj = c->getRecursive(i)) return obj;
  return nullptr;
}

sxBase* sxType::find(const char* objName, const sxBase* start, bool recursive) const {
  if (!objName) return nullptr;
  // Walks in get() order: the listed instances, then each child type's.
  struct Walk {
    const char* name;
    const sxBase* start;
    bool passed;
    sxBase* own(const sxType* t) {
      ListScope scope(t->instanceLock);
      for (sxBase* obj : t->instances) {
        if (!namesMatch(obj, name)) continue;
        if (passed) return obj;
        if (obj == start) passed = true;
      }
      return nullptr;
    }
    sxBase* listed(const sxType* t) {
      if (!t->listsAll()) return own(t);
      for (sxType* each : *typeList)
        if (sxBase* obj = own(each)) return obj;
      return nullptr;
    }
    sxBase* subtree(const sxType* t) {
      if (sxBase* obj = own(t)) return obj;
      for (sxType* c : t->children)
        if (sxBase* obj = subtree(c)) return obj;
      return nullptr;
    }
  } walk{objName, start, start == nullptr};
  if (!recursive && !listsAll()) return walk.own(this);
  sxTypeRegistryLock lock;
  if (sxBase* obj = walk.listed(this)) return obj;
  if (recursive)
    for (sxType* c : children)
      if (sxBase* obj = walk.subtree(c)) return obj;
  return nullptr;
}

// The lists that this record's enumerations read (under the registry lock).
template <class Visit>
void sxType::forEachCoveredList(Visit visit) const {
  if (listsAll()) {
    for (sxType* t : *typeList) visit(t);
    return;
  }
  struct Walk {
    Visit& visit;
    void subtree(const sxType* t) {
      visit(t);
      for (sxType* c : t->children) subtree(c);
    }
  } walk{visit};
  walk.subtree(this);
}

void sxType::lockInstanceList() const {
  sxiKernel::acquireLock(sxiKernel::getLock(sxiKernel::typeLock));
  forEachCoveredList([](const sxType* t) { t->instanceLock.hold(); });
}

void sxType::unlockInstanceList() const {
  forEachCoveredList([](const sxType* t) { t->instanceLock.unhold(); });
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
  listIds.clear();
}
