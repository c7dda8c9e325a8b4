// Stack segments for deep recursion on POSIX systems, switched to with
// ucontext. The Windows equivalent is a fiber per segment (ConvertThreadToFiber,
// CreateFiber with the segment size, SwitchToFiber there and back) and the
// thread's stack bounds from GetCurrentThreadStackLimits.

#include <pthread.h>
#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>

#include <algorithm>
#include <climits>

#include "platform/sxDeepStack.h"

#if defined(SX_STACK_ASAN)
#include <sanitizer/common_interface_defs.h>
#endif
#if defined(__SANITIZE_THREAD__)
#define SX_STACK_TSAN 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define SX_STACK_TSAN 1
#endif
#endif
#if defined(SX_STACK_TSAN)
#include <sanitizer/tsan_interface.h>
#endif

namespace sxiStack {
constinit thread_local std::uintptr_t limit = UINTPTR_MAX;
}

namespace {

using sxiStack::reserve;
using sxiStack::segmentSize;

// Room assumed below the first guarded call on a stack whose bounds the
// system does not report (a stack some other code switched to): little, so
// that the recursion soon moves to segments of known size.
constexpr std::uintptr_t unknownStackRoom = std::uintptr_t(64) << 10;
// The kernel keeps a gap (1 MiB by default) between the main thread's stack,
// which grows on demand, and the mapping below it; the bounds the C library
// reports for that stack may include the gap.
constexpr std::uintptr_t mainStackGap = std::uintptr_t(1) << 20;
// Free segments kept per thread, so that a pass moving back and forth
// across a segment boundary does not map and unmap one each time.
constexpr int cachedSegments = 2;

std::uintptr_t computeThreadLimit(std::uintptr_t frame) {
  std::uintptr_t low = 0;
  std::uintptr_t high = 0;
  pthread_attr_t attr;
  if (pthread_getattr_np(pthread_self(), &attr) == 0) {
    void* address = nullptr;
    std::size_t size = 0;
    if (pthread_attr_getstack(&attr, &address, &size) == 0) {
      low = reinterpret_cast<std::uintptr_t>(address);
      high = low + size;
    }
    pthread_attr_destroy(&attr);
  }
  if (frame < low || frame >= high) return frame > unknownStackRoom ? frame - unknownStackRoom : 0;
  if (getpid() == gettid()) low += mainStackGap;
  return low + reserve;
}

std::size_t pageSize() {
  static const std::size_t size = [] {
    long page = sysconf(_SC_PAGESIZE);
    return page > 0 ? std::size_t(page) : std::size_t(4096);
  }();
  return size;
}

// One mapping: a guard page, then segmentSize bytes of stack.
struct Segment {
  char* mapping = nullptr;

  char* bottom() const { return mapping + pageSize(); }
  std::size_t mappingSize() const { return segmentSize + pageSize(); }
};

bool mapSegment(Segment& segment) {
  void* p = mmap(nullptr, segmentSize + pageSize(), PROT_READ | PROT_WRITE,
                 MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0);
  if (p == MAP_FAILED) return false;
  if (mprotect(p, pageSize(), PROT_NONE) != 0) {
    munmap(p, segmentSize + pageSize());
    return false;
  }
  segment.mapping = static_cast<char*>(p);
  return true;
}

void unmapSegment(Segment& segment) {
  munmap(segment.mapping, segment.mappingSize());
  segment.mapping = nullptr;
}

// The thread's free segments. The flag tells code running during the
// thread's exit, after the cache is gone, to map and unmap directly.
constinit thread_local bool cacheGone = false;
struct SegmentCache {
  Segment free[cachedSegments];
  int count = 0;
  ~SegmentCache() {
    for (int i = 0; i < count; ++i) unmapSegment(free[i]);
    count = 0;
    cacheGone = true;
  }
};
thread_local SegmentCache cache;

bool takeSegment(Segment& segment) {
  if (!cacheGone && cache.count > 0) {
    segment = cache.free[--cache.count];
    return true;
  }
  return mapSegment(segment);
}

void giveBackSegment(Segment& segment) {
  if (!cacheGone && cache.count < cachedSegments)
    cache.free[cache.count++] = segment;
  else
    unmapSegment(segment);
}

// One run of a function on a segment. It lives on the caller's stack, which
// stays put while the segment runs.
struct Run {
  void (*fn)(void*);
  void* arg;
  ucontext_t caller;
  ucontext_t callee;
#if defined(SX_STACK_ASAN)
  const void* callerBottom = nullptr;
  std::size_t callerSize = 0;
#endif
#if defined(SX_STACK_TSAN)
  void* callerFiber = nullptr;
#endif
};

// makecontext passes only ints; the run is handed over here instead.
constinit thread_local Run* startingRun = nullptr;

// The first frame on a segment. It never returns (it jumps back to the
// caller), so AddressSanitizer must not poison redzones in it that nothing
// would clear.
#if defined(SX_STACK_ASAN)
__attribute__((no_sanitize_address))
#endif
void segmentEntry() {
  Run* run = startingRun;
#if defined(SX_STACK_ASAN)
  __sanitizer_finish_switch_fiber(nullptr, &run->callerBottom, &run->callerSize);
#endif
  run->fn(run->arg);
#if defined(SX_STACK_ASAN)
  // No fake-stack pointer: this stack is finished with.
  __sanitizer_start_switch_fiber(nullptr, run->callerBottom, run->callerSize);
#endif
#if defined(SX_STACK_TSAN)
  __tsan_switch_to_fiber(run->callerFiber, 0);
#endif
  setcontext(&run->caller);
}

}  // namespace

