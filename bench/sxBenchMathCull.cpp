// Frustum culling of spheres and boxes, the traversal's view test.
#include <sx/math/sxBox.h>
#include <sx/math/sxFrustum.h>
#include <sx/math/sxMatrix.h>
#include <sx/math/sxSphere.h>

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

namespace {

constexpr int count = 1024;

// A view frustum in the world and volumes scattered around it, a mix of
// inside, outside and crossing ones.
struct Scene {
  sxFrustum frustum;
  std::vector<sxSphere> spheres;
  std::vector<sxBox> boxes;

  Scene() {
    sxSetSqrtMethod(SXSQRT_TABLE_4K);
    frustum.makeFOV(90.0f, 60.0f, 1.0f, 200.0f);
    sxMatrix m;
    m.makeHPR(30.0f, 10.0f, 0.0f);
    m.setXYZ(5.0f, -3.0f, 2.0f);
    frustum.xform(m);
    std::mt19937 rng(7);
    std::uniform_real_distribution<float> pos(-150.0f, 150.0f), size(0.5f, 20.0f);
    for (int i = 0; i < count; ++i) {
      const sxVec3 c(pos(rng), pos(rng) + 100.0f, pos(rng) / 3.0f);
      spheres.emplace_back(c, size(rng));
      const sxVec3 half(size(rng), size(rng), size(rng));
      boxes.emplace_back(c - half, c + half);
    }
  }
};

template <class V>
void cull(benchmark::State& state, const std::vector<V> Scene::*volumes) {
  const Scene scene;
  const std::vector<V>& all = scene.*volumes;
  int i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(scene.frustum.contains(all[i]));
    i = (i + 1) & (count - 1);
  }
}

}  // namespace

BENCHMARK_CAPTURE(cull, sphere, &Scene::spheres);
BENCHMARK_CAPTURE(cull, box, &Scene::boxes);

BENCHMARK_MAIN();
