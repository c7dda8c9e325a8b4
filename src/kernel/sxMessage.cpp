#include <sx/kernel/sxKernel.h>

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/sxPlatform.h"

std::FILE* _sxiFd = nullptr;

namespace {

constinit std::atomic<void (*)(char*)> handler{nullptr};

// -1 until the environment has been read.
constinit std::atomic<int> stream{-1};

SX_MESSAGE_STREAM streamFromEnvironment() {
  const char* v = std::getenv("SXCORE_MESSAGES");
  if (v && std::strcmp(v, "stderr") == 0) return SX_MESSAGES_STDERR;
  if (v && std::strcmp(v, "off") == 0) return SX_MESSAGES_OFF;
  return SX_MESSAGES_STDOUT;
}

}  // namespace

SX_MESSAGE_STREAM sxGetMessageStream() {
  int s = stream.load(std::memory_order_acquire);
  if (s < 0) {
    // Racing first readers compute the same value.
    int expected = -1;
    s = streamFromEnvironment();
    if (!stream.compare_exchange_strong(expected, s, std::memory_order_acq_rel)) s = expected;
  }
  return SX_MESSAGE_STREAM(s);
}

void sxSetMessageStream(SX_MESSAGE_STREAM s) {
  if (s >= SX_MESSAGES_STDOUT && s <= SX_MESSAGES_OFF) stream.store(s, std::memory_order_release);
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
  } else if (SX_MESSAGE_STREAM s = sxGetMessageStream(); s != SX_MESSAGES_OFF) {
    std::vfprintf(s == SX_MESSAGES_STDERR ? stderr : stdout, format, args);
  }
  va_end(args);
}

void sxMessageHandler(void (*h)(char*)) {
  handler.store(h, std::memory_order_release);
}

void sxCreateConsole() {
  sxPlatform::makeStdoutUnbuffered();
}
