// The Assimp loader module: imports the model formats that the Open Asset
// Import Library reads. Its record only lists the extensions, so loading
// the module at start-up to collect them constructs no importer.

#include <assimp/DefaultIOSystem.h>
#include <assimp/scene.h>
#include <sx/nodes/sxGroup.h>
#include <sx/persist/sxLoader.h>
#include <assimp/IOStream.hpp>
#include <assimp/Importer.hpp>

#include <cstdint>
#include <string>

#include "sxAssimpScene.h"

namespace {

// The formats of the Assimp release the module is built against (5.2),
// less "xml", which would claim every XML file; Ogre's ".mesh.xml" files
// are read under ".mesh".
constexpr const char* extensions[] = {
    "3d",   "3ds",   "3mf", "ac",      "ac3d",      "acc",     "amf",  "ase",     "ask",  "assbin",
    "b3d",  "blend", "bsp", "bvh",     "cob",       "csm",     "dae",  "dxf",     "enff", "fbx",
    "glb",  "gltf",  "hmp", "ifc",     "ifczip",    "iqm",     "irr",  "irrmesh", "lwo",  "lws",
    "lxo",  "md2",   "md3", "md5anim", "md5camera", "md5mesh", "mdc",  "mdl",     "mesh", "mot",
    "ms3d", "ndo",   "nff", "obj",     "off",       "ogex",    "pk3",  "ply",     "pmx",  "prj",
    "q3o",  "q3s",   "raw", "scn",     "sib",       "smd",     "step", "stl",     "stp",  "ter",
    "uc",   "vta",   "x",   "x3d",     "x3db",      "xgl",     "zae",  "zgl"};

// Assimp's own file access, counting the bytes of every file it opens
// (a model may come in several files), which budgets the conversion.
class CountingIOSystem : public Assimp::DefaultIOSystem {
 public:
  explicit CountingIOSystem(std::uint64_t& bytes) : bytes(bytes) {}
  Assimp::IOStream* Open(const char* file, const char* mode) override {
    Assimp::IOStream* stream = DefaultIOSystem::Open(file, mode);
    if (stream) bytes += stream->FileSize();
    return stream;
  }

 private:
  std::uint64_t& bytes;
};

class sxAssimpLoader : public sxLoader {
 public:
  sxAssimpLoader() : sxLoader("sxAssimpLoader.dll") {
    setName("Assimp models");
    setCompany("sxCore");
    setRelease(1, 0, 0, "2026-11-24");
    for (const char* ext : extensions) addExtension(ext);
  }

  // Nothing thrown may reach the library: memory running out while Assimp
  // or the conversion builds is an import that failed.
  sxBase* import(const char* path) override {
    try {
      return readModel(path);
    } catch (...) {
      fail(ERROR_OPEN, "%s: out of memory", path);
      return nullptr;
    }
  }

 private:
  sxBase* readModel(const char* path) {
    std::uint64_t bytes = 0;
    Assimp::Importer importer;
    importer.SetIOHandler(new CountingIOSystem(bytes));
    const aiScene* scene = importer.ReadFile(path, sxAssimpReadFlags);
    if (!scene) {
      fail(ERROR_OPEN, "%s: %s", path, importer.GetErrorString());
      return nullptr;
    }
    std::string error;
    sxGroup* root = sxAssimpConvert(scene, bytes, error);
    if (!root) fail(ERROR_OPEN, "%s: %s", path, error.c_str());
    return root;
  }
};

sxAssimpLoader theLoader;

}  // namespace
