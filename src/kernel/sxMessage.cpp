#include <sx/kernel/sxKernel.h>

#include <atomic>
#include <cstdarg>
#include <cstdio>

#include "platform/sxPlatform.h"

std::FILE* _sxiFd = nullptr;

namespace {
constinit std::atomic<void (*)(char*)> handler{nullptr};
}

void sxMessage(const char* format, ...) {
  if (!format) return;
  va_list args;
  va_start(args, format);
  if (auto h = handler.load(std::memory_order_acquire)) {
    // The handler gets a 2048-byte buffer; longer text is cut rather than
    // overrunning it.
    char buffer[2048];
    std::vsnprintf(buffer, sizeof buffer, format, args);
    h(buffer);
  } else {
    std::vprintf(format, args);
  }
  va_end(args);
}

void sxMessageHandler(void (*h)(char*)) {
  handler.store(h, std::memory_order_release);
}

void sxCreateConsole() {
  sxPlatform::makeStdoutUnbuffered();
}
