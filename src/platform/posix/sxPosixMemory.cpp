#include <malloc.h>

#include "platform/sxPlatform.h"

std::size_t sxPlatform::usableSize(void* p) {
  return p ? malloc_usable_size(p) : 0;
}
