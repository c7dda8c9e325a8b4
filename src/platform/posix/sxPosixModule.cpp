#include <dlfcn.h>
#include <limits.h>
#include <link.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <unistd.h>

#include <string>

#include "platform/sxPlatform.h"

namespace {

// "sxFoo.dll" also names "libsxFoo.so" and "sxFoo.so" on this platform.
bool nameMatches(const char* file, const char* wanted) {
  if (strcasecmp(file, wanted) == 0) return true;
  std::string w(wanted);
  size_t n = w.size();
  if (n > 4 && strcasecmp(w.c_str() + n - 4, ".dll") == 0) {
    std::string so = w.substr(0, n - 4) + ".so";
    if (strcasecmp(file, so.c_str()) == 0) return true;
    std::string lib = "lib" + so;
    if (strcasecmp(file, lib.c_str()) == 0) return true;
    // Versioned file names of shared libraries: libsxCore.so.1.2.6
    if (strncasecmp(file, lib.c_str(), lib.size()) == 0 && file[lib.size()] == '.') return true;
  }
  return false;
}

// Any address inside the library tells the loader which file it came from.
const char anchor = 0;

struct FindState {
  const char* wanted;
  std::string path;
};

int visit(dl_phdr_info* info, size_t, void* data) {
  auto* st = static_cast<FindState*>(data);
  const char* full = info->dlpi_name;
  if (!full || !*full) return 0;
  const char* base = strrchr(full, '/');
  base = base ? base + 1 : full;
  if (nameMatches(base, st->wanted)) {
    st->path = full;
    return 1;
  }
  return 0;
}

}  // namespace

sxPlatform::ModuleHandle sxPlatform::moduleFind(const char* name) {
  if (!name || !*name) return nullptr;
  FindState st{name, {}};
  dl_iterate_phdr(visit, &st);
  if (st.path.empty()) return nullptr;
  // RTLD_NOLOAD returns the handle of the loaded module and counts one more
  // reference; drop it again so that finding a module does not pin it.
  void* h = dlopen(st.path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
  if (h) dlclose(h);
  return h;
}

sxPlatform::ModuleHandle sxPlatform::moduleLoad(const char* name) {
  if (!name || !*name) return nullptr;
  return dlopen(name, RTLD_NOW | RTLD_LOCAL);
}

bool sxPlatform::moduleFree(ModuleHandle module) {
  return module && dlclose(module) == 0;
}

bool sxPlatform::executablePath(char* out, size_t size) {
  if (!out || size == 0) return false;
  ssize_t n = readlink("/proc/self/exe", out, size - 1);
  if (n <= 0) return false;
  out[n] = 0;
  return true;
}

bool sxPlatform::currentDirectory(char* out, size_t size) {
  return out && size && getcwd(out, size) != nullptr;
}

bool sxPlatform::libraryDirectory(char* out, size_t size) {
  if (!out || size == 0) return false;
  Dl_info info;
  link_map* map = nullptr;
  if (!dladdr1(&anchor, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) || !map)
    return false;
  // The loader leaves the executable's name empty; a library's name may be
  // relative or a symbolic link, hence realpath.
  char file[PATH_MAX];
  bool known =
      *map->l_name ? realpath(map->l_name, file) != nullptr : executablePath(file, sizeof file);
  const char* slash = known ? strrchr(file, '/') : nullptr;
  if (!slash) return false;
  size_t n = slash == file ? 1 : size_t(slash - file);  // keep the root's "/"
  if (n >= size) return false;
  memcpy(out, file, n);
  out[n] = 0;
  return true;
}
