#include <sx/containers/sxList.h>
#include <sx/kernel/sxKernel.h>
#include <sx/object/sxMemory.h>

#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>
#include <vector>

#include "kernel/sxKernelInternal.h"
#include "object/sxModuleStatic.h"
#include "platform/sxPlatform.h"

namespace {

// Imports on any thread search the path while others may edit it: every
// access holds the lock, and a search works on a copy, so that no edit
// waits for the file system.
constinit sxiModuleStatic<sxTList<char*>> filePaths;
constinit std::mutex filePathLock;

using String = std::basic_string<char, std::char_traits<char>, sxAllocator<char>>;

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
  std::lock_guard<std::mutex> hold(filePathLock);
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
  std::lock_guard<std::mutex> hold(filePathLock);
  for (char* p : *filePaths) sxMemory::free(p);
  filePaths->reset();
}

int sxGetNumFilePaths() {
  std::lock_guard<std::mutex> hold(filePathLock);
  return filePaths->getNum();
}

const char* sxGetFilePath(int i) {
  std::lock_guard<std::mutex> hold(filePathLock);
  return filePaths->indexInRange(i) ? (*filePaths)[i] : nullptr;
}

bool sxiKernel::findFile(const char* name, String& found) {
  found.clear();
  if (!name) return false;
  if (opens(name)) {
    found = name;
    return true;
  }
  std::vector<String, sxAllocator<String>> dirs;
  {
    std::lock_guard<std::mutex> hold(filePathLock);
    dirs.reserve(std::size_t(filePaths->getNum()));
    for (const char* dir : *filePaths) dirs.emplace_back(dir);
  }
  for (String& candidate : dirs) {
    if (!candidate.empty() && !isSeparator(candidate.back()) && !isSeparator(name[0]))
      candidate.push_back(sxPlatform::pathSeparator);
    candidate += name;
    if (opens(candidate.c_str())) {
      found = std::move(candidate);
      return true;
    }
  }
  return false;
}

int sxFindFile(const char* name, int bufferSize, char* outPath) {
  String found;
  const bool ok = sxiKernel::findFile(name, found);
  if (outPath && bufferSize > 0) {
    if (ok)
      std::strncpy(outPath, found.c_str(), std::size_t(bufferSize));
    else
      outPath[0] = 0;
  }
  return ok ? int(found.size()) + 1 : 0;
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
  std::lock_guard<std::mutex> hold(filePathLock);
  filePaths->setSize(0);
}
