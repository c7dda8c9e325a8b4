#include <sx/kernel/sxKernel.h>

#include <cstdint>
#include <cstring>

#include "kernel/sxKernelInternal.h"

char* sxiKernel::copyString(const char* s, std::size_t extra) {
  if (!s) return nullptr;
  std::size_t n = std::strlen(s) + 1;
  char* p = static_cast<char*>(sxMemory::malloc(n + extra));
  if (p) std::memcpy(p, s, n);
  return p;
}

int sxStrcmp(const char* a, const char* b, bool ignoreCase) {
  if (!a && !b) return 0;
  if (!a || !b) return -1;
  if (ignoreCase) return sxiKernel::compareIgnoreCase(a, b);
  int r = std::strcmp(a, b);  // compares as unsigned characters
  return r < 0 ? -1 : (r > 0 ? 1 : 0);
}

unsigned sxStrToInt(const char* s) {
  if (!s) return 0;
  std::uint32_t w = 0;
  for (int i = 0; s[i]; ++i) {
    w ^= std::uint32_t(std::uint8_t(s[i])) << (8 * (i & 3));
    ++w;
  }
  return w;
}
