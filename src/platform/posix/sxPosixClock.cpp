#include <sys/time.h>
#include <time.h>

#include "platform/sxPlatform.h"

std::uint64_t sxPlatform::counterTicks() {
  timespec ts;
  clock_gettime(CLOCK_MONOTONIC, &ts);
  return std::uint64_t(ts.tv_sec) * 1000000000u + std::uint64_t(ts.tv_nsec);
}

std::uint64_t sxPlatform::counterFrequency() {
  return 1000000000u;
}

double sxPlatform::wallClockSeconds() {
  timeval tv;
  gettimeofday(&tv, nullptr);
  return double(tv.tv_sec) + double(tv.tv_usec / 1000) * 0.001;
}
