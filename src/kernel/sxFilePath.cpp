#include <sx/containers/sxList.h>
#include <sx/kernel/sxKernel.h>
#include <sx/object/sxMemory.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "kernel/sxKernelInternal.h"
#include "object/sxModuleStatic.h"
#include "platform/sxPlatform.h"

namespace {

constinit sxiModuleStatic<sxTList<char*>> filePaths;

inline bool isSeparator(char c) {
  return c == '/' || c == '\\';
}

bool opens(const char* path) {
  std::FILE* f = std::fopen(path, "rb");
  if (!f) return false;
  std::fclose(f);
  return true;
}

}  // namespace

void sxAddFilePath(const char* dir) {
  if (!dir || !*dir) return;
  std::size_t n = std::strlen(dir);
  bool needSeparator = !isSeparator(dir[n - 1]);
  std::size_t size = n + (needSeparator ? 1 : 0) + 1;
  char* copy = static_cast<char*>(sxMemory::malloc(size));
  if (!copy) return;
  std::memcpy(copy, dir, n);
  if (needSeparator) copy[n++] = sxPlatform::pathSeparator;
  copy[n] = 0;
  for (const char* p : *filePaths) {
    if (std::strcmp(p, copy) == 0) {
      sxMemory::free(copy);
      return;
    }
  }
  if (filePaths->add(copy) < 0) sxMemory::free(copy);
}

void sxAddFilePaths(const char* dirs) {
  if (!dirs) return;
  const char* start = dirs;
  for (const char* p = dirs;; ++p) {
    if (*p != ';' && *p != 0) continue;
    sxAddFilePath(std::string(start, std::size_t(p - start)).c_str());
    if (!*p) break;
    start = p + 1;
  }
}

void sxDeleteFilePaths() {
  for (char* p : *filePaths) sxMemory::free(p);
  filePaths->reset();
}

int sxGetNumFilePaths() {
  return filePaths->getNum();
}

const char* sxGetFilePath(int i) {
  return filePaths->indexInRange(i) ? (*filePaths)[i] : nullptr;
}

int sxFindFile(const char* name, int bufferSize, char* outPath) {
  if (!name) return 0;
  auto found = [&](const std::string& candidate) {
    if (outPath && bufferSize > 0)
      std::strncpy(outPath, candidate.c_str(), std::size_t(bufferSize));
    return int(candidate.size()) + 1;
  };
  if (opens(name)) return found(name);
  if (outPath && bufferSize > 0) outPath[0] = 0;
  for (const char* dir : *filePaths) {
    std::string candidate(dir);
    if (!candidate.empty() && !isSeparator(candidate.back()) && !isSeparator(name[0]))
      candidate.push_back(sxPlatform::pathSeparator);
    candidate += name;
    if (opens(candidate.c_str())) return found(candidate);
    if (outPath && bufferSize > 0) outPath[0] = 0;
  }
  return 0;
}

const char* sxGetFileName(const char* path) {
  if (!path || !*path) return nullptr;
  const char* last = nullptr;
  for (const char* p = path; *p; ++p)
    if (isSeparator(*p)) last = p;
  if (!last) return path;
  return last[1] ? last + 1 : nullptr;
}

void sxiKernel::initFilePaths() {}

void sxiKernel::cleanUpFilePaths() {
  sxDeleteFilePaths();
  filePaths->setSize(0);
}
