// Where modules are looked for, and the diagnostics of that search.

#include <sx/kernel/sxKernel.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <vector>

#include "kernel/sxKernelInternal.h"
#include "platform/sxPlatform.h"

namespace {

constexpr std::size_t maxDirectory = 4096;

// The installed trace function; taken rarely (only while modules load).
constinit std::mutex traceLock;
constinit sxPlugInTraceFunc traceFunc = nullptr;
constinit void* traceUser = nullptr;

bool debugFromEnvironment() {
  // Read once: the first search happens at sxInit, before anything else
  // could change the environment on purpose.
  static const bool on = [] {
    const char* v = std::getenv("SXCORE_DEBUG_PLUGINS");
    return v && *v && std::strcmp(v, "0") != 0;
  }();
  return on;
}

// Visits dir unless it is empty or too long for the platform's paths.
bool offer(const char* dir, std::size_t length, bool (*visit)(const char*, void*), void* user) {
  if (length == 0 || length >= maxDirectory) {
    if (length) sxiKernel::plugInTrace("skipped: a directory name of %zu characters", length);
    return true;
  }
  char copy[maxDirectory];
  std::memcpy(copy, dir, length);
  copy[length] = 0;
  return visit(copy, user);
}

}  // namespace

void sxSetPlugInTrace(sxPlugInTraceFunc func, void* user) {
  std::lock_guard<std::mutex> hold(traceLock);
  traceFunc = func;
  traceUser = func ? user : nullptr;
}

void sxiKernel::plugInTrace(const char* format, ...) {
  sxPlugInTraceFunc func;
  void* user;
  {
    std::lock_guard<std::mutex> hold(traceLock);
    func = traceFunc;
    user = traceUser;
  }
  if (!func && !debugFromEnvironment()) return;
  char line[1200];
  std::va_list args;
  va_start(args, format);
  std::vsnprintf(line, sizeof line, format, args);
  va_end(args);
  if (func)
    func(line, user);
  else
    std::fprintf(stderr, "sxCore plug-ins: %s\n", line);
}

void sxiKernel::forEachModuleDirectory(bool (*visit)(const char*, void*), void* user) {
  // A directory named twice (the executable's is often the current one,
  // and $PATH repeats entries) is searched once, where it comes first.
  struct Once {
    bool (*visit)(const char*, void*);
    void* user;
    std::vector<String, sxAllocator<String>> seen;
  } once{visit, user, {}};
  visit = [](const char* dir, void* data) {
    auto* o = static_cast<Once*>(data);
    for (const String& s : o->seen)
      if (s == dir) return true;
    o->seen.emplace_back(dir);
    return o->visit(dir, o->user);
  };
  user = &once;
  char buffer[maxDirectory];
  if (sxPlatform::executablePath(buffer, sizeof buffer)) {
    const char* slash = std::strrchr(buffer, sxPlatform::pathSeparator);
    if (slash && !offer(buffer, std::size_t(slash == buffer ? 1 : slash - buffer), visit, user))
      return;
  }
  if (sxPlatform::currentDirectory(buffer, sizeof buffer) &&
      !offer(buffer, std::strlen(buffer), visit, user))
    return;
  const char* plugIns = sxGetPlugInDirectory();
  if (!offer(plugIns, std::strlen(plugIns), visit, user)) return;
  if (const char* dir = std::getenv("SXCORE_PLUGIN_DIR"))
    if (!offer(dir, std::strlen(dir), visit, user)) return;
  const char* path = std::getenv("PATH");
  if (!path || !*path) return;
  for (const char* p = path;;) {
    const char* end = std::strchr(p, sxPlatform::pathListSeparator);
    std::size_t n = end ? std::size_t(end - p) : std::strlen(p);
    if (!offer(p, n, visit, user) || !end) return;
    p = end + 1;
  }
}

bool sxiKernel::findModuleFile(const char* name, String& path) {
  struct Search {
    const char* wanted;
    String* path;
    const char* dir;
    bool found;
  } search{name, &path, nullptr, false};
  forEachModuleDirectory(
      [](const char* dir, void* user) {
        auto* s = static_cast<Search*>(user);
        s->dir = dir;
        bool readable = sxPlatform::listDirectory(
            dir,
            [](const char* file, void* user) {
              auto* s = static_cast<Search*>(user);
              if (s->found || !sxPlatform::moduleFileMatches(file, s->wanted)) return;
              s->found = true;
              *s->path = s->dir;
              *s->path += sxPlatform::pathSeparator;
              *s->path += file;
            },
            s);
        plugInTrace("looking for %s in %s: %s", s->wanted, dir,
                    !readable  ? "cannot read the directory"
                    : s->found ? "found"
                               : "not there");
        return !s->found;
      },
      &search);
  return search.found;
}
