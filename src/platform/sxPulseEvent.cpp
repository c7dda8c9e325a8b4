#include <chrono>

#include "platform/sxPlatform.h"

// A generation counter tells a waiter that a pulse happened after it began
// to wait, so spurious wake-ups are told apart and no pulse is missed by a
// thread that was already waiting.

void sxPlatform::PulseEvent::pulse() {
  std::lock_guard<std::mutex> lock(mutex);
  ++generation;
  condition.notify_all();
}

bool sxPlatform::PulseEvent::wait(int timeoutMs) {
  std::unique_lock<std::mutex> lock(mutex);
  const std::uint64_t seen = generation;
  auto pulsed = [&] { return generation != seen; };
  if (timeoutMs < 0) {
    condition.wait(lock, pulsed);
    return true;
  }
  return condition.wait_for(lock, std::chrono::milliseconds(timeoutMs), pulsed);
}
