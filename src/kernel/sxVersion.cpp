#include <sx/kernel/sxKernel.h>
#include <sx/sxVersion.h>

#include <cstdio>

#include "kernel/sxKernelInternal.h"

// Each field must fit its bits, or the packed value would not read back.
static_assert(SXCORE_VERSION_MAJOR < 256 && SXCORE_VERSION_MINOR < 256 &&
              SXCORE_VERSION_BUILD < 65536);
static_assert(SXCORE_VERSION >> 24 == SXCORE_VERSION_MAJOR &&
              (SXCORE_VERSION >> 16 & 255) == SXCORE_VERSION_MINOR &&
              (SXCORE_VERSION & 0xFFFF) == SXCORE_VERSION_BUILD);

namespace {
char signature[64];
}  // namespace

unsigned sxGetVersion() {
  return SXCORE_VERSION;
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
  std::snprintf(signature, sizeof signature, "%s %d.%d %d %s", "Solmax Release",
                SXCORE_VERSION_MAJOR, SXCORE_VERSION_MINOR, SXCORE_VERSION_BUILD, "Jun 10 1999");
}
