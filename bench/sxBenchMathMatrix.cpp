// Matrix products and inverses by the type-word fast paths, against glm's
// general 4x4 code in the same run.
#include <sx/math/sxMatrix.h>

#include <benchmark/benchmark.h>

#include <glm/glm.hpp>
#include <glm/gtc/matrix_transform.hpp>
#include <random>
#include <vector>

namespace {

constexpr int count = 64;  // distinct operands, so nothing can be hoisted, all in L1

struct Operands {
  std::vector<sxMatrix> sx;
  std::vector<glm::mat4> gl;
};

glm::mat4 toGlm(const sxMatrix& m) {
  // glm is column-major with column vectors; our row-major row-vector
  // layout is the same sixteen floats in the same order.
  glm::mat4 g;
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) g[i][j] = m[i][j];
  }
  return g;
}

enum Kind { IDENTITY, TRANSLATION, AFFINE };

Operands make(Kind kind, unsigned seed) {
  std::mt19937 rng(seed);
  std::uniform_real_distribution<float> angle(-180.0f, 180.0f), offset(-100.0f, 100.0f);
  Operands ops;
  for (int i = 0; i < count; ++i) {
    sxMatrix m;
    if (kind == TRANSLATION) m.makeXYZ(offset(rng), offset(rng), offset(rng));
    if (kind == AFFINE) {
      m.makeHPR(angle(rng), angle(rng) / 2.0f, angle(rng));
      m.setXYZ(offset(rng), offset(rng), offset(rng));
    }
    ops.sx.push_back(m);
    ops.gl.push_back(toGlm(m));
  }
  return ops;
}

// Runs op over the whole set of operands per iteration, into distinct
// results, so the loop's own bookkeeping is spread over count products. The
// "per_op" counter is the time of one product.
template <class Result, class Op>
void run(benchmark::State& state, Op op) {
  std::vector<Result> r(count);
  for (auto _ : state) {
    for (int i = 0; i < count; ++i) op(r[i], i);
    benchmark::DoNotOptimize(r.data());
    benchmark::ClobberMemory();
  }
  state.counters["per_op"] = benchmark::Counter(
      count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void sxMult(benchmark::State& state, Kind ka, Kind kb) {
  const Operands a = make(ka, 1), b = make(kb, 2);
  run<sxMatrix>(state, [&](sxMatrix& r, int i) { r.mult(a.sx[i], b.sx[i]); });
}

// Row vectors on the left of a then b equal column vectors under b * a.
void glmMult(benchmark::State& state, Kind ka, Kind kb) {
  const Operands a = make(ka, 1), b = make(kb, 2);
  run<glm::mat4>(state, [&](glm::mat4& r, int i) { r = b.gl[i] * a.gl[i]; });
}

void sxInvert(benchmark::State& state) {
  const Operands a = make(AFFINE, 3);
  run<sxMatrix>(state, [&](sxMatrix& r, int i) { r.invert(a.sx[i]); });
}

void sxInvertFull(benchmark::State& state) {
  const Operands a = make(AFFINE, 3);
  run<sxMatrix>(state, [&](sxMatrix& r, int i) { r.invertFull(a.sx[i]); });
}

void glmInvert(benchmark::State& state) {
  const Operands a = make(AFFINE, 3);
  run<glm::mat4>(state, [&](glm::mat4& r, int i) { r = glm::inverse(a.gl[i]); });
}

}  // namespace

BENCHMARK_CAPTURE(sxMult, affine_by_affine, AFFINE, AFFINE);
BENCHMARK_CAPTURE(glmMult, affine_by_affine, AFFINE, AFFINE);
BENCHMARK_CAPTURE(sxMult, identity_by_affine, IDENTITY, AFFINE);
BENCHMARK_CAPTURE(sxMult, affine_by_identity, AFFINE, IDENTITY);
BENCHMARK_CAPTURE(glmMult, identity_by_affine, IDENTITY, AFFINE);
BENCHMARK_CAPTURE(sxMult, translation_by_translation, TRANSLATION, TRANSLATION);
BENCHMARK_CAPTURE(glmMult, translation_by_translation, TRANSLATION, TRANSLATION);
BENCHMARK_CAPTURE(sxMult, translation_by_affine, TRANSLATION, AFFINE);
BENCHMARK_CAPTURE(sxMult, affine_by_translation, AFFINE, TRANSLATION);
BENCHMARK(sxInvert);
BENCHMARK(sxInvertFull);
BENCHMARK(glmInvert);

BENCHMARK_MAIN();
