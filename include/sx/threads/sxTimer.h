#pragma once

#include <sx/sxExport.h>

// Measures elapsed time with the best clock the platform offers: the
// high-resolution counter, or else the millisecond wall clock.
class SX_API sxTimer {
 public:
  sxTimer() = default;

  // No effect while running.
  void start();
  // Adds the running interval to the elapsed time.
  void stop();
  // Elapsed 0 and running from now.
  void restart();
  // Stopped with elapsed 0.
  void reset();
  bool isRunning() const { return running != 0; }
  // Elapsed time, including the current interval while running.
  double getSeconds() const;
  double getMilliseconds() const { return getSeconds() * 1000.0; }

  // Chooses the clock once; the library calls it at load time.
  static void initClass();
  static bool usesCounter();

 private:
  static double now();

  double startStamp = 0.0;
  double elapsed = 0.0;
  unsigned char running = 0;
};
