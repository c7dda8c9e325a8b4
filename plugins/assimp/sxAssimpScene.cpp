#include "sxAssimpScene.h"

#include <assimp/scene.h>
#include <sx/containers/sxTArray.h>
#include <sx/math/sxVecArrays.h>
#include <sx/nodes/sxTransform.h>
#include <sx/object/sxRef.h>
#include <sx/viewing/sxGeometry.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <utility>
#include <vector>

static_assert(sizeof(ai_real) == sizeof(float), "Assimp built with double precision");

namespace {

// What the conversion may allocate: this many times the input, and at least
// the floor, so that small hostile files still read ordinary models.
constexpr std::uint64_t budgetFactor = 128;
constexpr std::uint64_t budgetFloor = std::uint64_t(64) << 20;

class Converter {
 public:
  Converter(const aiScene* scene, std::uint64_t inputBytes, std::string& error)
      : scene(scene),
        budget(std::max(budgetFloor, budgetFactor * inputBytes)),
        error(error),
        meshArrays(scene->mNumMeshes) {}

  sxGroup* run();

 private:
  using Arrays = std::array<sxRef<sxArray>, sxGeometry::numAttributes>;

  bool spend(std::uint64_t bytes, const char* what);
  bool fail(std::string message) {
    error = std::move(message);
    return false;
  }
  sxTransform* makeTransform(const aiNode* node);
  bool addMeshes(const aiNode* node, sxGroup* parent);
  // The arrays of mesh m, made on its first use.
  const Arrays* arraysOf(unsigned m);
  bool makeArrays(const aiMesh* mesh, Arrays& arrays);

