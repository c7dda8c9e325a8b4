#include <sx/kernel/sxKernel.h>
#include <sx/object/sxBase.h>
#include <sx/object/sxType.h>
#include <sx/persist/sxEntry.h>
#include <sx/persist/sxFile.h>
#include <sx/persist/sxLoader.h>

#include <cstring>
#include <string>

#include "kernel/sxKernelInternal.h"
#include "object/sxModuleStatic.h"
#include "persist/sxFileState.h"
#include "platform/sxPlatform.h"

// A native file type: objects of `type` and its subclasses are saved under
// `extension`.
struct sxiFileType {
  char* extension;
  sxType* type;
};

namespace {

using String = std::basic_string<char, std::char_traits<char>, sxAllocator<char>>;

constinit sxiModuleStatic<sxTList<sxiFileType*>> fileTypes;
constinit sxLoader::LOADER_ERROR errorCode = sxLoader::ERROR_NONE;
constinit char* errorMessage = nullptr;
constinit char* saveDir = nullptr;

char* copyString(const char* s, std::size_t extra = 0) {
  std::size_t n = std::strlen(s) + 1;
  char* p = static_cast<char*>(sxMemory::malloc(n + extra));
  if (p) std::memcpy(p, s, n);
  return p;
}

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

}  // namespace

void sxLoader::setError(LOADER_ERROR code) {
  errorCode = code;
}
sxLoader::LOADER_ERROR sxLoader::getError() {
  return errorCode;
}

void sxLoader::setErrorMessage(const char* msg) {
  if (!errorMessage) {
    errorMessage = copyString("");
    return;
  }
  if (!msg) msg = "";
  char* fresh = copyString(msg, 10);
  if (!fresh) return;
  sxMemory::free(errorMessage);
  errorMessage = fresh;
}

const char* sxLoader::getErrorMessage() {
  return errorMessage;
}

bool sxLoader::exportScene(const sxBase*, const char*) {
  setError(ERROR_NOT_SUPPORTED);
  return false;
}

// Loader modules register their extensions when they are discovered;
// until one has, every file is the library's own format.
sxLoader* sxLoader::findLoader(const char*) {
  return nullptr;
}

bool sxLoader::addSolmaxFileType(sxType* type, const char* ext) {
  if (!type || !ext) return false;
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
  return fileTypes->getNum();
}

const char* sxLoader::getSolmaxFileType(int i) {
  return fileTypes->indexInRange(i) ? (*fileTypes)[i]->extension : nullptr;
}

void sxLoader::setSaveDirectory(const char* dir) {
  sxMemory::free(saveDir);
  saveDir = nullptr;
  if (!dir) {
    saveDir = copyString("");
    return;
  }
  std::size_t n = std::strlen(dir);
  saveDir = copyString(dir, 1);
  if (saveDir) std::memcpy(saveDir + n, "/", 2);
}

const char* sxLoader::getSaveDirectory() {
  return saveDir;
}

sxBase* sxLoader::importFile(const char* name) {
  setError(ERROR_NONE);
  int length = name ? sxFindFile(name, 0, nullptr) : 0;
  if (length <= 0) {
    setError(ERROR_NOT_FOUND);
    return nullptr;
  }
  String path(std::size_t(length), '\0');
  if (sxFindFile(name, length, path.data()) <= 0) {
    setError(ERROR_NOT_FOUND);
    return nullptr;
  }
  path.resize(std::strlen(path.c_str()));
  const char* ext = extensionOf(path.c_str());
  if (!ext) {
    setError(ERROR_NO_EXTENSION);
    return nullptr;
  }
  if (sxLoader* loader = findLoader(ext)) return loader->import(path.c_str());

  sxFile file;
  if (!sxFile::isSolmaxFormat(path.c_str()) || !file.open(path.c_str(), "r")) {
    setError(ERROR_OPEN);
    return nullptr;
  }
  sxPlugIn::loadPlugIns(&file);
  sxEntry* first = file.getEntry(0);
  sxBase* root = first && !sxiFileAccess::isArrayTag(&file, first->getTag())
                     ? sxiFileAccess::createForTag(&file, first->getTag())
                     : nullptr;
  if (!root) {
    setError(ERROR_OPEN);
    return nullptr;
  }
  // The file holds the root like everything else it makes, and gives it
  // back at the close without destroying it, with the references that the
  // file's other objects took on it; a root that cannot be read goes then.
  const std::size_t held = sxiFileAccess::hold(&file, root);
  first->setHandle(root);
  if (!root->read(&file, first)) {
    sxiFileAccess::failed(&file, held);
    root = nullptr;
    setError(ERROR_OPEN);
  }
  file.close();
  return root;
}

bool sxLoader::exportFile(const sxBase* root, const char* name) {
  setError(ERROR_NONE);
  if (!name) {
    setError(ERROR_NOT_FOUND);
    return false;
  }
  String path(saveDir ? saveDir : "");
  path += name;
  const char* ext = extensionOf(path.c_str());
  if (ext)
    if (sxLoader* loader = findLoader(ext)) return loader->exportScene(root, path.c_str());
  if (!root) {
    setError(ERROR_WRITE);
    return false;
  }
  bool hadExtension = ext != nullptr;
  if (!hadExtension) path += '.';
  if (root->isOfType(sxType::findType("sxGroup"))) {
    if (!hadExtension) path += "sx";
  } else {
    sxiFileType* match = nullptr;
    for (sxiFileType* t : *fileTypes)
      if (root->isOfType(t->type)) {
        match = t;
        break;
      }
    if (!match) {
      setError(ERROR_NO_FILE_TYPE);
      return false;
    }
    if (!hadExtension) path += match->extension;
  }

  char temporary[4096];
  if (!sxPlatform::fileMakeTemporary(path.c_str(), temporary, sizeof temporary)) {
    setError(ERROR_NOT_FOUND);
    return false;
  }
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
  if (failure == ERROR_NONE && !sxPlatform::fileRename(temporary, path.c_str()))
    failure = ERROR_NOT_FOUND;
  if (failure != ERROR_NONE) {
    sxPlatform::fileRemove(temporary);
    setError(failure);
    return false;
  }
  return true;
}

void sxLoader::initLoaders() {}

void sxLoader::cleanUpClass() {
  for (sxiFileType* t : *fileTypes) {
    sxMemory::free(t->extension);
    sxDelete(t);
  }
  fileTypes->setSize(0);
  sxMemory::free(errorMessage);
  errorMessage = nullptr;
  sxMemory::free(saveDir);
  saveDir = nullptr;
}
