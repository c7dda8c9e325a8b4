#include <sx/kernel/sxKernel.h>

#include <cstdio>

#include "kernel/sxKernelInternal.h"

namespace {
constexpr unsigned libraryVersion = 0x01020006;
char signature[64];
}  // namespace

unsigned sxGetVersion() {
  return libraryVersion;
}

unsigned sxMakeVersion(unsigned major, unsigned minor, unsigned build) {
  return ((major << 8 | minor) << 16) | build;
}

unsigned sxGetMajorVersion(unsigned v) {
  return (v >> 24) & 255;
}
unsigned sxGetMinorVersion(unsigned v) {
  return (v >> 16) & 255;
}
unsigned sxGetBuildVersion(unsigned v) {
  return v & 0xFFFF;
}

const char* sxGetSignature() {
  return signature;
}

void sxiKernel::formatSignature() {
  std::snprintf(signature, sizeof signature, "%s %d.%d %d %s", "Solmax Release", 1, 2, 6,
                "Jun 10 1999");
}
