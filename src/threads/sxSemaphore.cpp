#include <sx/threads/sxSemaphore.h>

#include <new>

#include "platform/sxPlatform.h"

SX_DEFINE_CLASS(sxSemaphore)

namespace {
constinit std::atomic<bool> semaphoresEnabled{true};

using Semaphore = sxPlatform::CountingSemaphore;
static_assert(sizeof(Semaphore) <= 8 && alignof(Semaphore) <= 8,
              "platform semaphore must fit its storage");

inline Semaphore& semaphoreOf(unsigned char* storage) {
  return *std::launder(reinterpret_cast<Semaphore*>(storage));
}
inline const Semaphore& semaphoreOf(const unsigned char* storage) {
  return *std::launder(reinterpret_cast<const Semaphore*>(storage));
}
}  // namespace

sxSemaphore::sxSemaphore(int initial, int maximum) : timeout(-1), count(0) {
  ::new (handle) Semaphore(initial, maximum);
  count.store(semaphoreOf(handle).getCount(), std::memory_order_relaxed);
}

sxSemaphore::sxSemaphore(const sxSemaphore& source)
    : sxBase(source), timeout(source.timeout), count(0) {
  ::new (handle) Semaphore(source.getAvailable(), source.getMaximum());
  count.store(semaphoreOf(handle).getCount(), std::memory_order_relaxed);
}

sxSemaphore::~sxSemaphore() {
  semaphoreOf(handle).~Semaphore();
}

bool sxSemaphore::inc(int n) {
  if (!semaphoresEnabled.load(std::memory_order_relaxed)) return true;
  // The platform stores the previous count before it wakes anybody: a woken
  // waiter may destroy the semaphore at once.
  return semaphoreOf(handle).post(n, &count);
}

bool sxSemaphore::inc() {
  return inc(1);
}

bool sxSemaphore::dec(int timeoutMs) {
  if (!semaphoresEnabled.load(std::memory_order_relaxed)) return true;
  semaphoreOf(handle).wait(timeoutMs);
  count.fetch_sub(1, std::memory_order_relaxed);
  return true;
}

bool sxSemaphore::dec() {
  return dec(timeout);
}

void sxSemaphore::setTimeout(int timeoutMs) {
  timeout = timeoutMs;
}

int sxSemaphore::getMaximum() const {
  return semaphoreOf(handle).getMaximum();
}

int sxSemaphore::getAvailable() const {
  return semaphoreOf(handle).getCount();
}

void sxSemaphore::enableAll(bool enable) {
  semaphoresEnabled.store(enable);
}

bool sxSemaphore::isEnabled() {
  return semaphoresEnabled.load();
}
