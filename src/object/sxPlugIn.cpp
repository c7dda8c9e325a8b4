#include <sx/kernel/sxKernel.h>
#include <sx/object/sxMemory.h>
#include <sx/object/sxPlugIn.h>
#include <sx/object/sxType.h>

#include <cctype>
#include <cstring>

#include "kernel/sxKernelInternal.h"
#include "kernel/sxKernelLocks.h"
#include "object/sxModuleStatic.h"
#include "platform/sxPlatform.h"

namespace {

using sxiKernel::copyString;

constinit sxiModuleStatic<sxTList<sxPlugIn*>> plugIns;
constinit bool plugInLoadingEnabled = false;

void replaceString(char*& field, const char* s) {
  char* copy = copyString(s);
  sxMemory::free(field);
  field = copy;
}

}  // namespace

sxPlugIn::sxPlugIn(const char* moduleFileName)
    : refCount(0),
      module(nullptr),
      major(0),
      minor(0),
      build(0),
      name(nullptr),
      date(nullptr),
      company(nullptr),
      moduleName(nullptr),
      dynamic(false),
      loadedHere(false),
      saveWithFile(true) {
  if (moduleFileName) {
    moduleName = getModuleName(moduleFileName);
    sxMessage("Loading plug-in:   %s\n", moduleName ? moduleName : "");
    module = sxPlatform::moduleFind(moduleName);
  }
  // A module loaded after sxInit counts its instances; one present at
  // start-up does not.
  dynamic = module != nullptr && sxiKernel::initFlag();
  sxiKernel::LockGuard lock(sxiKernel::plugInLock);
  plugIns->add(this);
}

sxPlugIn::~sxPlugIn() {
  sxiKernel::LockGuard lock(sxiKernel::plugInLock);
  for (int i = types.getNum() - 1; i >= 0; --i)
    if (i < types.getNum()) types[i]->deleteType();
  sxType::removeRegisteredClasses(this);
  if (moduleName) sxMessage("Unloading plug-in: %s\n", moduleName);
  sxMemory::free(company);
  sxMemory::free(date);
  sxMemory::free(name);
  sxMemory::free(moduleName);
  company = date = name = moduleName = nullptr;
  plugIns->checkRemove(this);
  // Types still alive (they have instances) outlive the record; they must
  // not call back into it.
  for (sxType* t : types) t->plugIn = nullptr;
  types.setSize(0);
}

void sxPlugIn::ref() {
  if (!dynamic) return;
  sxiKernel::LockGuard lock(sxiKernel::plugInLock);
  ++refCount;
}

void sxPlugIn::unRef() {
  if (!dynamic) return;
  sxiKernel::LockGuard lock(sxiKernel::plugInLock);
  --refCount;
}

void sxPlugIn::setCompany(const char* s) {
  replaceString(company, s);
}
void sxPlugIn::setName(const char* s) {
  replaceString(name, s);
}
void sxPlugIn::setRelease(int ma, int mi, int bu, const char* d) {
  major = ma;
  minor = mi;
  build = bu;
  replaceString(date, d);
}
void sxPlugIn::enableSaveWithFile(bool enable) {
  saveWithFile = enable;
}

bool sxPlugIn::unload() {
  sxiKernel::LockGuard lock(sxiKernel::plugInLock);
  if (!dynamic || refCount > 0 || !loadedHere) return false;
  // Releasing the module runs its static destructors, which destroy this
  // record: nothing of it may be touched afterwards, unless the system
  // kept the module (another holder, or a module that cannot be unloaded),
  // and then it is not unloaded again.
  sxPlugIn* self = this;
  if (!sxPlatform::moduleFree(module)) return false;
  for (sxPlugIn* p : *plugIns)
    if (p == self) {
      sxiKernel::plugInTrace("%s stays loaded", self->moduleName ? self->moduleName : "a module");
      self->loadedHere = false;
      break;
    }
  return true;
}

void sxPlugIn::unloadAll() {
  sxiKernel::LockGuard lock(sxiKernel::plugInLock);
  // An unload changes the list: every success starts the walk again.
  for (bool unloaded = true; unloaded;) {
    unloaded = false;
    for (int i = 0; i < plugIns->getNum() && !unloaded; ++i) unloaded = (*plugIns)[i]->unload();
  }
}

