// The Assimp loader module: imports the model formats that the Open Asset
// Import Library reads. Every start-up loads it to collect its extensions,
// so it does not link Assimp: the module that does is loaded on the first
// import.

#include <sx/object/sxPlugIn.h>
#include <sx/persist/sxLoader.h>

#include <cstring>
#include <string>

#include "sxAssimpImporter.h"

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

class sxAssimpLoader : public sxLoader {
 public:
  sxAssimpLoader() : sxLoader("sxAssimpLoader.dll") {
    setName("Assimp models");
    setCompany("sxCore");
    setRelease(1, 0, 0, "2026-11-24");
    enableSaveWithFile(false);
    for (const char* ext : extensions) addExtension(ext);
  }

  sxBase* import(const char* path) override {
    sxPlugIn* record = sxPlugIn::load(sxAssimpImporter::moduleFile);
    if (!record || !record->getName() ||
        std::strcmp(record->getName(), sxAssimpImporter::recordName) != 0) {
      fail(ERROR_OPEN, "%s: the module that reads models (%s) cannot be loaded", path,
           sxAssimpImporter::moduleFile);
      return nullptr;
    }
    auto* importer = static_cast<sxAssimpImporter*>(record);
    std::string error;
    // Held while it reads, so that no other thread unloads it meanwhile.
    importer->ref();
    sxBase* root = importer->importModel(path, error);
    importer->unRef();
    if (!root) fail(ERROR_OPEN, "%s: %s", path, error.c_str());
    return root;
  }
};

sxAssimpLoader theLoader;

}  // namespace
