#include "object/sxObjectPool.h"

#include <sx/object/sxMemory.h>

#include <cstdint>
#include <cstdlib>
#include <mutex>

#include "object/sxHeapCount.h"
#include "object/sxThreadExit.h"
#include "platform/sxPlatform.h"

#if defined(__SANITIZE_ADDRESS__)
#define SX_POOL_BYPASS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SX_POOL_BYPASS 1
#endif
#endif

namespace sxiObjectPool {

#if defined(SX_POOL_BYPASS)

void* allocate(std::size_t size) noexcept {
  return sxMemory::malloc(size);
}
void release(void* p, std::size_t) noexcept {
  sxMemory::free(p);
}

#else

namespace {

constexpr std::size_t grain = 8;
constexpr int numClasses = int(maxSize / grain) + 1;
constexpr std::size_t slabBytes = std::size_t(256) << 10;
// What a thread carves from its class's slab at a time, and what it hands
// back when it holds too many free slots: big enough that the lock is rare,
// small enough that an idle thread sits on little memory.
constexpr std::size_t freshBytes = std::size_t(16) << 10;
constexpr std::size_t batchBytes = std::size_t(8) << 10;

// A free slot. The first slot of a batch also links the batches and counts
// its own; every slot is at least this big.
struct Free {
  Free* next;
  Free* nextBatch;
  std::size_t count;
};

inline int classOf(std::size_t size) {
  const std::size_t c = (size + grain - 1) / grain;
  return c * grain < sizeof(Free) ? int((sizeof(Free) + grain - 1) / grain) : int(c);
}
inline std::size_t slotSize(int c) {
  return std::size_t(c) * grain;
}
inline std::size_t batchSlots(int c) {
  const std::size_t n = batchBytes / slotSize(c);
  return n < 8 ? 8 : n;
}

// A thread's slots of one size: freed ones, and a fresh run of a slab.
struct Lane {
  Free* head;
  std::size_t count;
  char* fresh;
  char* freshEnd;
};
struct Cache {
  Lane lanes[numClasses];
};

// Per size, under the lock: batches handed back, and the rest of the slab
// being carved.
struct Shared {
  Free* batches;
  char* fresh;
  char* freshEnd;
};

struct Slab {
  Slab* next;
};

constinit std::mutex lock;
constinit Shared shared[numClasses] = {};
// Kept linked so that leak checkers see the slabs as reachable.
constinit Slab* slabs = nullptr;

// Null before the thread's first object, and again once the thread's own
// clean-up has run: what it makes or frees later goes through the lock.
SX_TLS_FAST constinit thread_local Cache* cache = nullptr;
SX_TLS_FAST constinit thread_local bool retired = false;

void pushBatch(int c, Free* first, std::size_t count) {
  first->count = count;
  first->nextBatch = shared[c].batches;
  shared[c].batches = first;
}

// Under the lock: a run of at most want bytes of class c's slab.
bool carve(int c, std::size_t want, char*& begin, char*& end) {
  Shared& s = shared[c];
  const std::size_t slot = slotSize(c);
  if (std::size_t(s.freshEnd - s.fresh) < slot) {
    char* block = static_cast<char*>(std::malloc(slabBytes));
    if (!block) return false;
    auto* slab = reinterpret_cast<Slab*>(block);
    slab->next = slabs;
    slabs = slab;
    // Slots start one grain in, past the link, aligned as malloc aligns.
    s.fresh = block + 16;
    s.freshEnd = block + slabBytes;
  }
  std::size_t n = std::size_t(s.freshEnd - s.fresh) / slot;
  const std::size_t wanted = want / slot ? want / slot : 1;
  if (n > wanted) n = wanted;
  begin = s.fresh;
  end = s.fresh + n * slot;
  s.fresh = end;
  return true;
}

// The thread's slots go back to the shared batches when it ends.
void retire() {
  Cache* k = cache;
  if (!k) return;
  cache = nullptr;
  retired = true;
  std::lock_guard<std::mutex> guard(lock);
  for (int c = 0; c < numClasses; ++c) {
    Lane& l = k->lanes[c];
    if (l.head) pushBatch(c, l.head, l.count);
    // The unused fresh run becomes a batch of its own.
    const std::size_t slot = slotSize(c);
    Free* first = nullptr;
    std::size_t n = 0;
    for (char* p = l.freshEnd; l.fresh && std::size_t(p - l.fresh) >= slot; ++n) {
      p -= slot;
      auto* f = reinterpret_cast<Free*>(p);
      f->next = first;
      first = f;
    }
    if (first) pushBatch(c, first, n);
  }
  std::free(k);
}
thread_local sxiThreadExit<retire> retirer;

inline void account(std::int64_t bytes) {
  sxiHeapCount::add(bytes);
}

// The thread's first object, made or freed: its cache. Null past the
// thread's clean-up, or when memory is exhausted.
Cache* makeCache() {
  if (cache || retired) return cache;
  auto* k = static_cast<Cache*>(std::calloc(1, sizeof(Cache)));
  if (k) {
    cache = k;
    retirer.armed = true;
  }
  return k;
}

// No slot in the thread's lane: refill it under the lock, from a batch
// handed back or from the slab. A thread past its clean-up takes a single
// slot instead.
void* allocateSlow(int c) {
  Cache* k = makeCache();
  std::lock_guard<std::mutex> guard(lock);
  Shared& s = shared[c];
  if (!k) {
    Free* f = s.batches;
    if (f) {
      if (f->count > 1) {
        Free* rest = f->next;
        rest->count = f->count - 1;
        rest->nextBatch = f->nextBatch;
        s.batches = rest;
      } else {
        s.batches = f->nextBatch;
      }
      return f;
    }
    char *begin, *end;
    return carve(c, slotSize(c), begin, end) ? begin : nullptr;
  }
  Lane& l = k->lanes[c];
  if (Free* f = s.batches) {
    s.batches = f->nextBatch;
    l.head = f->next;
    l.count = f->count - 1;
    return f;
  }
  char *begin, *end;
  if (!carve(c, freshBytes, begin, end)) return nullptr;
  l.fresh = begin + slotSize(c);
  l.freshEnd = end;
  return begin;
}

// The thread holds two batches' worth of free slots: the newest batch
// stays, the older slots go to the shared batches for other threads.
void handBack(int c, Lane& l) {
  const std::size_t keep = batchSlots(c);
  Free* last = l.head;
  for (std::size_t i = 1; i < keep; ++i) last = last->next;
  Free* first = last->next;
  last->next = nullptr;
  const std::size_t n = l.count - keep;
  l.count = keep;
  std::lock_guard<std::mutex> guard(lock);
  pushBatch(c, first, n);
}

}  // namespace

void* allocate(std::size_t size) noexcept {
  if (size > maxSize) return sxMemory::malloc(size);
  const int c = classOf(size);
  const std::size_t slot = slotSize(c);
  void* p = nullptr;
  if (Cache* k = cache) {
    Lane& l = k->lanes[c];
    if (Free* f = l.head) {
      l.head = f->next;
      --l.count;
      p = f;
    } else if (std::size_t(l.freshEnd - l.fresh) >= slot) {
      p = l.fresh;
      l.fresh += slot;
    }
  }
  if (!p) p = allocateSlow(c);
  if (p) account(std::int64_t(slot));
  return p;
}

void release(void* p, std::size_t size) noexcept {
  if (!p) return;
  if (size > maxSize) return sxMemory::free(p);
  const int c = classOf(size);
  account(-std::int64_t(slotSize(c)));
  auto* f = static_cast<Free*>(p);
  Cache* k = cache;
  if (!k) k = makeCache();
  if (k) {
    Lane& l = k->lanes[c];
    f->next = l.head;
    l.head = f;
    if (++l.count >= 2 * batchSlots(c)) handBack(c, l);
    return;
  }
  std::lock_guard<std::mutex> guard(lock);
  f->next = nullptr;
  pushBatch(c, f, 1);
}

#endif

}  // namespace sxiObjectPool
