#include <sx/object/sxArena.h>
#include <sx/object/sxMemory.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "object/sxHeapCount.h"
#include "platform/sxPlatform.h"

namespace {
// malloc is thread-safe by itself, so accounting needs no lock around the
// heap call; the total is kept per thread (sxHeapCount.h), so allocation
// never serialises the threads of the pipeline.
constinit std::atomic<bool> classInitialized{false};

// Accounts a block that moved or changed size from old usable bytes to q's.
inline void* reaccounted(void* q, std::size_t old) {
  sxiHeapCount::add(std::int64_t(sxPlatform::usableSize(q)) - std::int64_t(old));
  return q;
}

inline void* accounted(void* p) {
  if (p) sxiHeapCount::add(std::int64_t(sxPlatform::usableSize(p)));
  return p;
}
}  // namespace

void* sxMemory::operator new(std::size_t size) noexcept {
  return accounted(std::malloc(size));
}
void* sxMemory::operator new[](std::size_t size) noexcept {
  return accounted(std::malloc(size));
}
void* sxMemory::operator new(std::size_t size, sxArena* arena) noexcept {
  return arena ? arena->malloc(static_cast<unsigned>(size)) : nullptr;
}
void sxMemory::operator delete(void* p) noexcept {
  free(p);
}
void sxMemory::operator delete[](void* p) noexcept {
  free(p);
}
void sxMemory::operator delete(void*, sxArena*) noexcept {}

void* sxMemory::malloc(std::size_t size) {
  return accounted(std::malloc(size));
}
void* sxMemory::malloc32(std::size_t size) {
  return accounted(std::malloc(size & ~std::size_t(3)));
}
void* sxMemory::calloc(std::size_t count, std::size_t size) {
  return accounted(std::calloc(count, size));
}

void* sxMemory::realloc(void* p, std::size_t size) {
  std::size_t old = getSize(p);
  if (p && old >= size) return p;
  if (!p && size == 0) return nullptr;
  void* q = std::realloc(p, size);
  if (!q) return nullptr;  // the old block stays valid and accounted
  return reaccounted(q, old);
}

void* sxMemory::shrink(void* p, std::size_t size) {
  std::size_t old = getSize(p);
  if (!p || size == 0 || size >= old) return p;
  void* q = std::realloc(p, size);
  return q ? reaccounted(q, old) : p;
}

void sxMemory::free(void* p) {
  if (!p) return;
  sxiHeapCount::add(-std::int64_t(sxPlatform::usableSize(p)));
  std::free(p);
}

std::size_t sxMemory::getSize(const void* p) {
  return p ? sxPlatform::usableSize(const_cast<void*>(p)) : 0;
}
std::size_t sxMemory::getSize() {
  return sxiHeapCount::total();
}

int sxMemory::compare(const void* a, const void* b, std::size_t n) {
  return std::memcmp(a, b, n) == 0 ? 0 : 1;
}

int sxMemory::compare32(const void* a, const void* b, std::size_t n) {
  return std::memcmp(a, b, n & ~std::size_t(3)) == 0 ? 0 : 1;
}

void sxMemory::initClass() {
  classInitialized.store(true);
}
bool sxMemory::isInitialized() {
  return classInitialized.load();
}

void sxMemory::outOfMemory() {
  std::fputs("sxCore: out of memory\n", stderr);
  std::abort();
}
