// Reads arbitrary bytes as a model through Assimp, the first byte picking
// the format, and converts the scene as the Assimp loader module does. The
// only acceptable outcomes are a hierarchy or a reason for refusing.
//
// Only formats whose Assimp readers survive fuzzing are listed. Assimp
// 5.2's STL reader leaks what it built from a damaged ASCII file and its
// PLY reader can loop for seconds on a damaged header (inside
// the library, which no caller can prevent); the other readers are not
// fuzzed here.

#include <assimp/scene.h>
#include <sx/nodes/sxGroup.h>
#include <sx/object/sxRef.h>
#include <assimp/Importer.hpp>

#include <cstddef>
#include <cstdint>
#include <string>

#include "sxAssimpScene.h"

namespace {

// The seed corpus (fuzz/corpus-assimp) starts each file with its index.
constexpr const char* formats[] = {"obj", "glb", "off"};
constexpr std::size_t numFormats = sizeof formats / sizeof formats[0];

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  Assimp::Importer importer;
  const aiScene* scene = importer.ReadFileFromMemory(data + 1, size - 1, sxAssimpReadFlags,
                                                     formats[data[0] % numFormats]);
  if (!scene) return 0;
  std::string error;
  sxRef<sxGroup> root(sxAssimpConvert(scene, size, error));
  if (!root && error.empty()) __builtin_trap();
  return 0;
}
