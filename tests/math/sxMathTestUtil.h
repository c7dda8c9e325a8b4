#pragma once

#include <sx/math/sxMatrix.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

// Random transforms of every type group, and the reference product.
class sxMatrixFactory {
 public:
  explicit sxMatrixFactory(unsigned seed) : rng(seed) {}

  float uniform(float lo, float hi) { return std::uniform_real_distribution<float>(lo, hi)(rng); }
  sxVec3 vec(float lo, float hi) {
    return sxVec3(uniform(lo, hi), uniform(lo, hi), uniform(lo, hi));
  }

  sxMatrix rotation() {
    sxMatrix m;
    m.makeHPR(uniform(-180, 180), uniform(-85, 85), uniform(-180, 180));
    return m;
  }
  sxMatrix translation() {
    sxMatrix m;
    m.makeXYZ(vec(-50, 50));
    return m;
  }
  sxMatrix uniformScale() {
    sxMatrix m;
    const float s = uniform(0.2f, 5.0f);
    m.makeScale(s, s, s);
    return m;
  }
  sxMatrix nonUniformScale() {
    sxMatrix m;
    m.makeScale(uniform(0.2f, 5.0f), uniform(0.2f, 5.0f), uniform(0.2f, 5.0f));
    return m;
  }
  // A projective matrix with random values everywhere.
  sxMatrix general() {
    float v[16];
    for (float& x : v) x = uniform(-2.0f, 2.0f);
    v[15] += 3.0f;
    return sxMatrix(v, 0);
  }
  static sxMatrix product(const sxMatrix& a, const sxMatrix& b) {
    sxMatrix r;
    r.mult(a, b);
    return r;
  }

  // One matrix of each interesting type: identity, linear, translation,
  // affine, scale and general, with the scale variants of each group.
  std::vector<sxMatrix> everyType() {
    const sxMatrix u = uniformScale(), n = nonUniformScale(), r = rotation(), t = translation();
    return {sxMatrix(),
            r,
            product(r, u),
            product(n, r),
            product(product(n, r), uniformScale()),
            t,
            product(r, t),
            product(u, t),
            product(product(r, u), t),
            product(n, t),
            product(product(n, r), t),
            product(product(u, n), t),
            product(product(product(u, n), r), t),
            u,
            n,
            product(u, n),
            general()};
  }

 private:
  std::mt19937 rng;
};

// The plain 4x4 product, element by element.
inline sxMatrix sxReferenceProduct(const sxMatrix& a, const sxMatrix& b) {
  float v[16];
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) {
      double sum = 0.0;
      for (int k = 0; k < 4; ++k) sum += static_cast<double>(a[i][k]) * b[k][j];
      v[4 * i + j] = static_cast<float>(sum);
    }
  }
  return sxMatrix(v, 0);
}

// Largest element difference relative to the larger of 1 and the largest
// element of expected.
inline float sxMatrixError(const sxMatrix& actual, const sxMatrix& expected) {
  float diff = 0.0f, size = 1.0f;
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) {
      diff = std::max(diff, std::fabs(actual[i][j] - expected[i][j]));
      size = std::max(size, std::fabs(expected[i][j]));
    }
  }
  return diff / size;
}
