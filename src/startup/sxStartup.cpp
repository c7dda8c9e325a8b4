// Load-time set-up of the library, sxInit and sxShutdown.
//
// One initialiser builds the kernel while the library is being loaded, in a
// fixed order; every step registers the clean-up that undoes it, and the
// clean-ups run newest first when the library is unloaded. All other
// module-wide state of the library is constant-initialised, so nothing
// depends on the order in which the toolchain runs static initialisers.
//
// This is the one part of the library that knows every layer: it installs
// the hooks through which the lower layers reach the upper ones, and it
// registers every built-in class.

#include <sx/sxCore.h>

#include <cstdlib>
#include <ctime>
#include <new>

#include "kernel/sxHooks.h"
#include "kernel/sxKernelInternal.h"
#include "kernel/sxKernelLocks.h"
#include "object/sxDeletion.h"
#include "threads/sxThreadHooks.h"
#include "viewing/sxRenderContextList.h"

namespace {

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
    if (sxBase* l = sxiKernel::locks[id].exchange(nullptr)) l->unRef();
}

void releaseAppThread() {
  if (sxThread* t = sxiKernel::exchangeAppThread(nullptr)) t->unRef();
}

// Step 0: the lower layers' ways up.
void installHooks() {
  sxiThreadHooks::install();
  sxiHooks::importFile = &sxLoader::importFile;
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
  sxType::initRegistry();
  sxPlugIn::initClass();
  sxiKernel::atUnload([] {
    sxLoader::cleanUpClass();
    sxiDeletion::cleanUp();
    sxType::cleanUpRegistry();
    sxIndexedType::cleanUpFamilies();
    sxPlugIn::cleanUpClass();
    sxArena::cleanUpClass();
    sxiRenderContexts::cleanUp();
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
  sxiKernel::readSettings();
  sxSetSqrtMethod(SXSQRT_TABLE_4K);
  std::srand(unsigned(std::time(nullptr)));
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
  sxiKernel::exchangeAppThread(t);
  sxiKernel::atUnload(releaseAppThread);
}

// Step 5: the five kernel locks.
void initKernelLocks() {
  sxBase* created[sxiKernel::numLocks];
  for (sxBase*& lock : created)
    if ((lock = sxiHooks::newLock())) lock->ref();
  for (int i = 0; i < sxiKernel::numLocks; ++i) {
    if (!created[i]) continue;
    created[i]->setName(lockNames[i]);
    sxiKernel::locks[i].store(created[i]);
  }
  sxiKernel::atUnload(releaseKernelLocks);
}

struct KernelInitialiser {
  KernelInitialiser() {
    installHooks();
    initMemory();
    initLists();
    initKernelPlugIn();
    initKernelObject();
    initKernelLocks();
    // Workers still running at unload are stopped first, while the locks
    // they take still exist.
    sxiKernel::atUnload(sxThread::stopAllWorkers);
  }
  ~KernelInitialiser() { sxiKernel::runUnloadCleanUps(); }
};

// The one initialiser of the library. It runs before any other library code
// can be called, because every other global is constant-initialised.
KernelInitialiser kernelInitialiser;

}  // namespace

void sxInit(sxModuleHandle handle) {
  if (sxiKernel::markInitialized(handle)) sxLoader::initLoaders();
}

void sxShutdown() {
  if (sxThread* t = sxGetAppThread()) t->flushDownstream();
  releaseAppThread();
  sxiRenderContexts::close();
  releaseKernelLocks();
}
