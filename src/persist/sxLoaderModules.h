#pragma once

#include "kernel/sxKernelInternal.h"

class sxLoader;

// The loader-module definitions, for the import and export paths.
namespace sxiLoaders {
// The module name of the first definition (in discovery order) that
// handles ext, ignoring case.
bool moduleFor(const char* ext, sxiKernel::String& moduleName);
// A live loader of that module (its module is loaded), or null.
sxLoader* liveLoaderOf(const char* moduleName);
// Frees the definitions when the library unloads.
void cleanUp();
}  // namespace sxiLoaders
