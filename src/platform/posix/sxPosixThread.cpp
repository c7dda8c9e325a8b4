#include <errno.h>
#include <linux/futex.h>
#include <sched.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include "platform/sxPlatform.h"

std::uint32_t sxPlatform::currentThreadId() {
  static thread_local std::uint32_t id = std::uint32_t(syscall(SYS_gettid));
  return id;
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
