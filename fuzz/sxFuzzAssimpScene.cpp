// Builds an Assimp scene from arbitrary bytes and converts it as the Assimp
// loader module does. The scene keeps the shape that Assimp's structure
// check guarantees (every count matches its array), and everything else is
// hostile: indices past the vertices, faces of any size, meshes named by
// no node or by several, nodes naming meshes that do not exist, deep
// chains, non-finite coordinates. The only acceptable outcomes are a
// hierarchy or a reason for refusing.
//
// Assimp's own readers are fuzzed by sxFuzzAssimpLoader, on request: they
// leak and hang on damaged models inside Assimp itself.

#include <assimp/scene.h>
#include <sx/nodes/sxGroup.h>
#include <sx/object/sxRef.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "sxAssimpScene.h"

namespace {

class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : data(data), size(size) {}
  unsigned byte() { return at < size ? data[at++] : 0; }
  unsigned below(unsigned n) { return n ? (byte() | byte() << 8) % n : 0; }
  float number() {
    float f = 0;
    if (at + 4 <= size) std::memcpy(&f, data + at, 4);
    at += 4;
    return f;
  }

 private:
  const std::uint8_t* data;
  std::size_t size;
  std::size_t at = 0;
};

aiMesh* makeMesh(Bytes& in) {
  auto* mesh = new aiMesh;
  mesh->mName.Set("mesh" + std::to_string(in.byte()));
  mesh->mNumVertices = in.below(64);
  if (mesh->mNumVertices) {
    mesh->mVertices = new aiVector3D[mesh->mNumVertices];
    for (unsigned i = 0; i < mesh->mNumVertices; ++i)
      mesh->mVertices[i].Set(in.number(), in.number(), in.number());
    const unsigned extras = in.byte();
    if (extras & 1) mesh->mNormals = new aiVector3D[mesh->mNumVertices];
    if (extras & 2) {
      mesh->mTextureCoords[0] = new aiVector3D[mesh->mNumVertices];
      mesh->mNumUVComponents[0] = 2;
    }
  }
  mesh->mNumFaces = in.below(32);
  if (mesh->mNumFaces) {
    mesh->mFaces = new aiFace[mesh->mNumFaces];
    for (unsigned f = 0; f < mesh->mNumFaces; ++f) {
      aiFace& face = mesh->mFaces[f];
      face.mNumIndices = in.below(5);
      face.mIndices = face.mNumIndices ? new unsigned[face.mNumIndices] : nullptr;
      for (unsigned i = 0; i < face.mNumIndices; ++i)
        face.mIndices[i] = in.below(mesh->mNumVertices + 3);
    }
  }
  return mesh;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Bytes in(data, size);
  aiScene scene;
  scene.mNumMeshes = in.below(5);
  if (scene.mNumMeshes) {
    scene.mMeshes = new aiMesh*[scene.mNumMeshes];
    for (unsigned m = 0; m < scene.mNumMeshes; ++m) scene.mMeshes[m] = makeMesh(in);
  }
  // A tree by construction: each node's parent comes before it.
  const unsigned numNodes = 1 + in.below(300);
  std::vector<aiNode*> nodes(numNodes);
  std::vector<std::vector<aiNode*>> children(numNodes);
  for (unsigned i = 0; i < numNodes; ++i) {
    aiNode* node = nodes[i] = new aiNode("node" + std::to_string(i));
    for (unsigned r = 0; r < 4; ++r)
      for (unsigned c = 0; c < 4; ++c)
        node->mTransformation[r][c] = (in.byte() & 1) ? in.number() : r == c;
    node->mNumMeshes = in.below(3);
    if (node->mNumMeshes) {
      node->mMeshes = new unsigned[node->mNumMeshes];
      for (unsigned k = 0; k < node->mNumMeshes; ++k)
        node->mMeshes[k] = in.below(scene.mNumMeshes + 2);
    }
    if (i) {
      // Mostly chains, so that deep hierarchies come up.
      const unsigned parent = in.byte() < 200 ? i - 1 : in.below(i);
      node->mParent = nodes[parent];
      children[parent].push_back(node);
    }
  }
  for (unsigned i = 0; i < numNodes; ++i)
    if (!children[i].empty())
      nodes[i]->addChildren(unsigned(children[i].size()), children[i].data());
  scene.mRootNode = nodes[0];

  std::string error;
  sxRef<sxGroup> root(sxAssimpConvert(&scene, size, error));
  if (!root && error.empty()) __builtin_trap();
  return 0;
}
