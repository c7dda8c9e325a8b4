#include <sx/object/sxMemory.h>

#include <cstring>

#include "persist/sxRunLength.h"

namespace sxiRunLength {

namespace {
// Data shorter than this are never encoded.
constexpr std::size_t minEncodedSize = 10;
constexpr unsigned maxRun = 255;
}  // namespace

Encoder::~Encoder() {
  sxMemory::free(out);
}

bool Encoder::compressRLE(const unsigned char* in, std::size_t n) {
  length = 0;
  if (!in || n < minEncodedSize) return false;
  // The stream is given up before it reaches n bytes, so n bytes hold it.
  if (capacity < n) {
    auto* grown = static_cast<unsigned char*>(sxMemory::realloc(out, n));
    if (!grown) return false;
    out = grown;
    capacity = n;
  }
  std::size_t emitted = 0;
  auto emit = [&](unsigned run, unsigned char value) {
    out[emitted++] = static_cast<unsigned char>(run);
    out[emitted++] = value;
  };
  unsigned char value = in[0];
  unsigned run = 0;
  // The running size counts the last pair and the end mark ahead.
  std::size_t outSize = 3;
  for (std::size_t i = 0; i < n; ++i) {
    if (in[i] == value) {
      ++run;
    } else {
      emit(run, value);
      value = in[i];
      run = 1;
      outSize += 2;
    }
    if (outSize >= n) return false;
    if (run == maxRun && i + 1 < n) {
      emit(maxRun, value);
      outSize += 2;
      if (outSize >= n) return false;
      value = in[i + 1];
      run = 0;
    }
  }
  emit(run, value);
  out[emitted++] = 0;
  length = emitted;
  return true;
}

std::size_t maxDecodedSize(std::uint32_t count) {
  return count == 0 ? 0 : std::size_t((count - 1) / 2) * maxRun;
}

bool decode(const unsigned char* stream, std::size_t count, unsigned char* out, std::size_t size) {
  std::size_t at = 0;
  for (std::size_t i = 0; i < count; i += 2) {
    unsigned run = stream[i];
    if (run == 0) return true;
    if (i + 1 >= count || run > size - at) return false;
    std::memset(out + at, stream[i + 1], run);
    at += run;
  }
  return false;
}

}  // namespace sxiRunLength
