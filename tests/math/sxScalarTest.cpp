#include <sx/math/sxScalar.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

struct TableCase {
  SXSQRT_METHOD method;
  int indexBits;  // mantissa bits that pick an entry within one half
};

constexpr TableCase tables[] = {
    {SXSQRT_TABLE_256, 7}, {SXSQRT_TABLE_1K, 9}, {SXSQRT_TABLE_4K, 11}, {SXSQRT_TABLE_16K, 13}};

// Worst relative error over a dense logarithmic sweep of [1e-6, 1e6].
double worstRelativeError() {
  double worst = 0.0;
  constexpr int samples = 400000;
  for (int i = 0; i <= samples; ++i) {
    const float x = static_cast<float>(std::pow(10.0, -6.0 + 12.0 * i / samples));
    const double exact = std::sqrt(static_cast<double>(x));
    worst = std::fmax(worst, std::fabs(sxSqrt(x) - exact) / exact);
  }
  return worst;
}

TEST(sxSqrt, TableErrorIsBoundedByTheIndexBitsAndExactAtPowersOfFour) {
  for (const TableCase& t : tables) {
    sxSetSqrtMethod(t.method);
    // Truncating the input to k mantissa bits errs by up to 2^-k relative,
    // which the root halves; float rounding adds one unit in the last place.
    const double bound = std::ldexp(1.0, -(t.indexBits + 1)) + std::ldexp(1.0, -23);
    const double worst = worstRelativeError();
    EXPECT_LE(worst, bound) << "method " << t.method;
    // The bound is reached, so the table really has the size named.
    EXPECT_GT(worst, 0.75 * bound) << "method " << t.method;
    EXPECT_EQ(sxSqrt(0.0f), 0.0f);
    EXPECT_EQ(sxSqrt(-0.0f), 0.0f);
    EXPECT_EQ(sxSqrt(0.25f), 0.5f);
    EXPECT_EQ(sxSqrt(65536.0f), 256.0f);
    // An odd exponent takes the [2, 4) half: sqrt(8) = 2 sqrt(2).
    EXPECT_FLOAT_EQ(sxSqrt(8.0f), 2.0f * sxSqrt(2.0f));
  }
  sxSetSqrtMethod(SXSQRT_HARDWARE);
  EXPECT_LE(worstRelativeError(), std::ldexp(1.0, -24));
  EXPECT_EQ(sxSqrt(0.0f), 0.0f);
}

TEST(sxSqrt, MethodsOutsideTheTableKeepTheTableInForce) {
  sxSetSqrtMethod(SXSQRT_TABLE_256);
  const float coarse = sxSqrt(1.99f);
  sxSetSqrtMethod(SXSQRT_TABLE_16K);
  const float fine = sxSqrt(1.99f);
  ASSERT_NE(coarse, fine);
  sxSetSqrtMethod(static_cast<SXSQRT_METHOD>(7));
  EXPECT_EQ(sxGetSqrtMethod(), 7);
  EXPECT_EQ(sxSqrt(1.99f), fine);
  // The hardware method and back to the same size neither frees nor
  // rebuilds the table, and the values stay the same.
  sxSetSqrtMethod(SXSQRT_HARDWARE);
  EXPECT_NE(sxSqrt(1.99f), fine);
  sxSetSqrtMethod(SXSQRT_TABLE_16K);
  EXPECT_EQ(sxSqrt(1.99f), fine);
  sxSetSqrtMethod(SXSQRT_TABLE_256);
  EXPECT_EQ(sxSqrt(1.99f), coarse);
}

}  // namespace
