#pragma once

// The few operations the library needs from the operating system. Nothing
// outside src/platform includes an OS header; each back end (posix/, later
// win32/) implements this interface.

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>

// Thread-local variables touched in every object's life: the initial-exec
// model makes an access one load instead of a call into the dynamic linker.
// The library's static thread-local block is reserved when a program that
// links it starts; keep such variables few and small, so that a library
// opened later still fits the loader's reserve.
#if defined(__GNUC__) && !defined(_WIN32)
#define SX_TLS_FAST [[gnu::tls_model("initial-exec")]]
#else
#define SX_TLS_FAST
#endif

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

// Tells the processor that the caller is spinning.
inline void cpuRelax() {
#if defined(__x86_64__) || defined(__i386__)
  __builtin_ia32_pause();
#elif defined(__aarch64__)
  asm volatile("yield");
#endif
}

// Threads the library starts. A handle of 0 means none. The entry runs on
// the new thread with arg; it starts at once (suspension is the library's).
using ThreadHandle = std::uintptr_t;
using ThreadEntry = void (*)(void* arg);
bool startThread(ThreadHandle& out, ThreadEntry entry, void* arg);
// Waits for the thread to end and releases the handle.
void joinThread(ThreadHandle thread);
// Releases the handle; the thread's resources go when it ends.
void detachThread(ThreadHandle thread);

// Scheduling. Priorities are requested as a class and a level relative to
// it (-2..+2, or timeCritical), the way the library's mapping table states
// them; each back end translates the pair to what its scheduler offers.
enum class PriorityClass { idle, normal, high, realtime };
constexpr int timeCritical = 15;
// False when the scheduler refuses (for example without the privilege to
// raise a priority).
bool setThreadPriority(std::uint32_t threadId, PriorityClass priorityClass, int relative);
// The processors the process may run on, one bit each (the first 64).
std::uint64_t processAffinityMask();
bool setThreadAffinity(std::uint32_t threadId, std::uint64_t mask);

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

// A counting semaphore with a maximum, on one futex word: the count in the
// low 31 bits and a "sleepers present" bit on top. A post touches the
// semaphore's memory only in its one atomic update (the wake is a system
// call on the address), so a waiter may destroy the semaphore as soon as it
// has been released.
class CountingSemaphore {
 public:
  enum class WaitResult { signalled, timedOut };
  static constexpr int maxCount = 0x7FFFFFFF;

  // The maximum is raised to at least 1 and the initial count kept in
  // 0..maximum.
  CountingSemaphore(int initial, int maximum);
  CountingSemaphore(const CountingSemaphore&) = delete;
  CountingSemaphore& operator=(const CountingSemaphore&) = delete;

  // Adds n counts; false (and no change) when n < 1 or the count would pass
  // the maximum. The count before the post is stored in *previous, if
  // given, before any waiter can run.
  bool post(int n, std::atomic<int>* previous);
  // Takes one count, waiting at most timeoutMs (-1: no limit, 0: only tries).
  WaitResult wait(int timeoutMs);
  int getCount() const;
  int getMaximum() const { return maximum; }

 private:
  static constexpr int sleepersBit = int(0x80000000u);
  bool tryTake();

  std::atomic<int> word;
  int maximum;
};

// A manual-reset event that is only ever pulsed: a pulse releases every
// thread waiting at that moment and leaves the event unsignalled.
class PulseEvent {
 public:
  PulseEvent() = default;
  PulseEvent(const PulseEvent&) = delete;
  PulseEvent& operator=(const PulseEvent&) = delete;

  void pulse();
  // True when a pulse came, false after timeoutMs (-1: no limit).
  bool wait(int timeoutMs);

 private:
  std::mutex mutex;
  std::condition_variable condition;
  std::uint64_t generation = 0;
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
// Loads the module file at `path` (a name without a directory goes to the
// system's own search). On failure the system's reason is copied to
// `reason` (when given).
ModuleHandle moduleLoad(const char* path, char* reason = nullptr, std::size_t reasonSize = 0);
bool moduleFree(ModuleHandle module);
// The file of the loaded module that `address` lies in; false when unknown.
bool moduleFileOf(const void* address, char* out, std::size_t size);
// Calls visit(name, user) with the name of every entry of a directory that
// is a file or a link to one; false when the directory cannot be read.
bool listDirectory(const char* dir, void (*visit)(const char* name, void* user), void* user);
// Whether a module file name (no directory) is the module `wanted`,
// ignoring case: "sxFoo.dll" is also "libsxFoo.so", "sxFoo.so" and
// "libsxFoo.so.1.2" here.
bool moduleFileMatches(const char* file, const char* wanted);
// Whether two module names (no directories) name the same module:
// "SXFOO.DLL" and "LIBSXFOO.SO" do here.
bool moduleNamesMatch(const char* a, const char* b);
// Whether a file name has the pattern of a loader module: "sx*Loader.dll",
// which is "libsx*Loader.so" or "sx*Loader.so" here (ignoring case).
bool isLoaderModuleFile(const char* file);

// Full path of the running executable; false when unknown.
bool executablePath(char* out, std::size_t size);
// Current working directory.
bool currentDirectory(char* out, std::size_t size);
// Directory of the file this library was loaded from (the executable's when
// the library is linked in statically), absolute, without a trailing
// separator. False when unknown or longer than size - 1.
bool libraryDirectory(char* out, std::size_t size);

// --- files: binary, unbuffered, with seeking
enum class FileMode { readOnly, readWrite, create };
// A descriptor, or -1. create makes or truncates the file for reading and
// writing, readable and writable by its owner only.
int fileOpen(const char* path, FileMode mode);
void fileClose(int fd);
// Reads or writes up to n bytes, retrying short transfers; the result is
// the number of bytes transferred (less than n at the end of the file or on
// an error).
std::size_t fileRead(int fd, void* buffer, std::size_t n);
std::size_t fileWrite(int fd, const void* buffer, std::size_t n);
bool fileSeek(int fd, std::int64_t offset);
// Size of the open file in bytes; -1 when unknown.
std::int64_t fileSize(int fd);
// Creates a new empty file with a unique name in the directory of `path`
// (for a replacement that is renamed over `path` when complete) and writes
// its name to out. False when no file could be made.
bool fileMakeTemporary(const char* path, char* out, std::size_t size);
// Replaces `to` by `from` in one step.
bool fileRename(const char* from, const char* to);
bool fileRemove(const char* path);

// --- console
void makeStdoutUnbuffered();

}  // namespace sxPlatform
