// The kernel's module-wide state and its accessors. The load-time set-up
// that builds the whole library, and sxInit and sxShutdown, which reach
// every layer, live with the start-up code above all layers.

#include <sx/kernel/sxKernel.h>

#include <atomic>

#include "kernel/sxKernelInternal.h"
#include "kernel/sxKernelLocks.h"
#include "platform/sxPlatform.h"

std::atomic<sxBase*> sxiKernel::locks[sxiKernel::numLocks];

namespace {

constinit bool sxiInitialized = false;
constinit std::atomic<bool> plugInInitFlag{false};
constinit sxModuleHandle appInstance = nullptr;
constinit int sxiNumTextureUnits = 1;
constinit std::atomic<sxThread*> appThread{nullptr};
constinit std::uint32_t appThreadId = 0;

constexpr int maxCleanUps = 16;
using CleanUp = void (*)();
constinit CleanUp cleanUps[maxCleanUps] = {};
constinit int numCleanUps = 0;

}  // namespace

void sxiKernel::atUnload(void (*cleanUp)()) {
  if (numCleanUps < maxCleanUps) cleanUps[numCleanUps++] = cleanUp;
}

void sxiKernel::runUnloadCleanUps() {
  while (numCleanUps > 0) cleanUps[--numCleanUps]();
}

bool sxiKernel::initFlag() {
  return plugInInitFlag.load();
}

bool sxiKernel::markInitialized(void* instance) {
  appInstance = instance;
  if (sxiInitialized) return false;
  sxiInitialized = true;
  plugInInitFlag.store(true);
  return true;
}

std::uint32_t sxiKernel::appThreadId() {
  return ::appThreadId;
}

void sxiKernel::readSettings() {
  int units = 1;
  sxiNumTextureUnits = sxReadRegistry("NumTextureUnits", units) ? units : 1;
  ::appThreadId = sxPlatform::currentThreadId();
}

sxThread* sxiKernel::exchangeAppThread(sxThread* thread) {
  return appThread.exchange(thread);
}

bool sxIsInitialized() {
  return sxiInitialized;
}
sxModuleHandle sxGetWindowsAppHandle() {
  return appInstance;
}
int sxGetNumTextureUnits() {
  return sxiNumTextureUnits;
}
sxThread* sxGetAppThread() {
  return appThread.load();
}
bool sxInAppThread() {
  return sxPlatform::currentThreadId() == appThreadId;
}
