#pragma once

#include <cstddef>

// Where the library's objects live. A scene is made of very many small
// objects of few sizes, created and destroyed in bursts (a file read, a
// level unloaded), so they come from slots of fixed sizes carved from large
// slabs: no per-block header, no rounding to the heap's 16-byte chunks,
// objects made one after another lie one after another, and a thread takes
// and gives slots without a lock from a cache of its own. Slots of one size
// move between threads in batches under one lock.
//
// Slabs are never given back to the system: the slots of destroyed objects
// serve the objects made next. Bytes in use are accounted to sxMemory's
// total by slot size.
//
// Sizes above maxSize, and every size in an AddressSanitizer build (so that
// it keeps finding use after free and overflows on objects), go to the
// accounted heap instead.
namespace sxiObjectPool {

constexpr std::size_t maxSize = 512;

// Null when memory is exhausted.
void* allocate(std::size_t size) noexcept;
// size is the one given to allocate (a sized delete passes it).
void release(void* p, std::size_t size) noexcept;

}  // namespace sxiObjectPool