unsigned sxPlugIn::getVersion() const {
  return sxMakeVersion(unsigned(major), unsigned(minor), unsigned(build));
}

void sxPlugIn::addType(sxType* type) {
  types.add(type);
}
void sxPlugIn::removeType(sxType* type) {
  types.checkRemoveOrdered(type);
}

sxPlugIn* sxPlugIn::find(const char* wanted) {
  if (!wanted) return nullptr;
  sxiKernel::LockGuard lock(sxiKernel::plugInLock);
  for (sxPlugIn* p : *plugIns)
    if (p->moduleName && sxPlatform::moduleNamesMatch(p->moduleName, wanted)) return p;
  return nullptr;
}

sxPlugIn* sxPlugIn::find(void* handle) {
  if (!handle) return nullptr;
  sxiKernel::LockGuard lock(sxiKernel::plugInLock);
  for (sxPlugIn* p : *plugIns)
    if (p->module == handle) return p;
  return nullptr;
}

int sxPlugIn::getNum() {
  sxiKernel::LockGuard lock(sxiKernel::plugInLock);
  return plugIns->getNum();
}

sxPlugIn* sxPlugIn::get(int i) {
  sxiKernel::LockGuard lock(sxiKernel::plugInLock);
  return plugIns->indexInRange(i) ? (*plugIns)[i] : nullptr;
}

sxPlugIn* sxPlugIn::load(const char* fileName) {
  char* moduleName = getModuleName(fileName);
  if (!moduleName) return nullptr;
  sxiKernel::LockGuard lock(sxiKernel::plugInLock);
  sxPlugIn* record = find(moduleName);
  if (!record) {
    sxMessage("Attempting to load plug-in: %s \n", moduleName);
    // A module that is present but made no record is not adopted.
    if (sxPlatform::moduleFind(moduleName)) {
      sxiKernel::plugInTrace("%s is in the process already but made no plug-in record", moduleName);
    } else {
      record = loadModule(fileName, moduleName);
    }
  }
  sxMemory::free(moduleName);
  return record;
}

sxPlugIn* sxPlugIn::loadModule(const char* fileName, const char* moduleName) {
  // A name with a directory is that file; a bare one is looked for in the
  // module directories, ignoring case, then by the system's own search.
  sxiKernel::String path;
  const bool hasDirectory = std::strpbrk(fileName, "/\\") != nullptr;
  if (hasDirectory)
    path = fileName;
  else if (!sxiKernel::findModuleFile(moduleName, path))
    path = fileName;
  char reason[512] = "";
  void* handle = sxPlatform::moduleLoad(path.c_str(), reason, sizeof reason);
  if (!handle) {
    sxiKernel::plugInTrace("cannot load %s: %s", path.c_str(), reason);
    sxMessage("Error loading plug-in: %s \n", moduleName);
    return nullptr;
  }
  sxPlugIn* record = find(moduleName);
  if (!record) record = find(handle);
  if (!record) {
    // A shared library of the right name that is no module (or whose
    // initialisers made no record) goes again.
    sxiKernel::plugInTrace("%s made no plug-in record: not a module, skipped", path.c_str());
    sxPlatform::moduleFree(handle);
    return nullptr;
  }
  sxiKernel::plugInTrace("loaded %s", path.c_str());
  if (!record->module) record->module = handle;
  record->dynamic = true;
  record->loadedHere = true;
  return record;
}

void sxPlugIn::enableDynamicPlugIns(bool enable) {
  plugInLoadingEnabled = enable;
}
bool sxPlugIn::isDynamicPlugInsEnabled() {
  return plugInLoadingEnabled;
}

char* sxPlugIn::getModuleName(const char* path) {
  if (!path) return nullptr;
  const char* base = path;
  for (const char* p = path; *p; ++p)
    if (*p == '\\' || *p == '/') base = p + 1;
  char* result = copyString(base);
  if (!result) return nullptr;
  for (char* p = result; *p; ++p) *p = char(std::toupper(static_cast<unsigned char>(*p)));
  if (char* marker = std::strstr(result, "-DBG"))
    std::memmove(marker, marker + 4, std::strlen(marker + 4) + 1);
  return result;
}

void sxPlugIn::initClass() {
  plugIns->setSize(8);
}
void sxPlugIn::cleanUpClass() {
  plugIns->setSize(0);
}
