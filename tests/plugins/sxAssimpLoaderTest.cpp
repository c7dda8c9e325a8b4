// The Assimp loader module against Assimp itself, on the models of Debian's
// assimp-testmodels package.

#include <assimp/scene.h>
#include <gtest/gtest.h>
#include <sx/sxCore.h>
#include <assimp/Importer.hpp>

#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/sxTestFiles.h"
#include "support/sxThroughFile.h"
#include "sxAssimpScene.h"

namespace {

const std::string models = "/usr/share/assimp/models/";

#define SKIP_WITHOUT_MODELS()              \
  if (!std::filesystem::exists(models))    \
  GTEST_SKIP() << models                   \
               << " missing: install the " \
                  "assimp-testmodels package"

sxRef<sxGroup> import(const std::string& path) {
  sxBase* root = sxLoader::importFile(path.c_str());
  return root && root->isOfType(sxGroup::getClassType()) ? static_cast<sxGroup*>(root) : nullptr;
}

// Walks the converted hierarchy beside Assimp's: every node a transform of
// the node's name and matrix, whose children are a geometry per mesh (its
// counts those of the mesh) and then the child nodes. Geometries of one
// mesh share their arrays; counts the geometries.
void expectSameHierarchy(const aiScene* scene, sxGroup* root, int& geometries) {
  std::map<unsigned, const sxGeometry*> firstOfMesh;
  geometries = 0;
  std::vector<std::pair<const aiNode*, sxGroup*>> pending{{scene->mRootNode, root}};
  while (!pending.empty()) {
    auto [node, group] = pending.back();
    pending.pop_back();
    SCOPED_TRACE(node->mName.C_Str());
    ASSERT_TRUE(group->isOfType(sxTransform::getClassType()));
    EXPECT_STREQ(group->getName(), node->mName.C_Str());
    const sxMatrix& m = static_cast<sxTransform*>(group)->getMatrix();
    for (unsigned r = 0; r < 4; ++r)
      for (unsigned c = 0; c < 4; ++c) EXPECT_EQ(m[r][c], node->mTransformation[c][r]);
    ASSERT_EQ(group->getNumChildren(), int(node->mNumMeshes + node->mNumChildren));
    for (unsigned i = 0; i < node->mNumMeshes; ++i) {
      const aiMesh* mesh = scene->mMeshes[node->mMeshes[i]];
      ASSERT_TRUE(group->getChild(int(i))->isOfType(sxGeometry::getClassType()));
      auto* g = static_cast<const sxGeometry*>(group->getChild(int(i)));
      ++geometries;
      EXPECT_STREQ(g->getName(), mesh->mName.C_Str());
      EXPECT_EQ(g->getNumVertices(), int(mesh->mNumVertices));
      EXPECT_EQ(g->getNumPrimitives(), int(mesh->mNumFaces));
      EXPECT_EQ(int(g->getPrimitive()), int(mesh->mFaces[0].mNumIndices));
      EXPECT_EQ(g->getArray(sxGeometry::NORMALS) != nullptr, mesh->HasNormals());
      EXPECT_EQ(g->getArray(sxGeometry::TEXCOORDS) != nullptr, mesh->HasTextureCoords(0));
      EXPECT_TRUE(g->isValid());
      auto [first, isNew] = firstOfMesh.emplace(node->mMeshes[i], g);
      for (int a = 0; a < sxGeometry::numAttributes && !isNew; ++a)
        EXPECT_EQ(g->getArray(sxGeometry::ATTRIBUTE(a)),
                  first->second->getArray(sxGeometry::ATTRIBUTE(a)));
    }
    for (unsigned i = 0; i < node->mNumChildren; ++i)
      pending.emplace_back(node->mChildren[i], group->getChild(int(node->mNumMeshes + i)));
  }
}

}  // namespace

