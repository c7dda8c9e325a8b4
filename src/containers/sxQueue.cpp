#include <sx/containers/sxQueue.h>

#include <cstring>

#include "kernel/sxKernelLocks.h"

SX_DEFINE_CLASS(sxQueue)


void sxQueue::allocate(int size, int cap) {
  elementSize = size < 1 ? 1 : size;
  capacity = cap < 1 ? 1 : cap;
  buffer = static_cast<char*>(sxMemory::malloc(std::size_t(capacity) * std::size_t(elementSize)));
  if (!buffer) capacity = 1;  // a queue without storage refuses every put
  writePtr = readPtr = buffer;
  lastSlot = buffer ? buffer + std::size_t(capacity - 1) * std::size_t(elementSize) : nullptr;
  count.store(0, std::memory_order_relaxed);
}

sxQueue::sxQueue(int size, int cap) : lock(sxiHooks::newLock()), mode(OVERWRITE) {
  allocate(size, cap);
}

sxQueue::sxQueue(const sxQueue& source) : sxBase(source), lock(sxiHooks::newLock()), mode(source.mode) {
  allocate(source.elementSize, source.capacity);
  copyRecordsFrom(source);
}

sxQueue& sxQueue::operator=(const sxQueue& source) {
  if (this == &source) return *this;
  sxBase::operator=(source);
  sxiKernel::LockGuard guard(lock.get());
  sxMemory::free(buffer);
  allocate(source.elementSize, source.capacity);
  mode = source.mode;
  copyRecordsFrom(source);
  return *this;
}

sxQueue::~sxQueue() {
  sxMemory::free(buffer);
}

void sxQueue::copyRecordsFrom(const sxQueue& source) {
  if (!buffer) return;
  sxiKernel::LockGuard guard(source.lock.get());
  const char* p = source.readPtr;
  int n = source.getCount();
  for (int i = 0; i < n; ++i) {
    std::memcpy(writePtr, p, std::size_t(elementSize));
    writePtr = advance(writePtr);
    p = p == source.lastSlot ? source.buffer : p + elementSize;
  }
  count.store(n, std::memory_order_relaxed);
}

bool sxQueue::grow() {
  std::size_t oldBytes = std::size_t(capacity) * std::size_t(elementSize);
  std::size_t readOffset = std::size_t(readPtr - buffer);
  std::size_t writeOffset = std::size_t(writePtr - buffer);
  char* fresh = static_cast<char*>(sxMemory::realloc(buffer, oldBytes * 2));
  if (!fresh) return false;
  buffer = fresh;
  capacity *= 2;
  lastSlot = buffer + std::size_t(capacity - 1) * std::size_t(elementSize);
  readPtr = buffer + readOffset;
  writePtr = buffer + writeOffset;
  // Contents that wrap keep their order: the older part moves to the end.
  if (writeOffset <= readOffset && count.load(std::memory_order_relaxed) > 0) {
    std::size_t tail = oldBytes - readOffset;
    char* newStart = buffer + 2 * oldBytes - tail;
    std::memmove(newStart, readPtr, tail);
    readPtr = newStart;
  }
  return true;
}

bool sxQueue::put(const void* element) {
  if (!element) return false;
  sxiKernel::LockGuard guard(lock.get());
  if (!buffer) return false;
  int n = count.load(std::memory_order_relaxed);
  if (mode == BOUNDED && n >= capacity - 1) return false;
  if (mode == GROWING && n >= capacity - 1 && !grow()) return false;
  std::memcpy(writePtr, element, std::size_t(elementSize));
  writePtr = advance(writePtr);
  ++n;
  if (mode == OVERWRITE && n >= capacity) {
    n = capacity;
    readPtr = writePtr;
  }
  count.store(n, std::memory_order_relaxed);
  return true;
}

bool sxQueue::get(void* out) {
  if (!out) return false;
  // A reader polling an empty queue does not contend with the writers.
  if (count.load(std::memory_order_relaxed) < 1) return false;
  sxiKernel::LockGuard guard(lock.get());
  int n = count.load(std::memory_order_relaxed);
  if (n < 1) return false;
  std::memcpy(out, readPtr, std::size_t(elementSize));
  readPtr = advance(readPtr);
  count.store(n - 1, std::memory_order_relaxed);
  return true;
}

bool sxQueue::sample(void* out) const {
  if (!out) return false;
  sxiKernel::LockGuard guard(lock.get());
  if (count.load(std::memory_order_relaxed) < 1) return false;
  std::memcpy(out, readPtr, std::size_t(elementSize));
  return true;
}

void sxQueue::reset() {
  sxiKernel::LockGuard guard(lock.get());
  writePtr = readPtr = buffer;
  count.store(0, std::memory_order_relaxed);
}

void sxQueue::setMode(MODE m) {
  sxiKernel::LockGuard guard(lock.get());
  mode = m;
}
