#pragma once

#include <cstdint>

// Library-private state of the kernel services.
namespace sxiKernel {

// Set by sxInit: plug-in records constructed afterwards count instances.
bool initFlag();
// Platform id of the thread that loaded the library.
std::uint32_t appThreadId();
// Registers a clean-up to run when the library is unloaded (newest first).
void atUnload(void (*cleanUp)());

// Set-up and clean-up of the module-wide lists owned by the services.
void initFilePaths();
void cleanUpFilePaths();
void initClock();
void initRenderContexts();
void cleanUpRenderContexts();
void closeRenderContexts();
void formatSignature();

}  // namespace sxiKernel