namespace sxiStack {

bool isLowSlow(std::uintptr_t frame) noexcept {
  if (limit == UINTPTR_MAX) limit = computeThreadLimit(frame);
  return frame < limit;
}

void runOnNewStack(void (*fn)(void*), void* arg) noexcept {
  Segment segment;
  if (!takeSegment(segment)) {
    fn(arg);
    return;
  }
  Run run{fn, arg, {}, {}};
  if (getcontext(&run.callee) != 0) {
    giveBackSegment(segment);
    fn(arg);
    return;
  }
  run.callee.uc_stack.ss_sp = segment.bottom();
  run.callee.uc_stack.ss_size = segmentSize;
  run.callee.uc_link = nullptr;
  makecontext(&run.callee, segmentEntry, 0);

  // The thread's own limit (or UINTPTR_MAX, still to be computed) comes
  // back when the run returns.
  std::uintptr_t savedLimit = limit;
  limit = reinterpret_cast<std::uintptr_t>(segment.bottom()) + reserve;
  startingRun = &run;
#if defined(SX_STACK_TSAN)
  // A fiber per run: the segment's first frame never returns, so a fiber
  // kept with the segment would collect one stale frame per reuse.
  void* fiber = __tsan_create_fiber(0);
  run.callerFiber = __tsan_get_current_fiber();
  __tsan_switch_to_fiber(fiber, 0);
#endif
#if defined(SX_STACK_ASAN)
  void* fakeStack = nullptr;
  __sanitizer_start_switch_fiber(&fakeStack, segment.bottom(), segmentSize);
#endif
  swapcontext(&run.caller, &run.callee);
#if defined(SX_STACK_ASAN)
  __sanitizer_finish_switch_fiber(fakeStack, nullptr, nullptr);
#endif
#if defined(SX_STACK_TSAN)
  __tsan_destroy_fiber(fiber);
#endif
  limit = savedLimit;
  giveBackSegment(segment);
}

bool runOnThread(std::size_t stackBytes, void (*fn)(void*), void* arg) noexcept {
  struct Start {
    void (*fn)(void*);
    void* arg;
  } start{fn, arg};
  pthread_attr_t attr;
  if (pthread_attr_init(&attr) != 0) return false;
  std::size_t size = std::max<std::size_t>(stackBytes, PTHREAD_STACK_MIN);
  size = (size + pageSize() - 1) / pageSize() * pageSize();
  pthread_t thread;
  bool started = pthread_attr_setstacksize(&attr, size) == 0 && pthread_create(
                                                                    &thread, &attr,
                                                                    [](void* p) -> void* {
                                                                      auto* s =
                                                                          static_cast<Start*>(p);
                                                                      s->fn(s->arg);
                                                                      return nullptr;
                                                                    },
                                                                    &start) == 0;
  pthread_attr_destroy(&attr);
  if (started) pthread_join(thread, nullptr);
  return started;
}

}  // namespace sxiStack
