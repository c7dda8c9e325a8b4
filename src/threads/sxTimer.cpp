#include <sx/threads/sxTimer.h>

#include "platform/sxPlatform.h"

namespace {
double secondsPerTick = 0.0;  // 0: no counter, use the wall clock
}

void sxTimer::initClass() {
  std::uint64_t frequency = sxPlatform::counterFrequency();
  secondsPerTick = frequency ? 1.0 / double(frequency) : 0.0;
}

bool sxTimer::usesCounter() {
  return secondsPerTick > 0.0;
}

double sxTimer::now() {
  if (secondsPerTick > 0.0) return double(sxPlatform::counterTicks()) * secondsPerTick;
  return sxPlatform::wallClockSeconds();
}

void sxTimer::start() {
  if (running) return;
  startStamp = now();
  running = 1;
}

void sxTimer::stop() {
  if (!running) return;
  elapsed += now() - startStamp;
  running = 0;
}

void sxTimer::restart() {
  startStamp = now();
  elapsed = 0.0;
  running = 1;
}

void sxTimer::reset() {
  running = 0;
  elapsed = 0.0;
}

double sxTimer::getSeconds() const {
  return running ? elapsed + (now() - startStamp) : elapsed;
}
