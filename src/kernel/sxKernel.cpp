// Load-time set-up of the library, sxInit and sxShutdown.
//
// One initialiser builds the kernel while the library is being loaded, in a
// fixed order; every step registers the clean-up that undoes it, and the
// clean-ups run newest first when the library is unloaded. All other
// module-wide state of the library is constant-initialised, so nothing
// depends on the order in which the toolchain runs static initialisers.

#include <sx/sxCore.h>

#include <atomic>
#include <cstdlib>
#include <ctime>
#include <new>

#include "kernel/sxKernelInternal.h"
#include "kernel/sxKernelLocks.h"
#include "object/sxDeletion.h"
#include "platform/sxPlatform.h"

std::atomic<sxLock*> sxiKernel::locks[sxiKernel::numLocks];

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

// The kernel's own plug-in record lives in static storage: records are
// static objects of their modules and cannot be created on the heap.
alignas(sxPlugIn) unsigned char kernelPlugInStorage[sizeof(sxPlugIn)];
constinit sxPlugIn* kernelPlugIn = nullptr;

const char* const lockNames[sxiKernel::numLocks] = {"sxMemory Lock", "sxBase Lock", "sxType Lock",
                                                    "sxPlugIn Lock", "sxGroup Lock"};

// Clears each global pointer before releasing its lock, so that code that
// runs during the release sees no lock and takes none.
void releaseKernelLocks() {
  const sxiKernel::LockId order[] = {sxiKernel::groupLock, sxiKernel::plugInLock,
                                     sxiKernel::typeLock, sxiKernel::baseLock,
                                     sxiKernel::memoryLock};
  for (sxiKernel::LockId id : order)
    if (sxLock* l = sxiKernel::locks[id].exchange(nullptr)) l->unRef();
}

void releaseAppThread() {
  if (sxThread* t = appThread.exchange(nullptr)) t->unRef();
}

// Step 1: the signature and the heap accounting.
void initMemory() {
  sxiKernel::formatSignature();
  sxMemory::initClass();
  _sxiFd = stdout;
}

// Step 2: the module-wide lists.
void initLists() {
  sxiKernel::initFilePaths();
  sxiKernel::initRenderContexts();
  sxType::initRegistry();
  sxPlugIn::initClass();
  sxiKernel::atUnload([] {
    sxLoader::cleanUpClass();
    sxiDeletion::cleanUp();
    sxType::cleanUpRegistry();
    sxIndexedType::cleanUpFamilies();
    sxPlugIn::cleanUpClass();
    sxArena::cleanUpClass();
    sxiKernel::cleanUpRenderContexts();
    sxiKernel::cleanUpFilePaths();
  });
}

// Step 3: the kernel's plug-in record and the core classes.
void initKernelPlugIn() {
  kernelPlugIn = ::new (kernelPlugInStorage) sxPlugIn("sxCore.dll");
  kernelPlugIn->setName("Kernel");
  kernelPlugIn->setCompany("Obrant Works");
  kernelPlugIn->setRelease(1, 2, 0, "Jun 10 1999");
  kernelPlugIn->enableSaveWithFile(false);
  sxBase::initClass(kernelPlugIn);
  sxLock::initClass(kernelPlugIn);
  sxRenderContext::initClass(kernelPlugIn);
  sxiKernel::atUnload([] {
    kernelPlugIn->~sxPlugIn();
    kernelPlugIn = nullptr;
  });
}

