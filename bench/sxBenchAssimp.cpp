// Importing a model through the Assimp loader module against Assimp's own
// reading of the same file (an importer and ReadFile with the module's
// post-processing): the conversion should add at most a fifth.

#include <assimp/scene.h>
#include <benchmark/benchmark.h>
#include <sx/sxCore.h>
#include <assimp/Importer.hpp>

#include <filesystem>
#include <string>

#include "sxAssimpScene.h"

namespace {

const char* const models[] = {
    "/usr/share/assimp/models/glTF2/2CylinderEngine-glTF-Binary/2CylinderEngine.glb",
    "/usr/share/assimp/models/Collada/duck.dae", "/usr/share/assimp/models/OBJ/spider.obj"};

bool present(benchmark::State& state, const char* path) {
  if (std::filesystem::exists(path)) return true;
  state.SkipWithError("install the assimp-testmodels package");
  return false;
}

void BM_AssimpReadFile(benchmark::State& state) {
  const char* path = models[state.range(0)];
  if (!present(state, path)) return;
  for (auto _ : state) {
    Assimp::Importer importer;
    benchmark::DoNotOptimize(importer.ReadFile(path, sxAssimpReadFlags));
  }
  state.SetLabel(std::filesystem::path(path).filename().string());
}
BENCHMARK(BM_AssimpReadFile)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

void BM_LoaderImportFile(benchmark::State& state) {
  const char* path = models[state.range(0)];
  if (!present(state, path)) return;
  static const bool started = (sxInit(nullptr), true);
  (void)started;
  for (auto _ : state) {
    sxRef<sxBase> root(sxLoader::importFile(path));
    if (!root) state.SkipWithError(sxLoader::getErrorMessage());
  }
  state.SetLabel(std::filesystem::path(path).filename().string());
}
BENCHMARK(BM_LoaderImportFile)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
