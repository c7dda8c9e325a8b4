#pragma once

#include <cstdarg>
#include <cstdio>

// The one message the mathematics sends (a singular matrix). Lines go to
// standard output until the kernel's message channel is available.
inline void sxiMathMessage(const char* format, ...) {
  std::va_list args;
  va_start(args, format);
  std::vprintf(format, args);
  va_end(args);
  std::fflush(stdout);
}
