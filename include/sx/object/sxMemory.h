#pragma once

#include <cstddef>
#include <new>
#include <utility>

#include <sx/sxExport.h>

class sxArena;

// The single gateway to the heap: every allocation of the library passes
// through here so that the number of bytes in use is known at any time.
// Classes that allocate through it may derive from it to inherit the
// operators; the class has no fields.
class SX_API sxMemory {
 public:
  virtual ~sxMemory() = default;

  // Heap allocation, accounted with the block's usable size. May return null.
  static void* operator new(std::size_t size) noexcept;
  static void* operator new[](std::size_t size) noexcept;
  // Allocation from an arena; such memory is released only with the arena.
  static void* operator new(std::size_t size, sxArena* arena) noexcept;
  static void* operator new(std::size_t, void* place) noexcept { return place; }
  static void operator delete(void* p) noexcept;
  static void operator delete[](void* p) noexcept;
  static void operator delete(void*, void*) noexcept {}
  static void operator delete(void* p, sxArena*) noexcept;

  // Plain accounted allocation.
  static void* malloc(std::size_t size);
  // Allocates size rounded down to a multiple of 4 (a request of 7 gets 4).
  static void* malloc32(std::size_t size);
  static void* calloc(std::size_t count, std::size_t size);
  // Never shrinks: returns p unchanged when its usable size already suffices.
  static void* realloc(void* p, std::size_t size);
  // Gives the part of p beyond size back to the heap, in place where the
  // heap can; returns the block (p itself, or p unchanged on failure).
  static void* shrink(void* p, std::size_t size);
  static void free(void* p);
  /// Usable size of p (0 for null), a block of malloc, calloc or realloc
  /// here. Objects (sxBase) are not such blocks: they live in the object
  /// pool (see sxBase::operator new).
  static std::size_t getSize(const void* p);
  /// Bytes currently allocated through sxMemory, objects included (at the
  /// size of their pool slots).
  static std::size_t getSize();
  // 0 when the n bytes at a and b are equal, 1 otherwise (no ordering).
  static int compare(const void* a, const void* b, std::size_t n);
  // As compare, in whole 32-bit words; n is expected to be a multiple of 4.
  static int compare32(const void* a, const void* b, std::size_t n);
  static void initClass();
  static bool isInitialized();
  // The library throws nothing: a container that cannot grow ends the process
  // with a message instead of unwinding through callers that cannot handle it.
  [[noreturn]] static void outOfMemory();
};

// Standard-library allocator that accounts through sxMemory.
template <class T>
struct sxAllocator {
  using value_type = T;
  sxAllocator() noexcept = default;
  template <class U>
  sxAllocator(const sxAllocator<U>&) noexcept {}
  T* allocate(std::size_t n) {
    void* p = sxMemory::malloc(n * sizeof(T));
    if (!p) sxMemory::outOfMemory();
    return static_cast<T*>(p);
  }
  void deallocate(T* p, std::size_t) noexcept { sxMemory::free(p); }
  template <class U>
  bool operator==(const sxAllocator<U>&) const noexcept {
    return true;
  }
};

// Constructs a T in accounted heap memory; null when the heap is exhausted.
template <class T, class... Args>
T* sxNew(Args&&... args) {
  void* p = sxMemory::malloc(sizeof(T));
  return p ? ::new (p) T(std::forward<Args>(args)...) : nullptr;
}

// Destroys and frees an object made by sxNew; null is ignored.
template <class T>
void sxDelete(T* p) {
  if (!p) return;
  p->~T();
  sxMemory::free(p);
}
