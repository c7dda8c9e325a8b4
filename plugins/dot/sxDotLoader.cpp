// The Graphviz loader module: exports a scene's node graph as a .dot file,
// for `dot -Tsvg` and friends. It reads nothing.

#include <sx/persist/sxLoader.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "sxDotWriter.h"

namespace {

class sxDotLoader : public sxLoader {
 public:
  sxDotLoader() : sxLoader("sxDotLoader.dll") {
    setName("Graphviz node graph");
    setCompany("sxCore");
    setRelease(1, 0, 0, "2026-11-24");
    addExtension("dot");
  }

  sxBase* import(const char* path) override {
    fail(ERROR_OPEN,
         "%s: .dot files cannot be read, only written (the graph drawing omits the nodes' data)",
         path);
    return nullptr;
  }

  bool exportScene(const sxBase* root, const char* path) override {
    if (!root) return fail(ERROR_WRITE, "%s: no object to export", path);
    std::FILE* out = std::fopen(path, "wb");
    if (!out)
      return fail(ERROR_NOT_FOUND, "%s: cannot create the file: %s", path, std::strerror(errno));
    bool written = sxDotWrite(root, out);
    written = std::fclose(out) == 0 && written;
    if (!written)
      return fail(ERROR_WRITE, "%s: the graph could not be written: %s", path,
                  std::strerror(errno));
    return true;
  }
};

sxDotLoader theLoader;

}  // namespace
