#pragma once

// The few operations the library needs from the operating system. Nothing
// outside src/platform includes an OS header; each back end (posix/, later
// win32/) implements this interface.

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace sxPlatform {

// Separator that the search path appends to directories.
#if defined(_WIN32)
constexpr char pathSeparator = '\\';
#else
constexpr char pathSeparator = '/';
#endif
// Separator of lists of directories in environment variables.
#if defined(_WIN32)
constexpr char pathListSeparator = ';';
#else
constexpr char pathListSeparator = ':';
#endif

// --- memory
std::size_t usableSize(void* p);

// --- clock
// Ticks of the performance counter and its frequency (ticks per second);
// a frequency of 0 means there is no counter.
std::uint64_t counterTicks();
std::uint64_t counterFrequency();
// Wall clock in seconds (the fallback clock).
double wallClockSeconds();

// --- threads
// Identifier of the calling thread, unique among live threads, never 0.
std::uint32_t currentThreadId();
void yieldThread();
void sleepMilliseconds(int ms);

// Blocks while *word == expected, for at most timeoutMs (-1: no limit).
// Returns false on timeout. May return spuriously; callers re-check.
bool waitOnWord(std::atomic<int>* word, int expected, int timeoutMs);
void wakeOneOnWord(std::atomic<int>* word);
void wakeAllOnWord(std::atomic<int>* word);

// A recursive mutex with timeouts. Uncontended acquire and release are one
// atomic operation each; a contended acquire sleeps in the kernel.
class RecursiveMutex {
 public:
  constexpr RecursiveMutex() = default;
  RecursiveMutex(const RecursiveMutex&) = delete;
  RecursiveMutex& operator=(const RecursiveMutex&) = delete;
  // timeoutMs: -1 waits for ever, 0 only tries. True when the lock is held.
  bool acquire(int timeoutMs);
  // Releases one level; false when the calling thread does not hold it.
  bool release();
  bool heldByCurrentThread() const;

 private:
  std::atomic<int> state{0};  // 0 free, 1 held, 2 held with waiters
  std::atomic<std::uint32_t> owner{0};
  int depth = 0;
};

// --- registry store (persistent settings)
enum class RegistryType { dword = 4, string = 1 };
// Reads value `name`; on success copies at most `size` bytes into `out`,
// sets `type` and `length` (bytes of the value, strings with their NUL).
bool registryRead(const char* name, RegistryType& type, void* out, std::size_t size,
                  std::size_t& length);
bool registryWrite(const char* name, RegistryType type, const void* data, std::size_t length);
// The path of the store (for diagnostics); empty when no location is known.
const char* registryPath();

// --- modules
using ModuleHandle = void*;
// A module already loaded in the process whose file name matches `name`
// ignoring case (".dll" names also match "lib<name>.so" and "<name>.so").
ModuleHandle moduleFind(const char* name);
ModuleHandle moduleLoad(const char* name);
bool moduleFree(ModuleHandle module);
// Full path of the running executable; false when unknown.
bool executablePath(char* out, std::size_t size);
// Current working directory.
bool currentDirectory(char* out, std::size_t size);

// --- console
void makeStdoutUnbuffered();

}  // namespace sxPlatform
