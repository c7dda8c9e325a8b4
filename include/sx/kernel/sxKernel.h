#pragma once

// Kernel services: start-up and shutdown, versions, the message channel,
// persistent settings, the file search path, the clock and name helpers.
//
// The library sets itself up while it is being loaded (built-in classes,
// kernel locks, application thread, time base, settings). The application
// then calls sxInit once, uses the library and calls sxShutdown before it
// exits.

#include <cstdio>

#include <sx/sxExport.h>

class sxThread;
class sxRenderContext;
template <class T>
class sxTList;

// An opaque platform module handle (the application's, or a plug-in's).
using sxModuleHandle = void*;

// --- start-up and shutdown
// Stores the handle (also on repeated calls); the first call also
// discovers the loader modules. Later calls change nothing else.
SX_API void sxInit(sxModuleHandle appInstance);
// Carries out the work queued for downstream threads, releases the
// application thread, closes every render context (last first) and releases
// the kernel locks. No kernel object may be created or destroyed afterwards.
SX_API void sxShutdown();
SX_API bool sxIsInitialized();
SX_API sxModuleHandle sxGetWindowsAppHandle();
SX_API int sxGetNumTextureUnits();
SX_API sxThread* sxGetAppThread();
SX_API bool sxInAppThread();

// --- versions: major in bits 31..24, minor in 23..16, build in 15..0
SX_API unsigned sxGetVersion();
// Fields are not masked: a minor above 255 spills into the major byte.
SX_API unsigned sxMakeVersion(unsigned major, unsigned minor, unsigned build);
SX_API unsigned sxGetMajorVersion(unsigned version);
SX_API unsigned sxGetMinorVersion(unsigned version);
SX_API unsigned sxGetBuildVersion(unsigned version);
// "Solmax Release 1.2 6 Jun 10 1999"
SX_API const char* sxGetSignature();

// --- messages
// printf-style. Goes to the installed handler (formatted into a 2048-byte
// buffer; longer text is cut), else to the message stream: standard output
// unless the environment or sxSetMessageStream says otherwise.
SX_API void sxMessage(const char* format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;
// Installs the handler; null restores the message stream.
SX_API void sxMessageHandler(void (*handler)(char*));

/// Where messages go when no handler is installed. The environment variable
/// SXCORE_MESSAGES, read before the first message (so also for those the
/// library prints while it loads), chooses it: "stdout" (the default),
/// "stderr", or "off"; any other value keeps the default. Tools whose
/// standard output is meant for another program run with
/// SXCORE_MESSAGES=stderr.
enum SX_MESSAGE_STREAM : int {
  SX_MESSAGES_STDOUT = 0,  ///< standard output
  SX_MESSAGES_STDERR = 1,  ///< standard error
  SX_MESSAGES_OFF = 2      ///< nowhere
};
/// Overrides the environment's choice from now on.
SX_API void sxSetMessageStream(SX_MESSAGE_STREAM stream);
SX_API SX_MESSAGE_STREAM sxGetMessageStream();
// Makes standard output unbuffered, so that messages appear at once.
SX_API void sxCreateConsole();
// The standard stream exported for applications; the kernel does not use it.
SX_API extern std::FILE* _sxiFd;

// --- persistent settings (the registry)
// Integer and string reads fail silently: callers probe optional settings.
SX_API bool sxReadRegistry(const char* name, int& out);
// Reports "Cannot read key <name> from the registry." on failure.
SX_API bool sxReadRegistry(const char* name, float& out);
// out must hold 256 bytes.
SX_API bool sxReadRegistry(const char* name, char* out);
// Writes report "Cannot write key <name> to the registry." on failure.
SX_API bool sxWriteRegistry(const char* name, int value);
SX_API bool sxWriteRegistry(const char* name, float value);
SX_API bool sxWriteRegistry(const char* name, const char* value);

// --- the file search path
// Any thread may edit the path while others search it (imports). A text
// from sxGetFilePath stays valid until sxDeleteFilePaths.
// Appends dir (with a trailing separator) unless the same text is listed;
// null and empty are ignored.
SX_API void sxAddFilePath(const char* dir);
// Adds each piece of a ';'-separated list, in order.
SX_API void sxAddFilePaths(const char* dirs);
SX_API void sxDeleteFilePaths();
SX_API int sxGetNumFilePaths();
// Null outside 0..sxGetNumFilePaths()-1.
SX_API const char* sxGetFilePath(int i);
// Tries name as given, then behind each search-path entry in order; the
// first candidate that opens for reading is copied to outPath (at most
// bufferSize characters, like strncpy) and the result is its length plus
// one. 0 when nothing opens or name is null.
SX_API int sxFindFile(const char* name, int bufferSize, char* outPath);
// The part after the last '/' or '\', or null for a null or empty path and
// one that ends in a separator.
SX_API const char* sxGetFileName(const char* path);

/// The installed plug-in directory: "sxcore" in the directory of the loaded
/// library file (`<libdir>/sxcore`), found at run time so that an installed
/// tree still works after it has been moved. Absolute; never null, empty when
/// the library cannot tell where it was loaded from. The directory need not
/// exist.
SX_API const char* sxGetPlugInDirectory();

/// Receives one line of plug-in diagnostics (without the line end).
using sxPlugInTraceFunc = void (*)(const char* line, void* user);
/// Plug-in diagnostics: every directory searched for modules, each file
/// found or not, and the system's reason when a module does not load. With
/// SXCORE_DEBUG_PLUGINS=1 in the environment they go to standard error; an
/// installed function receives them instead (null restores the default).
SX_API void sxSetPlugInTrace(sxPlugInTraceFunc trace, void* user);

// --- clock: seconds since the library was loaded
SX_API double sxGetTime();

// --- names
// Nulls compare equal; one null gives -1. Case-sensitive results are only
// -1, 0 or 1.
SX_API int sxStrcmp(const char* a, const char* b, bool ignoreCase);
// The four-byte name hash used where names are stored as integers.
SX_API unsigned sxStrToInt(const char* s);

// --- render contexts (closed by sxShutdown, last first)
SX_API const sxTList<sxRenderContext*>& sxGetRenderContexts();