  const aiScene* scene;
  std::uint64_t budget;
  std::uint64_t spent = 0;
  std::string& error;
  std::vector<Arrays> meshArrays;
};

bool Converter::spend(std::uint64_t bytes, const char* what) {
  if (bytes <= budget - spent) {
    spent += bytes;
    return true;
  }
  return fail(std::string("the model's ") + what + " exceed what a file of its size can hold");
}

sxTransform* Converter::makeTransform(const aiNode* node) {
  if (!spend(sizeof(sxTransform), "nodes")) return nullptr;
  // Assimp's matrices act on column vectors; ours on row vectors: the
  // transpose.
  const aiMatrix4x4& a = node->mTransformation;
  const float values[16] = {a.a1, a.b1, a.c1, a.d1, a.a2, a.b2, a.c2, a.d2,
                            a.a3, a.b3, a.c3, a.d3, a.a4, a.b4, a.c4, a.d4};
  auto* t = new sxTransform(sxMatrix(values, 0));
  if (!t) {
    fail("out of memory");
    return nullptr;
  }
  t->setName(node->mName.C_Str());
  return t;
}

bool Converter::makeArrays(const aiMesh* mesh, Arrays& arrays) {
  const unsigned nv = mesh->mNumVertices;
  const unsigned nf = mesh->mNumFaces;
  if (!mesh->mVertices || nv == 0 || nv > unsigned(INT_MAX) / 16)
    return fail(std::string("mesh \"") + mesh->mName.C_Str() + "\" has no usable vertices");
  const unsigned k = nf && mesh->mFaces ? mesh->mFaces[0].mNumIndices : 0;
  if (k < 1 || k > 3 || nf > unsigned(INT_MAX) / 4 / k)
    return fail(std::string("mesh \"") + mesh->mName.C_Str() +
                "\" has no points, lines or triangles");
  const bool normals = mesh->mNormals != nullptr;
  const bool uvs = mesh->mTextureCoords[0] != nullptr;
  const std::uint64_t bytes =
      std::uint64_t(nv) * (12 + (normals ? 12 : 0) + (uvs ? 8 : 0)) + std::uint64_t(nf) * k * 4;
  if (!spend(bytes, "meshes")) return false;

  auto make = [](int n, sxArray::DATA_TYPE type) { return sxRef<sxArray>(new sxArray(n, type)); };
  arrays[sxGeometry::POSITIONS] = make(int(nv), sxArray::TYPE_VEC3);
  std::memcpy(arrays[sxGeometry::POSITIONS]->getData(), mesh->mVertices, std::size_t(nv) * 12);
  if (normals) {
    arrays[sxGeometry::NORMALS] = make(int(nv), sxArray::TYPE_VEC3);
    std::memcpy(arrays[sxGeometry::NORMALS]->getData(), mesh->mNormals, std::size_t(nv) * 12);
  }
  if (uvs) {
    arrays[sxGeometry::TEXCOORDS] = make(int(nv), sxArray::TYPE_VEC2);
    sxVec2* uv = sxTArray<sxVec2>(arrays[sxGeometry::TEXCOORDS].get()).getData();
    for (unsigned i = 0; i < nv; ++i)
      uv[i].set(mesh->mTextureCoords[0][i].x, mesh->mTextureCoords[0][i].y);
  }
  arrays[sxGeometry::INDICES] = make(int(nf * k), sxArray::TYPE_INT);
  int* out = sxTArray<int>(arrays[sxGeometry::INDICES].get()).getData();
  for (unsigned f = 0; f < nf; ++f) {
    const aiFace& face = mesh->mFaces[f];
    if (face.mNumIndices != k || !face.mIndices)
      return fail(std::string("mesh \"") + mesh->mName.C_Str() + "\" mixes kinds of primitive");
    for (unsigned i = 0; i < k; ++i) {
      if (face.mIndices[i] >= nv)
        return fail(std::string("mesh \"") + mesh->mName.C_Str() + "\" has an index out of range");
      *out++ = int(face.mIndices[i]);
    }
  }
  return true;
}

const Converter::Arrays* Converter::arraysOf(unsigned m) {
  if (m >= scene->mNumMeshes || !scene->mMeshes || !scene->mMeshes[m]) {
    fail("a node names a mesh that does not exist");
    return nullptr;
  }
  Arrays& arrays = meshArrays[m];
  if (!arrays[sxGeometry::POSITIONS] && !makeArrays(scene->mMeshes[m], arrays)) return nullptr;
  return &arrays;
}

bool Converter::addMeshes(const aiNode* node, sxGroup* parent) {
  if (node->mNumMeshes && !node->mMeshes) return fail("a node's list of meshes is missing");
  for (unsigned i = 0; i < node->mNumMeshes; ++i) {
    const Arrays* arrays = arraysOf(node->mMeshes[i]);
    if (!arrays || !spend(sizeof(sxGeometry), "nodes")) return false;
    sxRef<sxGeometry> geometry(new sxGeometry);
    if (!geometry) return fail("out of memory");
    const aiMesh* mesh = scene->mMeshes[node->mMeshes[i]];
    geometry->setName(mesh->mName.C_Str());
    geometry->setPrimitive(sxGeometry::PRIMITIVE(mesh->mFaces[0].mNumIndices));
    for (int a = 0; a < sxGeometry::numAttributes; ++a)
      geometry->setArray(sxGeometry::ATTRIBUTE(a), (*arrays)[a].get());
    parent->addChild(geometry.get());
  }
  return true;
}

// Depth-first with a stack of its own: a hostile file may nest nodes as
// deep as it likes, and every node spends from the budget, so even a
// damaged structure that loops ends.
sxGroup* Converter::run() {
  if (!scene->mRootNode) {
    fail("the scene has no nodes");
    return nullptr;
  }
  sxRef<sxTransform> root(makeTransform(scene->mRootNode));
  if (!root) return nullptr;
  std::vector<std::pair<const aiNode*, sxGroup*>> pending{{scene->mRootNode, root.get()}};
  while (!pending.empty()) {
    auto [node, group] = pending.back();
    pending.pop_back();
    if (!addMeshes(node, group)) return nullptr;
    if (node->mNumChildren && !node->mChildren) {
      fail("a node's list of children is missing");
      return nullptr;
    }
    for (unsigned i = 0; i < node->mNumChildren; ++i) {
      const aiNode* child = node->mChildren[i];
      if (!child) continue;
      sxTransform* t = makeTransform(child);
      if (!t) return nullptr;
      group->addChild(t);
      pending.emplace_back(child, t);
    }
  }
  return root.release();
}

}  // namespace

sxGroup* sxAssimpConvert(const aiScene* scene, std::uint64_t inputBytes, std::string& error) {
  if (!scene) {
    error = "no scene";
    return nullptr;
  }
  return Converter(scene, inputBytes, error).run();
}
