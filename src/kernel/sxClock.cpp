#include <sx/kernel/sxKernel.h>

#include "kernel/sxKernelInternal.h"
#include "platform/sxPlatform.h"

namespace {
// Seconds per counter tick (0 without a counter) and the start time.
double secondsPerTick = 0.0;
double startTime = 0.0;
}  // namespace

double sxGetTime() {
  if (secondsPerTick > 0.0) return double(sxPlatform::counterTicks()) * secondsPerTick - startTime;
  return sxPlatform::wallClockSeconds() - startTime;
}

void sxiKernel::initClock() {
  std::uint64_t frequency = sxPlatform::counterFrequency();
  secondsPerTick = frequency ? 1.0 / double(frequency) : 0.0;
  startTime = 0.0;
  startTime = sxGetTime();
}
