#include <sx/kernel/sxKernel.h>
#include <sx/object/sxBase.h>
#include <sx/object/sxType.h>
#include <sx/persist/sxEntry.h>
#include <sx/persist/sxFile.h>
#include <sx/persist/sxLoader.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>

#include "kernel/sxKernelInternal.h"
#include "kernel/sxKernelLocks.h"
#include "object/sxModuleStatic.h"
#include "persist/sxFileState.h"
#include "persist/sxLoaderModules.h"
#include "platform/sxPlatform.h"

// A native file type: objects of `type` and its subclasses are saved under
// `extension`.
struct sxiFileType {
  char* extension;
  sxType* type;
};

namespace {

using sxiKernel::copyString;

using String = sxiKernel::String;

// Shared by every thread: the native file types and the save directory.
constinit sxiModuleStatic<sxTList<sxiFileType*>> fileTypes;
constinit char* saveDir = nullptr;
constinit std::mutex sharedLock;

// Each thread's imports and exports report to that thread. Plain storage:
// it must outlive nothing and free nothing when a thread ends.
struct ErrorState {
  sxLoader::LOADER_ERROR code;
  bool hasMessage;  // null message until the first setErrorMessage
  char message[512];
};
constinit thread_local ErrorState lastError{};

struct Progress {
  sxLoader::ProgressFunc func;
  void* user;
};
constinit thread_local Progress progress{};

// The extension of a path: the text after the last '.' of its file name,
// or null when the file name has none.
const char* extensionOf(const char* path) {
  const char* dot = nullptr;
  for (const char* p = path; *p; ++p) {
    if (*p == '/' || *p == '\\')
      dot = nullptr;
    else if (*p == '.')
      dot = p;
  }
  return dot ? dot + 1 : nullptr;
}

// A failure of this layer: the code and a sentence naming the file.
void reportList(sxLoader::LOADER_ERROR code, const char* format, std::va_list args) {
  lastError.code = code;
  lastError.hasMessage = true;
  lastError.message[0] = 0;
  if (format) std::vsnprintf(lastError.message, sizeof lastError.message, format, args);
}

[[gnu::format(printf, 2, 3)]] void report(sxLoader::LOADER_ERROR code, const char* format, ...) {
  std::va_list args;
  va_start(args, format);
  reportList(code, format, args);
  va_end(args);
}

// Starts an import or export: no error, an empty message.
void resetError() {
  lastError.code = sxLoader::ERROR_NONE;
  lastError.message[0] = 0;
}

// Writes `path` through write(temporary), which gives an error code: a
// temporary file beside `path` replaces it only when complete, so a failed
// export leaves an existing file as it was. A failure keeps a message the
// writer left, or reports one.
template <class Write>
bool writeReplacing(const char* path, Write write) {
  char temporary[4096];
  if (!sxPlatform::fileMakeTemporary(path, temporary, sizeof temporary)) {
    report(sxLoader::ERROR_NOT_FOUND, "%s: cannot create a file in its directory", path);
    return false;
  }
  sxLoader::LOADER_ERROR failure = write(temporary);
  if (failure == sxLoader::ERROR_NONE && !sxPlatform::fileRename(temporary, path))
    failure = sxLoader::ERROR_NOT_FOUND;
  if (failure == sxLoader::ERROR_NONE) return true;
  sxPlatform::fileRemove(temporary);
  if (lastError.message[0])
    lastError.code = failure;
  else
    report(failure, "%s: the file could not be written", path);
  return false;
}

}  // namespace

bool sxLoader::fail(LOADER_ERROR code, const char* format, ...) {
  std::va_list args;
  va_start(args, format);
  reportList(code, format, args);
  va_end(args);
  return false;
}

void sxLoader::setProgressFunc(ProgressFunc func, void* user) {
  progress = {func, user};
}

void sxLoader::reportProgress(long long done, long long total) {
  if (!progress.func || total <= 0) return;
  const double part = done <= 0 ? 0.0 : done >= total ? 1.0 : double(done) / double(total);
  progress.func(part, progress.user);
}

void sxLoader::setError(LOADER_ERROR code) {
  lastError.code = code;
}
sxLoader::LOADER_ERROR sxLoader::getError() {
  return lastError.code;
}

void sxLoader::setErrorMessage(const char* msg) {
  if (!lastError.hasMessage) {
    lastError.hasMessage = true;
    lastError.message[0] = 0;
    return;
  }
  std::snprintf(lastError.message, sizeof lastError.message, "%s", msg ? msg : "");
}

