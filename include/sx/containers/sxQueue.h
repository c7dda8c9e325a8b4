#pragma once

#include <atomic>
#include <cstdint>

#include <sx/object/sxBase.h>
#include <sx/object/sxRef.h>

// A ring buffer of fixed-size records guarded by its own lock: the one
// container that threads may share. Records are copied in and out by value.
class SX_API sxQueue : public sxBase {
 public:
  SX_CLASS(sxQueue, sxBase)

  // What a put does when the queue is full.
  enum MODE {
    BOUNDED = 0,    // fails: at most capacity - 1 records are held
    OVERWRITE = 1,  // drops the oldest once capacity records are held
    GROWING = 2     // doubles the buffer when capacity - 1 records are held
  };

  // Element size and capacity are raised to at least 1. Mode OVERWRITE.
  explicit sxQueue(int elementSize = int(sizeof(void*)), int capacity = 32);
  // Element size, capacity and mode of the source, holding its records.
  sxQueue(const sxQueue& source);
  sxQueue& operator=(const sxQueue& source);
  ~sxQueue() override;

  // Copies the oldest record to out and removes it; false when empty or out
  // is null.
  virtual bool get(void* out);
  virtual void setMode(MODE mode);
  // Copies elementSize bytes from element; false for null or a full
  // bounded queue.
  virtual bool put(const void* element);
  // As get, without removing the record.
  virtual bool sample(void* out) const;
  virtual void reset();

  int getCount() const { return count.load(std::memory_order_relaxed); }
  int getCapacity() const { return capacity; }
  int getElementSize() const { return elementSize; }
  MODE getMode() const { return mode; }

 private:
  void allocate(int elementSize, int capacity);
  void copyRecordsFrom(const sxQueue& source);
  bool grow();
  char* advance(char* p) const { return p == lastSlot ? buffer : p + elementSize; }

  char* buffer;
  char* writePtr;
  char* readPtr;
  char* lastSlot;
  std::int32_t capacity;
  std::int32_t elementSize;
  std::atomic<std::int32_t> count;
  // The queue's own lock (a library lock object), null if none could be made.
  sxRef<sxBase> lock;
  MODE mode;
};
