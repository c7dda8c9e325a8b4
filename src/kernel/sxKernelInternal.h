#pragma once

#include <cstdint>
#include <string>

#include <sx/object/sxMemory.h>

class sxThread;

// Library-private state of the kernel services.
namespace sxiKernel {

// Names compare ignoring ASCII case, the same in every locale.
inline unsigned char foldCase(unsigned char c) {
  return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c;
}

// Negative, 0 or positive, like strcmp on the case-folded texts.
inline int compareIgnoreCase(const char* a, const char* b) {
  const unsigned char* x = reinterpret_cast<const unsigned char*>(a);
  const unsigned char* y = reinterpret_cast<const unsigned char*>(b);
  while (*x && foldCase(*x) == foldCase(*y)) ++x, ++y;
  return int(foldCase(*x)) - int(foldCase(*y));
}

// A heap copy (sxMemory) of s with room for `extra` more bytes after its
// terminator; null for null or when memory runs out.
char* copyString(const char* s, std::size_t extra = 0);

// Set by sxInit: plug-in records constructed afterwards count instances.
bool initFlag();
// Marks the library initialised; false when it already was.
bool markInitialized(void* appInstance);
// Platform id of the thread that loaded the library.
std::uint32_t appThreadId();
// Registers a clean-up to run when the library is unloaded (newest first).
void atUnload(void (*cleanUp)());
// Runs the registered clean-ups, newest first.
void runUnloadCleanUps();

// Load-time set-up of the services: the settings read from the registry and
// the calling thread recorded as the application thread.
void readSettings();
// The application thread's object; the previous one is returned.
sxThread* exchangeAppThread(sxThread* thread);

// sxFindFile for the library: the first candidate that opens, whole; false
// when none does.
bool findFile(const char* name,
              std::basic_string<char, std::char_traits<char>, sxAllocator<char>>& found);

using String = std::basic_string<char, std::char_traits<char>, sxAllocator<char>>;

// The directories searched for modules, in order: the executable's, the
// current one, the plug-in directory, $SXCORE_PLUGIN_DIR, then each entry
// of $PATH. Empty and over-long names are left out. Calls visit(dir, user)
// for each; stops when it returns false.
void forEachModuleDirectory(bool (*visit)(const char* dir, void* user), void* user);
// The full path of the module file `name` (no directory; matched ignoring
// case, in the platform's naming) in the first directory that holds it.
bool findModuleFile(const char* name, String& path);

// Plug-in diagnostics (every directory tried, file found or not, the
// system's reason for a failure): on while SXCORE_DEBUG_PLUGINS is set and
// not "0", or while a trace function is installed (sxSetPlugInTrace).
[[gnu::format(printf, 1, 2)]] void plugInTrace(const char* format, ...);

// Set-up and clean-up of the module-wide lists owned by the services.
void initFilePaths();
void cleanUpFilePaths();
void initClock();
void formatSignature();

}  // namespace sxiKernel
