#include <sx/math/sxScalar.h>

#include <bit>
#include <cmath>
#include <cstdint>

#include <sx/object/sxMemory.h>

namespace {

struct SqrtState {
  SXSQRT_METHOD method = SXSQRT_HARDWARE;
  std::uint32_t* table = nullptr;
  int count = 0;
  int shift = 0;
};

SqrtState state;

// Mantissa bits of the root of the float whose bits are given.
std::uint32_t rootMantissa(std::uint32_t bits) {
  return std::bit_cast<std::uint32_t>(std::sqrt(std::bit_cast<float>(bits))) & 0x7FFFFFu;
}

void buildTable(int count, int shift) {
  void* grown = sxMemory::realloc(state.table, sizeof(std::uint32_t) * count);
  if (!grown) sxMemory::outOfMemory();
  state.table = static_cast<std::uint32_t*>(grown);
  state.count = count;
  state.shift = shift;
  const int half = count / 2;
  for (int i = 0; i < half; ++i) {
    const std::uint32_t step = static_cast<std::uint32_t>(i) << shift;
    state.table[i] = rootMantissa(step | 0x3F800000u);         // [1, 2)
    state.table[half + i] = rootMantissa(step | 0x40000000u);  // [2, 4)
  }
}

}  // namespace

float sxSqrt(float x) {
  // With no table yet the lookup has nothing to read; the exact root is the
  // closest well-defined answer.
  if (state.method == SXSQRT_HARDWARE || !state.table) return std::sqrt(x);
  if (x == 0.0f) return 0.0f;
  const std::uint32_t bits = std::bit_cast<std::uint32_t>(x);
  // The sign bit takes part in the exponent on purpose (see the header).
  const std::uint32_t e = (bits >> 23) - 127u;
  const std::uint32_t index = ((bits & 0x7FFFFFu) | ((e & 1u) << 23)) >> state.shift;
  const std::uint32_t root = state.table[index] | (((e >> 1) + 127u) << 23);
  return std::bit_cast<float>(root);
}

void sxSetSqrtMethod(SXSQRT_METHOD m) {
  static constexpr int counts[] = {256, 1024, 4096, 16384};
  static constexpr int shifts[] = {16, 14, 12, 10};
  state.method = m;
  const int i = static_cast<int>(m);
  if (i < 0 || i > 3 || counts[i] == state.count) return;
  buildTable(counts[i], shifts[i]);
}

SXSQRT_METHOD sxGetSqrtMethod() {
  return state.method;
}

void sxGetSinCos(float degrees, float& sine, float& cosine) {
  const float radians = degrees * 0.017453292f;
  sine = std::sin(radians);
  cosine = std::cos(radians);
}
