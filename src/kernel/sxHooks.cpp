#include "kernel/sxHooks.h"

namespace sxiHooks {
constinit ObjectMaker makeLock = nullptr;
constinit ObjectAction acquireLock = nullptr;
constinit ObjectAction releaseLock = nullptr;
constinit ObjectTest deferDeletion = nullptr;
constinit ObjectTest destroysItselfLater = nullptr;
constinit Query pipelineRunning = nullptr;
constinit FileImporter importFile = nullptr;
}  // namespace sxiHooks
