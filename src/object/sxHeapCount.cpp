#include <cstdlib>
#include <mutex>

#include "object/sxHeapCount.h"
#include "object/sxThreadExit.h"

namespace sxiHeapCount {

SX_TLS_FAST constinit thread_local Counter* current = nullptr;

namespace {

// The counters of live threads, and what exited threads left behind. The
// mutex is taken when a thread starts or ends counting and by readers,
// never by the accounting itself.
constinit Counter* live = nullptr;
constinit std::atomic<std::int64_t> shared{0};

std::mutex& registry() {
  // Never destroyed: threads end, and blocks are freed, after static
  // destructors have run.
  static std::mutex* m = new std::mutex;
  return *m;
}

// Folds the thread's counter into the shared total when the thread ends.
void retire() {
  Counter* c = current;
  if (!c) return;
  current = nullptr;
  std::lock_guard<std::mutex> lock(registry());
  for (Counter** p = &live; *p; p = &(*p)->next) {
    if (*p != c) continue;
    *p = c->next;
    break;
  }
  shared.fetch_add(c->bytes.load(std::memory_order_relaxed), std::memory_order_relaxed);
  c->~Counter();
  std::free(c);
}
thread_local sxiThreadExit<retire> retirer;
// Set once the thread has had a counter, so that none is made again while
// the thread's last destructors run after its hand-back.
constinit thread_local bool counted = false;

}  // namespace

void addShared(std::int64_t delta) {
  if (!counted) {
    // The counter itself comes from the plain heap: it is not the library's
    // memory, and accounting it would recurse.
    if (void* p = std::malloc(sizeof(Counter))) {
      Counter* c = ::new (p) Counter;
      c->bytes.store(delta, std::memory_order_relaxed);
      {
        std::lock_guard<std::mutex> lock(registry());
        c->next = live;
        live = c;
      }
      counted = true;
      retirer.armed = true;
      current = c;
      return;
    }
  }
  shared.fetch_add(delta, std::memory_order_relaxed);
}

std::size_t total() {
  std::lock_guard<std::mutex> lock(registry());
  std::int64_t sum = shared.load(std::memory_order_relaxed);
  for (Counter* c = live; c; c = c->next) sum += c->bytes.load(std::memory_order_relaxed);
  return std::size_t(sum);
}

}  // namespace sxiHeapCount
