#include <errno.h>
#include <linux/futex.h>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/sxPlatform.h"

namespace {
// The id is asked for once per thread. The initial-exec model makes the
// lookup one load, which keeps an uncontended lock cheap.
[[gnu::tls_model("initial-exec")]] thread_local std::uint32_t cachedThreadId = 0;

struct StartRecord {
  sxPlatform::ThreadEntry entry;
  void* arg;
};

void* threadStart(void* p) {
  StartRecord record = *static_cast<StartRecord*>(p);
  std::free(p);
  record.entry(record.arg);
  return nullptr;
}

// Windows-style base priority levels (1..31) of a class and a relative
// level, the common ground from which the scheduler's values are derived.
int baseLevel(sxPlatform::PriorityClass c, int relative) {
  using sxPlatform::PriorityClass;
  bool realtime = c == PriorityClass::realtime;
  if (relative == sxPlatform::timeCritical) return realtime ? 31 : 15;
  int base = c == PriorityClass::idle     ? 4
             : c == PriorityClass::normal ? 8
             : c == PriorityClass::high   ? 13
                                          : 24;
  return base + relative;
}
}  // namespace

std::uint32_t sxPlatform::currentThreadId() {
  std::uint32_t id = cachedThreadId;
  if (id == 0) cachedThreadId = id = std::uint32_t(syscall(SYS_gettid));
  return id;
}

bool sxPlatform::startThread(ThreadHandle& out, ThreadEntry entry, void* arg) {
  out = 0;
  auto* record = static_cast<StartRecord*>(std::malloc(sizeof(StartRecord)));
  if (!record) return false;
  record->entry = entry;
  record->arg = arg;
  pthread_t thread;
  if (pthread_create(&thread, nullptr, threadStart, record) != 0) {
    std::free(record);
    return false;
  }
  static_assert(sizeof(pthread_t) <= sizeof(ThreadHandle), "thread handle must fit");
  out = ThreadHandle(thread);
  return true;
}

void sxPlatform::joinThread(ThreadHandle thread) {
  if (thread) pthread_join(pthread_t(thread), nullptr);
}

void sxPlatform::detachThread(ThreadHandle thread) {
  if (thread) pthread_detach(pthread_t(thread));
}

// The real-time class maps to round-robin scheduling at the base level;
// the others to the normal scheduler with a nice value that falls as the
// level rises (level 8, the normal class's own, is nice 0). Raising a
// priority needs a privilege; without it the call fails and says so.
bool sxPlatform::setThreadPriority(std::uint32_t threadId, PriorityClass c, int relative) {
  if (threadId == 0) return false;
  const int level = baseLevel(c, relative);
  sched_param param{};
  if (c == PriorityClass::realtime) {
    param.sched_priority = level;
    return sched_setscheduler(pid_t(threadId), SCHED_RR, &param) == 0;
  }
  if (sched_getscheduler(pid_t(threadId)) != SCHED_OTHER &&
      sched_setscheduler(pid_t(threadId), SCHED_OTHER, &param) != 0)
    return false;
  int nice = 2 * (8 - level);
  nice = nice < -20 ? -20 : nice > 19 ? 19 : nice;
  return setpriority(PRIO_PROCESS, id_t(threadId), nice) == 0;
}

std::uint64_t sxPlatform::processAffinityMask() {
  cpu_set_t set;
  CPU_ZERO(&set);
  if (sched_getaffinity(0, sizeof set, &set) != 0) return 0;
  std::uint64_t mask = 0;
  for (int i = 0; i < 64; ++i)
    if (CPU_ISSET(i, &set)) mask |= std::uint64_t(1) << i;
  return mask;
}

bool sxPlatform::setThreadAffinity(std::uint32_t threadId, std::uint64_t mask) {
  if (threadId == 0 || mask == 0) return false;
  cpu_set_t set;
  CPU_ZERO(&set);
  for (int i = 0; i < 64; ++i)
    if (mask & (std::uint64_t(1) << i)) CPU_SET(i, &set);
  return sched_setaffinity(pid_t(threadId), sizeof set, &set) == 0;
}

void sxPlatform::yieldThread() {
  sched_yield();
}

void sxPlatform::sleepMilliseconds(int ms) {
  if (ms <= 0) {
    sched_yield();
    return;
  }
  timespec ts{ms / 1000, long(ms % 1000) * 1000000L};
  while (nanosleep(&ts, &ts) != 0 && errno == EINTR) {
  }
}

static_assert(sizeof(std::atomic<int>) == sizeof(int), "futex word must be a plain int");

bool sxPlatform::waitOnWord(std::atomic<int>* word, int expected, int timeoutMs) {
  timespec ts;
  timespec* tsp = nullptr;
  if (timeoutMs >= 0) {
    ts.tv_sec = timeoutMs / 1000;
    ts.tv_nsec = long(timeoutMs % 1000) * 1000000L;
    tsp = &ts;
  }
  long r = syscall(SYS_futex, reinterpret_cast<int*>(word), FUTEX_WAIT_PRIVATE, expected, tsp,
                   nullptr, 0);
  return !(r == -1 && errno == ETIMEDOUT);
}

void sxPlatform::wakeOneOnWord(std::atomic<int>* word) {
  syscall(SYS_futex, reinterpret_cast<int*>(word), FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
}

void sxPlatform::wakeAllOnWord(std::atomic<int>* word) {
  syscall(SYS_futex, reinterpret_cast<int*>(word), FUTEX_WAKE_PRIVATE, 0x7fffffff, nullptr, nullptr,
          0);
}
