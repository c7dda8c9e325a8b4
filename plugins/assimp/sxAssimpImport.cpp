// The module that links Assimp: reads a model with it and converts the
// scene. Loaded by the Assimp loader module on its first import.

#include <assimp/DefaultIOSystem.h>
#include <assimp/scene.h>
#include <sx/nodes/sxGroup.h>
#include <assimp/IOStream.hpp>
#include <assimp/Importer.hpp>

#include <cstdint>
#include <string>

#include "sxAssimpImporter.h"
#include "sxAssimpScene.h"

namespace {

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

class Importer : public sxAssimpImporter {
 public:
  Importer() : sxAssimpImporter(moduleFile) {
    setName(recordName);
    setCompany("sxCore");
    setRelease(1, 0, 0, "2026-11-24");
    // It makes no class of its own: files need not name it.
    enableSaveWithFile(false);
  }

  // Nothing thrown may reach the library: memory running out while Assimp
  // or the conversion builds is an import that failed.
  sxBase* importModel(const char* path, std::string& error) override {
    try {
      return readModel(path, error);
    } catch (...) {
      error = "out of memory";
      return nullptr;
    }
  }

 private:
  static sxBase* readModel(const char* path, std::string& error) {
    std::uint64_t bytes = 0;
    Assimp::Importer importer;
    importer.SetIOHandler(new CountingIOSystem(bytes));
    const aiScene* scene = importer.ReadFile(path, sxAssimpReadFlags);
    if (!scene) {
      error = importer.GetErrorString();
      return nullptr;
    }
    return sxAssimpConvert(scene, bytes, error);
  }
};

Importer theImporter;

}  // namespace
