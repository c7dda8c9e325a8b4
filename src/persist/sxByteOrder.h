#pragma once

#include <cstdint>
#include <cstring>

// Byte reversal of the numbers of files written in the other byte order.
namespace sxiByteOrder {

inline std::uint16_t swap16(std::uint16_t v) {
  return __builtin_bswap16(v);
}
inline std::uint32_t swap32(std::uint32_t v) {
  return __builtin_bswap32(v);
}

// Reverses the `size` bytes (2, 4 or 8) at p in place.
inline void swapInPlace(void* p, int size) {
  unsigned char* b = static_cast<unsigned char*>(p);
  for (int i = 0, j = size - 1; i < j; ++i, --j) {
    unsigned char t = b[i];
    b[i] = b[j];
    b[j] = t;
  }
}

inline std::uint32_t load32(const unsigned char* p, bool swapped) {
  std::uint32_t v;
  std::memcpy(&v, p, 4);
  return swapped ? swap32(v) : v;
}

}  // namespace sxiByteOrder