const char* sxLoader::getErrorMessage() {
  return lastError.hasMessage ? lastError.message : nullptr;
}

bool sxLoader::exportScene(const sxBase*, const char*) {
  setError(ERROR_NOT_SUPPORTED);
  return false;
}

namespace {

// The loader of the module that claims ext, loaded and held (its module
// cannot be unloaded until release): null when no module claims ext, or
// when it cannot be loaded (then `claimed` tells).
sxLoader* acquireLoader(const char* ext, bool& claimed) {
  String moduleName;
  claimed = sxiLoaders::moduleFor(ext, moduleName);
  if (!claimed) return nullptr;
  sxiKernel::LockGuard lock(sxiKernel::plugInLock);
  sxPlugIn::load(moduleName.c_str());
  sxLoader* loader = sxiLoaders::liveLoaderOf(moduleName.c_str());
  if (loader) loader->ref();
  return loader;
}

}  // namespace

bool sxLoader::addSolmaxFileType(sxType* type, const char* ext) {
  if (!type || !ext) return false;
  std::lock_guard<std::mutex> hold(sharedLock);
  for (sxiFileType* t : *fileTypes)
    if (t->type == type || sxiKernel::compareIgnoreCase(t->extension, ext) == 0) return false;
  auto* record = sxNew<sxiFileType>();
  if (!record) return false;
  record->extension = copyString(ext);
  record->type = type;
  if (!record->extension || fileTypes->add(record) < 0) {
    sxMemory::free(record->extension);
    sxDelete(record);
    return false;
  }
  return true;
}

int sxLoader::getNumSolmaxFileTypes() {
  std::lock_guard<std::mutex> hold(sharedLock);
  return fileTypes->getNum();
}

const char* sxLoader::getSolmaxFileType(int i) {
  std::lock_guard<std::mutex> hold(sharedLock);
  return fileTypes->indexInRange(i) ? (*fileTypes)[i]->extension : nullptr;
}

void sxLoader::setSaveDirectory(const char* dir) {
  char* fresh = copyString(dir ? dir : "", dir ? 1 : 0);
  if (fresh && dir) std::memcpy(fresh + std::strlen(dir), "/", 2);
  std::lock_guard<std::mutex> hold(sharedLock);
  sxMemory::free(saveDir);
  saveDir = fresh;
}

const char* sxLoader::getSaveDirectory() {
  std::lock_guard<std::mutex> hold(sharedLock);
  return saveDir;
}

sxBase* sxLoader::importFile(const char* name) {
  resetError();
  String path;
  if (!sxiKernel::findFile(name, path)) {
    report(ERROR_NOT_FOUND, "%s: not found on the search path", name ? name : "(null)");
    return nullptr;
  }
  const char* ext = extensionOf(path.c_str());
  if (!ext) {
    report(ERROR_NO_EXTENSION, "%s: the name has no extension", path.c_str());
    return nullptr;
  }
  bool claimed = false;
  if (sxLoader* loader = acquireLoader(ext, claimed)) {
    sxBase* root = loader->import(path.c_str());
    loader->unRef();
    // A module that failed without saying why still leaves a reason.
    if (!root && (getError() == ERROR_NONE || !lastError.message[0]))
      report(getError() != ERROR_NONE ? getError() : ERROR_OPEN,
             "%s: the .%s loader could not read the file", path.c_str(), ext);
    return root;
  }
  if (claimed) {
    report(ERROR_OPEN, "%s: the loader module for .%s files cannot be loaded", path.c_str(), ext);
    return nullptr;
  }

  if (!sxFile::isSolmaxFormat(path.c_str())) {
    report(ERROR_OPEN, "%s: no loader reads .%s files, and it is no scene file", path.c_str(), ext);
    return nullptr;
  }
  sxFile file;
  if (!file.open(path.c_str(), "r")) {
    report(ERROR_OPEN, "%s: %s", path.c_str(), file.getErrorMessage());
    return nullptr;
  }
  return readScene(file, path.c_str());
}

