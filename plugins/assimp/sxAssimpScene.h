#pragma once

#include <assimp/postprocess.h>

#include <cstdint>
#include <string>

struct aiScene;
class sxGroup;

/// The post-processing of every import: polygons become triangles,
/// identical vertices are joined (indexed meshes), meshes are split so that
/// each holds one kind of primitive, and Assimp checks the structure it
/// built (indices in range, meshes named by nodes exist).
constexpr unsigned sxAssimpReadFlags = aiProcess_Triangulate | aiProcess_JoinIdenticalVertices |
                                       aiProcess_SortByPType | aiProcess_ValidateDataStructure;

/// The scene's node hierarchy as named transforms carrying the nodes'
/// matrices, each with a geometry child per mesh it names (meshes named by
/// several nodes share their arrays). The new root (reference count 0), or
/// null with the reason in error. What the conversion allocates is budgeted
/// by inputBytes, the size of the files Assimp read: a hostile file cannot
/// make it large.
sxGroup* sxAssimpConvert(const aiScene* scene, std::uint64_t inputBytes, std::string& error);
