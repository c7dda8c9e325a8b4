#include <sx/kernel/sxKernel.h>
#include <sx/persist/sxLoader.h>

namespace {
int lastError = sxLoader::ERROR_NONE;
}

void sxLoader::setError(int code) {
  lastError = code;
}
int sxLoader::getError() {
  return lastError;
}

sxBase* sxLoader::importFile(const char* name) {
  setError(ERROR_NONE);
  int length = sxFindFile(name, 0, nullptr);
  if (length == 0) {
    setError(ERROR_NOT_FOUND);
    return nullptr;
  }
  // No reader is registered for the file.
  setError(ERROR_OPEN);
  return nullptr;
}

bool sxLoader::exportFile(const sxBase*, const char*) {
  setError(ERROR_NOT_SUPPORTED);
  return false;
}

void sxLoader::initLoaders() {}
void sxLoader::cleanUpClass() {}
