// Loader modules: their definitions (module name and extensions, kept for
// the whole run), the live loaders, and the discovery scan.

#include <sx/kernel/sxKernel.h>
#include <sx/object/sxMemory.h>
#include <sx/persist/sxLoader.h>

#include <cstring>
#include <mutex>

#include "kernel/sxKernelInternal.h"
#include "kernel/sxKernelLocks.h"
#include "object/sxModuleStatic.h"
#include "persist/sxLoaderModules.h"
#include "platform/sxPlatform.h"

struct sxiLoaderDef {
  char* name;
  sxTList<char*> extensions;
};

namespace {

using sxiKernel::copyString;

// The definitions only grow; a loader's constructor (on the thread that
// loads its module) adds to them while other threads look up extensions.
constinit std::mutex defsLock;
constinit sxiModuleStatic<sxTList<sxiLoaderDef*>> defs;
constinit sxiModuleStatic<sxTList<sxLoader*>> liveLoaders;

sxiLoaderDef* defAt(int i) {
  return defs->indexInRange(i) ? (*defs)[i] : nullptr;
}

}  // namespace

sxLoader::sxLoader(const char* moduleFileName) : sxPlugIn(moduleFileName), definition(nullptr) {
  setError(ERROR_NONE);
  const char* key = getModuleName() ? getModuleName() : "";
  std::lock_guard<std::mutex> hold(defsLock);
  for (sxiLoaderDef* d : *defs)
    if (sxPlatform::moduleNamesMatch(d->name, key)) definition = d;
  if (!definition) {
    auto* d = sxNew<sxiLoaderDef>();
    if (d && (d->name = copyString(key)) && defs->add(d) >= 0) {
      definition = d;
    } else if (d) {
      sxMemory::free(d->name);
      sxDelete(d);
    }
  }
  liveLoaders->add(this);
}

sxLoader::~sxLoader() {
  std::lock_guard<std::mutex> hold(defsLock);
  liveLoaders->checkRemove(this);
}

bool sxLoader::addExtension(const char* ext) {
  if (!ext || !*ext || !definition) return false;
  std::lock_guard<std::mutex> hold(defsLock);
  for (char* e : definition->extensions)
    if (sxiKernel::compareIgnoreCase(e, ext) == 0) return true;
  char* copy = copyString(ext);
  if (!copy || definition->extensions.add(copy) < 0) {
    sxMemory::free(copy);
    return false;
  }
  return true;
}

int sxLoader::getNumExtensions() const {
  std::lock_guard<std::mutex> hold(defsLock);
  return definition ? definition->extensions.getNum() : 0;
}

const char* sxLoader::getExtension(int i) const {
  std::lock_guard<std::mutex> hold(defsLock);
  return definition && definition->extensions.indexInRange(i) ? definition->extensions[i] : nullptr;
}

int sxLoader::getNumLoaders() {
  std::lock_guard<std::mutex> hold(defsLock);
  return defs->getNum();
}

const char* sxLoader::getLoaderName(int def) {
  std::lock_guard<std::mutex> hold(defsLock);
  sxiLoaderDef* d = defAt(def);
  return d ? d->name : nullptr;
}

int sxLoader::getNumLoaderExtensions(int def) {
  std::lock_guard<std::mutex> hold(defsLock);
  sxiLoaderDef* d = defAt(def);
  return d ? d->extensions.getNum() : 0;
}

const char* sxLoader::getLoaderExtension(int def, int i) {
  std::lock_guard<std::mutex> hold(defsLock);
  sxiLoaderDef* d = defAt(def);
  return d && d->extensions.indexInRange(i) ? d->extensions[i] : nullptr;
}

bool sxiLoaders::moduleFor(const char* ext, sxiKernel::String& moduleName) {
  std::lock_guard<std::mutex> hold(defsLock);
  for (sxiLoaderDef* d : *defs)
    for (int i = d->extensions.getNum() - 1; i >= 0; --i)
      if (sxiKernel::compareIgnoreCase(d->extensions[i], ext) == 0) {
        moduleName = d->name;
        return true;
      }
  return false;
}

sxLoader* sxiLoaders::liveLoaderOf(const char* moduleName) {
  std::lock_guard<std::mutex> hold(defsLock);
  for (sxLoader* l : *liveLoaders)
    if (l->getModuleName() && sxPlatform::moduleNamesMatch(l->getModuleName(), moduleName))
      return l;
  return nullptr;
}

void sxLoader::initLoaders() {
  struct Scan {
    static void file(const char* name, void* user) {
      auto* dir = static_cast<const char*>(user);
      if (!sxPlatform::isLoaderModuleFile(name)) return;
      sxiKernel::String path = dir;
      path += sxPlatform::pathSeparator;
      path += name;
      sxiKernel::plugInTrace("found %s", path.c_str());
      sxPlugIn::load(path.c_str());
    }
    static bool directory(const char* dir, void*) {
      bool readable = sxPlatform::listDirectory(dir, &Scan::file, const_cast<char*>(dir));
      sxiKernel::plugInTrace("searched %s for loader modules%s", dir,
                             readable ? "" : ": cannot read the directory");
      return true;
    }
  };
  sxiKernel::forEachModuleDirectory(&Scan::directory, nullptr);
  sxPlugIn::unloadAll();
}

void sxiLoaders::cleanUp() {
  std::lock_guard<std::mutex> hold(defsLock);
  for (sxiLoaderDef* d : *defs) {
    for (char* e : d->extensions) sxMemory::free(e);
    d->extensions.setSize(0);
    sxMemory::free(d->name);
    sxDelete(d);
  }
  defs->setSize(0);
  liveLoaders->setSize(0);
}