sxBase* sxLoader::readScene(sxFile& file, const char* path) {
  if (!path) path = "(unnamed)";
  sxPlugIn::loadPlugIns(&file);
  sxEntry* first = file.getEntry(0);
  sxBase* root = first && !sxiFileAccess::isArrayTag(&file, first->getTag())
                     ? sxiFileAccess::createForTag(&file, first->getTag())
                     : nullptr;
  if (!root) {
    const char* tag = first ? file.getTagDesc(first->getTag()) : nullptr;
    report(ERROR_OPEN, "%s: the root entry names no class that can be made (%s)", path,
           tag ? tag : "no tag");
    file.close();
    return nullptr;
  }
  // The file holds the root like everything else it makes, and gives it
  // back at the close without destroying it, with the references that the
  // file's other objects took on it; a root that cannot be read goes then.
  const std::size_t held = sxiFileAccess::hold(&file, root);
  first->setHandle(root);
  if (!root->read(&file, first) || sxiFileAccess::overBudget(&file)) {
    sxiFileAccess::failed(&file, held);
    report(ERROR_OPEN, "%s: the root object could not be read: %s", path,
           file.getErrorMessage()[0] ? file.getErrorMessage() : "its record is damaged");
    file.close();
    return nullptr;
  }
  // Objects that die at the close (those that could not be read, or a
  // reader dropped: a hostile file may put the root there) may hold the
  // root: it must outlive them, and goes back with what is left.
  root->ref();
  file.close();
  root->unRefNoDelete();
  return root;
}

bool sxLoader::exportFile(const sxBase* root, const char* name) {
  resetError();
  if (!name) {
    report(ERROR_NOT_FOUND, "no file name to export to");
    return false;
  }
  String path;
  sxiFileType* match = nullptr;
  // Looked up first: class registration takes the type lock before this
  // layer's lock.
  const bool isGroup = root && root->isOfType(sxType::findType("sxGroup"));
  {
    std::lock_guard<std::mutex> hold(sharedLock);
    if (saveDir) path = saveDir;
    if (root && !isGroup)
      for (sxiFileType* t : *fileTypes)
        if (root->isOfType(t->type)) {
          match = t;
          break;
        }
  }
  path += name;
  const char* ext = extensionOf(path.c_str());
  bool claimed = false;
  if (sxLoader* loader = ext ? acquireLoader(ext, claimed) : nullptr) {
    // The module writes a file beside the target, which replaces the
    // target only when the module reports success.
    bool written = writeReplacing(path.c_str(), [&](const char* temporary) {
      if (loader->exportScene(root, temporary)) return ERROR_NONE;
      if (getError() == ERROR_NOT_SUPPORTED && !lastError.message[0])
        report(ERROR_NOT_SUPPORTED,
               "%s: the loader of .%s files reads them but does not write them", path.c_str(), ext);
      return getError() != ERROR_NONE ? getError() : ERROR_WRITE;
    });
    loader->unRef();
    return written;
  }
  if (claimed) {
    report(ERROR_NOT_SUPPORTED, "%s: the loader module for .%s files cannot be loaded",
           path.c_str(), ext);
    return false;
  }
  if (!root) {
    report(ERROR_WRITE, "%s: no object to export", path.c_str());
    return false;
  }
  bool hadExtension = ext != nullptr;
  if (!hadExtension) path += '.';
  if (isGroup) {
    if (!hadExtension) path += "sx";
  } else {
    if (!match) {
      const sxType* type = root->getType();
      report(ERROR_NO_FILE_TYPE, "%s: no file type is registered for class %s", path.c_str(),
             type ? type->getName() : "(unknown)");
      return false;
    }
    // Records are never removed while the library runs.
    if (!hadExtension) path += match->extension;
  }

  return writeReplacing(path.c_str(), [root](const char* temporary) {
    sxFile file;
    LOADER_ERROR failure = ERROR_NONE;
    if (!file.create(temporary))
      failure = ERROR_NOT_FOUND;
    else if (!root->write(&file, nullptr))
      failure = ERROR_WRITE;
    if (failure == ERROR_NONE) {
      sxPlugIn::savePlugIns(&file);
      if (!file.write()) failure = ERROR_WRITE;
    }
    file.close();
    return failure;
  });
}

void sxLoader::cleanUpClass() {
  std::lock_guard<std::mutex> hold(sharedLock);
  for (sxiFileType* t : *fileTypes) {
    sxMemory::free(t->extension);
    sxDelete(t);
  }
  fileTypes->setSize(0);
  sxiLoaders::cleanUp();
  sxMemory::free(saveDir);
  saveDir = nullptr;
}