// Step 4: the kernel object: settings, the square-root table, clocks, the
// remaining classes and the application thread.
void initKernelObject() {
  int units = 1;
  sxiNumTextureUnits = sxReadRegistry("NumTextureUnits", units) ? units : 1;
  sxSetSqrtMethod(SXSQRT_TABLE_4K);
  std::srand(unsigned(std::time(nullptr)));
  appThreadId = sxPlatform::currentThreadId();
  sxiKernel::initClock();
  sxTimer::initClass();

  sxPlugIn* k = kernelPlugIn;
  sxQueue::initClass(k);
  sxEvent::initClass(k);
  sxThread::initClass(k);
  sxSemaphore::initClass(k);
  sxWindow::initClass(k);
  sxCamera::initClass(k);
  sxTraitStack::initClass(k);
  sxTravContext::initClass(k);

  sxAction::registerClass(k);
  sxFlushThread::registerClass(k);
  sxListener::registerClass(k);
  sxTrait::registerClass(k);
  sxTravTrait::registerClass(k);
  sxVisualTrait::registerClass(k);
  sxAudioTrait::registerClass(k);
  sxAudioLevelScale::registerClass(k);
  sxAudioPriorityScale::registerClass(k);
  sxColliderMask::registerClass(k);
  sxColliderTarget::registerClass(k);
  sxCull::registerClass(k);
  sxSort::registerClass(k);
  sxPrune::registerClass(k);
  sxTransition::registerClass(k);
  sxGroup::registerClass(k);
  sxTransform::registerClass(k);
  sxFence::registerClass(k);
  sxSphereFence::registerClass(k);
  sxBoxFence::registerClass(k);
  sxStyle::registerClass(k);
  sxEmitter::registerClass(k);
  sxGeometry::registerClass(k);
  sxScene::registerClass(k);
  sxSwitch::registerClass(k);
  sxRangeSwitch::registerClass(k);
  sxBillboard::registerClass(k);
  sxAutoSwitch::registerClass(k);
  sxActionNode::registerClass(k);
  sxModel::registerClass(k);
  sxMouse::registerClass(k);
  sxKeyboard::registerClass(k);
  sxCollider::registerClass(k);
  sxStats::registerClass(k);
  sxTraverser::registerClass(k);

  sxThread* t = new sxThread(true);
  if (t) t->ref();
  appThread.store(t);
  sxiKernel::atUnload(releaseAppThread);
}

// Step 5: the five kernel locks.
void initKernelLocks() {
  sxLock* created[sxiKernel::numLocks];
  for (int i = 0; i < sxiKernel::numLocks; ++i) {
    created[i] = new sxLock;
    if (created[i]) created[i]->ref();
  }
  for (int i = 0; i < sxiKernel::numLocks; ++i) {
    if (!created[i]) continue;
    created[i]->setName(lockNames[i]);
    sxiKernel::locks[i].store(created[i]);
  }
  sxiKernel::atUnload(releaseKernelLocks);
}

struct KernelInitialiser {
  KernelInitialiser() {
    initMemory();
    initLists();
    initKernelPlugIn();
    initKernelObject();
    initKernelLocks();
    // Workers still running at unload are stopped first, while the locks
    // they take still exist.
    sxiKernel::atUnload(sxThread::stopAllWorkers);
  }
  ~KernelInitialiser() {
    while (numCleanUps > 0) cleanUps[--numCleanUps]();
  }
};

// The one initialiser of the library. It runs before any other library code
// can be called, because every other global is constant-initialised.
KernelInitialiser kernelInitialiser;

}  // namespace

void sxiKernel::atUnload(void (*cleanUp)()) {
  if (numCleanUps < maxCleanUps) cleanUps[numCleanUps++] = cleanUp;
}

bool sxiKernel::initFlag() {
  return plugInInitFlag.load();
}
std::uint32_t sxiKernel::appThreadId() {
  return ::appThreadId;
}

void sxiKernel::acquireLock(sxLock* lock) {
  lock->acquire();
}
void sxiKernel::releaseLock(sxLock* lock) {
  lock->release();
}

void sxInit(sxModuleHandle handle) {
  appInstance = handle;
  if (sxiInitialized) return;
  sxiInitialized = true;
  plugInInitFlag.store(true);
  sxLoader::initLoaders();
}

void sxShutdown() {
  if (sxThread* t = appThread.load()) t->flushDownstream();
  releaseAppThread();
  sxiKernel::closeRenderContexts();
  releaseKernelLocks();
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