// A table of formats and shapes: deep hierarchies (FBX with pivots,
// Collada), meshes shared by several nodes (glTF), lines and points (OBJ),
// single-mesh formats without nodes of their own (PLY, STL).
TEST(sxAssimpLoader, HierarchyMatricesAndCountsMatchAssimp) {
  SKIP_WITHOUT_MODELS();
  const char* const files[] = {"OBJ/spider.obj",
                               "OBJ/testline.obj",
                               "OBJ/testpoints.obj",
                               "glTF2/textureTransform/TextureTransformTest.gltf",
                               "glTF2/BoxTextured-glTF-Binary/BoxTextured.glb",
                               "glTF2/2CylinderEngine-glTF-Binary/2CylinderEngine.glb",
                               "PLY/cube_binary.ply",
                               "PLY/cube_uv.ply",
                               "STL/Spider_binary.stl",
                               "Collada/duck.dae",
                               "Collada/cube_tristrips.dae",
                               "3DS/test1.3ds",
                               "FBX/cubes_with_mirroring_and_pivot.fbx",
                               "X/test_cube_text.x"};
  for (const char* file : files) {
    SCOPED_TRACE(file);
    const std::string path = models + file;
    Assimp::Importer importer;
    const aiScene* scene = importer.ReadFile(path, sxAssimpReadFlags);
    ASSERT_TRUE(scene) << importer.GetErrorString();
    sxRef<sxGroup> root = import(path);
    ASSERT_TRUE(root) << sxLoader::getErrorMessage();
    int geometries = 0;
    ASSERT_NO_FATAL_FAILURE(expectSameHierarchy(scene, root.get(), geometries));
    EXPECT_GT(geometries, 0);
  }
}

// Saved as a scene file and read back: the same hierarchy, counts and
// sharing of arrays (each stored once), and bounds that a fence pass finds.
TEST(sxAssimpLoader, ImportedModelSurvivesASceneFile) {
  SKIP_WITHOUT_MODELS();
  const std::string path = models + "glTF2/2CylinderEngine-glTF-Binary/2CylinderEngine.glb";
  Assimp::Importer importer;
  const aiScene* scene = importer.ReadFile(path, sxAssimpReadFlags);
  ASSERT_TRUE(scene);
  sxRef<sxGroup> root = import(path);
  ASSERT_TRUE(root);
  sxRef<sxGroup> back = sxThroughFile<sxGroup>(root.get());
  ASSERT_TRUE(back);
  int geometries = 0;
  ASSERT_NO_FATAL_FAILURE(expectSameHierarchy(scene, back.get(), geometries));
  EXPECT_EQ(geometries, 115);
  sxSphere before, after;
  root->getBoundingVolume(before);
  back->getBoundingVolume(after);
  EXPECT_FALSE(after.isEmpty());
  EXPECT_EQ(after, before);
}

// Damaged and hostile models fail with the open error and a message naming
// the file: a truncated binary glTF, indices past the vertices, nodes that
// contain themselves, and bytes that are no model under a model's name.
TEST(sxAssimpLoader, DamagedModelsFailWithAMessage) {
  SKIP_WITHOUT_MODELS();
  sxTempDir dir;
  std::vector<unsigned char> glb =
      sxReadBytes(models + "glTF2/BoxTextured-glTF-Binary/BoxTextured.glb");
  glb.resize(glb.size() / 2);
  sxWriteBytes(dir.file("truncated.glb"), glb);
  sxWriteBytes(dir.file("noise.ply"), std::vector<unsigned char>(300, 0xA5));
  const std::string files[] = {dir.file("truncated.glb"), dir.file("noise.ply"),
                               models + "glTF2/IndexOutOfRange/AllIndicesOutOfRange.gltf",
                               models + "glTF2/RecursiveNodes/RecursiveNodes.gltf"};
  for (const std::string& file : files) {
    SCOPED_TRACE(file);
    EXPECT_FALSE(import(file));
    EXPECT_EQ(sxLoader::getError(), sxLoader::ERROR_OPEN);
    ASSERT_TRUE(sxLoader::getErrorMessage());
    EXPECT_EQ(std::string(sxLoader::getErrorMessage()).rfind(file + ": ", 0), 0u)
        << sxLoader::getErrorMessage();
  }
}
