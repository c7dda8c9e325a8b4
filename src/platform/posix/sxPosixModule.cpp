#include <dirent.h>
#include <dlfcn.h>
#include <limits.h>
#include <link.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <unistd.h>

#include <string>

#include "platform/sxPlatform.h"

namespace {

// The module a file name stands for, upper-cased and without the "lib"
// prefix and the ".dll" or ".so[.version]" ending; empty when the name has
// no such ending.
std::string moduleStem(const char* name) {
  std::string s;
  for (const char* p = name; *p; ++p) s += char(toupper(static_cast<unsigned char>(*p)));
  size_t n = s.size();
  if (n > 4 && s.compare(n - 4, 4, ".DLL") == 0) return s.substr(0, n - 4);
  size_t so = s.find(".SO");
  if (so == std::string::npos || so == 0) return {};
  if (so + 3 != n && s[so + 3] != '.') return {};
  s.resize(so);
  return s.compare(0, 3, "LIB") == 0 && s.size() > 3 ? s.substr(3) : s;
}

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

bool sxPlatform::moduleFileMatches(const char* file, const char* wanted) {
  return file && wanted && nameMatches(file, wanted);
}

bool sxPlatform::moduleNamesMatch(const char* a, const char* b) {
  if (!a || !b) return false;
  if (strcasecmp(a, b) == 0) return true;
  std::string x = moduleStem(a);
  return !x.empty() && x == moduleStem(b);
}

bool sxPlatform::isLoaderModuleFile(const char* file) {
  if (!file) return false;
  if (strncasecmp(file, "lib", 3) == 0) file += 3;
  size_t n = strlen(file);
  return n >= 11 && strncasecmp(file, "sx", 2) == 0 && strcasecmp(file + n - 9, "Loader.so") == 0;
}

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

sxPlatform::ModuleHandle sxPlatform::moduleLoad(const char* path, char* reason, size_t reasonSize) {
  if (!path || !*path) return nullptr;
  void* h = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (!h && reason && reasonSize) {
    const char* why = dlerror();
    snprintf(reason, reasonSize, "%s", why ? why : "unknown reason");
  }
  return h;
}

bool sxPlatform::moduleFileOf(const void* address, char* out, size_t size) {
  Dl_info info;
  if (!out || !size || !dladdr(address, &info) || !info.dli_fname || !*info.dli_fname) return false;
  if (strlen(info.dli_fname) >= size) return false;
  strcpy(out, info.dli_fname);
  return true;
}

bool sxPlatform::listDirectory(const char* dir, void (*visit)(const char*, void*), void* user) {
  DIR* d = dir && *dir ? opendir(dir) : nullptr;
  if (!d) return false;
  while (dirent* e = readdir(d)) {
    if (e->d_type != DT_REG && e->d_type != DT_LNK && e->d_type != DT_UNKNOWN) continue;
    visit(e->d_name, user);
  }
  closedir(d);
  return true;
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
