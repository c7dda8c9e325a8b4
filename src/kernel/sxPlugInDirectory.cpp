#include <sx/kernel/sxKernel.h>

#include <cstdio>

#include "platform/sxPlatform.h"

namespace {

struct PlugInDirectory {
  char path[4096] = {};

  PlugInDirectory() noexcept {
    char library[sizeof path];
    if (!sxPlatform::libraryDirectory(library, sizeof library)) return;
    int n = std::snprintf(path, sizeof path, "%s%csxcore", library, sxPlatform::pathSeparator);
    if (n < 0 || std::size_t(n) >= sizeof path) path[0] = 0;  // never a cut-off path
  }
};

}  // namespace

const char* sxGetPlugInDirectory() {
  // The library does not move while it is loaded, so it is looked up once.
  static const PlugInDirectory directory;
  return directory.path;
}
