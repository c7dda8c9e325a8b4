#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "platform/sxPlatform.h"

// The running total of sxMemory, kept per thread: accounting a block is a
// plain add to the thread's own counter instead of an atomic
// read-modify-write on a cache line that every allocating thread shares. A
// read folds the counters of all threads, so the total stays exact.
namespace sxiHeapCount {

struct Counter {
  // Written by its thread only; atomic so that a reader may fold it.
  std::atomic<std::int64_t> bytes{0};
  Counter* next = nullptr;
};

// The calling thread's counter: null before its first block, and again once
// the thread's own clean-up has run (what it frees later goes to the shared
// total).
SX_TLS_FAST extern constinit thread_local Counter* current;

void addShared(std::int64_t delta);

inline void add(std::int64_t delta) {
  if (Counter* c = current)
    c->bytes.store(c->bytes.load(std::memory_order_relaxed) + delta, std::memory_order_relaxed);
  else
    addShared(delta);
}

std::size_t total();

}  // namespace sxiHeapCount
