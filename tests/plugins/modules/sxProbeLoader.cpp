// A loader module for the loader tests: it reads and writes ".probe"
// files (one line: the root's name) and owns one node class, so that its
// live objects keep it loaded.

#include <sx/sxCore.h>

#include <cstdio>
#include <cstring>

#ifndef SX_PROBE_MODULE
#define SX_PROBE_MODULE "sxProbeLoader.dll"
#endif

namespace {

class sxProbeLoader : public sxLoader {
 public:
  sxProbeLoader();
  sxBase* import(const char* path) override;
  bool exportScene(const sxBase* root, const char* path) override;
};

}  // namespace

/// A node that only this module makes.
class sxProbeNode : public sxGroup {
 public:
  SX_CLASS(sxProbeNode, sxGroup)
  sxProbeNode() = default;
};

namespace {

sxProbeLoader theLoader;

sxProbeLoader::sxProbeLoader() : sxLoader(SX_PROBE_MODULE) {
  setName("Probe");
  setCompany("sxCore tests");
  setRelease(3, 1, 4, "2026-11-24");
  addExtension("probe");
  addExtension("PRB");
  addExtension("prb");  // already there, ignoring case
  sxProbeNode::registerClass(this);
}

sxBase* sxProbeLoader::import(const char* path) {
  std::FILE* f = std::fopen(path, "r");
  char name[128] = "";
  bool ok = f && std::fgets(name, sizeof name, f);
  if (f) std::fclose(f);
  if (!ok) {
    setError(ERROR_OPEN);
    return nullptr;
  }
  name[std::strcspn(name, "\n")] = 0;
  auto* node = static_cast<sxGroup*>(sxType::createInstance("sxProbeNode"));
  if (node) node->setName(name);
  return node;
}

bool sxProbeLoader::exportScene(const sxBase* root, const char* path) {
  std::FILE* f = root ? std::fopen(path, "w") : nullptr;
  if (!f) {
    setError(ERROR_NOT_FOUND);
    return false;
  }
  std::fprintf(f, "%s\n", root->getName() ? root->getName() : "");
  return std::fclose(f) == 0;
}

}  // namespace

SX_DEFINE_CLASS(sxProbeNode)
