#pragma once

#include <cstdint>
#include <cstring>

#include <sx/object/sxMemory.h>
#include <sx/sxExport.h>

class sxEntry;

// A sequencer that steps an index through N items, each lasting a time in
// seconds or a number of update calls (frames); forward or backward, once,
// looping or swinging back and forth. Automatic switches own one.
class SX_API sxIterator {
 public:
  // Fixed underlying types: a file may hold any byte in these fields.
  enum MODE : int { TIME = 0, FRAMES = 1 };
  enum DIRECTION : int { FORWARD = 0, BACKWARD = 1 };
  enum CYCLE : int { ONCE = 0, LOOP = 1, SWING = 2 };

  sxIterator() = default;

  void pause() { paused = 1; }
  // Clears the pause; in time mode the clock restarts from now.
  void resume();
  bool isPaused() const { return paused != 0; }
  void setMode(MODE m);
  MODE getMode() const { return MODE(mode); }
  void setDirection(DIRECTION d) { direction = std::uint8_t(d); }
  DIRECTION getDirection() const { return direction ? BACKWARD : FORWARD; }
  void setCycle(CYCLE c) { cycle = std::uint8_t(c); }
  CYCLE getCycle() const { return CYCLE(cycle); }
  // Sets the number of items and refills the per-item times (or frame
  // counts) of the current mode from the totals or the per-item default.
  void setNumItems(int n);
  int getNumItems() const { return numItems; }
  void setSelectedItem(int item) { current = item; }
  int getSelectedItem() const { return current; }
  // Back to "not started".
  void reset();
  // The item to show now, or -1 when a once-sequence has ended.
  int update();

  // The whole sequence's time, shared equally by the items.
  void setTime(float seconds);
  float getTime() const { return times.total; }
  // The time of every item.
  void setItemTime(float seconds);
  void setItemTime(int item, float seconds);
  float getItemTime(int item) const;  // 0 beyond the per-item array
  void setFrameCount(int frames);
  int getFrameCount() const { return frames.total; }
  void setItemFrameCount(int frames);
  void setItemFrameCount(int item, int frames);
  int getItemFrameCount(int item) const;  // 0 beyond the per-item array

  void write(sxEntry* entry) const;
  void read(sxEntry* entry);

 private:
  // A per-item array that only grows; copies own their storage.
  template <class T>
  class Array {
   public:
    Array() = default;
    Array(const Array& o) { *this = o; }
    Array& operator=(const Array& o) {
      if (this != &o && grow(o.length) && o.length)
        std::memcpy(data, o.data, std::size_t(o.length) * sizeof(T));
      return *this;
    }
    ~Array() { sxMemory::free(data); }
    // New elements are 0. False when memory is exhausted.
    bool grow(int n) {
      if (n <= length) return true;
      T* fresh = static_cast<T*>(sxMemory::realloc(data, std::size_t(n) * sizeof(T)));
      if (!fresh) return false;
      std::memset(static_cast<void*>(fresh + length), 0, std::size_t(n - length) * sizeof(T));
      data = fresh;
      length = n;
      return true;
    }
    T get(int i) const { return i >= 0 && i < length ? data[i] : T(0); }
    void set(int i, T v) {
      if (i >= 0 && i < length) data[i] = v;
    }
    // Sets the first n elements (those that exist).
    void fill(int n, T v) {
      for (int i = 0; i < n && i < length; ++i) data[i] = v;
    }
    int size() const { return length; }
    const T* values() const { return data; }

   private:
    T* data = nullptr;
    std::int32_t length = 0;
  };

  // How long the items last, in one unit (seconds or frames): a total
  // shared by the items, a default per item, and the per-item values.
  template <class T>
  struct Durations {
    T total;
    T item;
    Array<T> perItem;
    // Refills the first n per-item values from the total or the default.
    void refill(int n) {
      if (n < 1) return;
      perItem.grow(n);
      perItem.fill(n, total > T(0) ? total / T(n) : item);
    }
    void setTotal(T t, int n) {
      total = t;
      item = T(0);
      if (n > 0) perItem.fill(n, t / T(n));
    }
    void setItem(T t, int n) {
      item = t;
      total = T(0);
      perItem.fill(n, t);
    }
    void setOne(int i, T t) {
      if (i >= 0 && perItem.grow(i + 1)) perItem.set(i, t);
    }
  };

  bool advance();  // false when the sequence ends
  // One kind of durations in a file record.
  template <class T>
  static void writeDurations(sxEntry* entry, const Durations<T>& d);
  template <class T>
  static void readDurations(sxEntry* entry, Durations<T>& d);

  std::uint8_t paused = 0;
  std::uint8_t mode = TIME;
  std::uint8_t direction = FORWARD;
  std::uint8_t cycle = LOOP;
  std::int32_t numItems = 0;
  std::int32_t current = -1;
  std::int32_t step = 1;
  Durations<float> times{0.0f, 1.0f / 30.0f, {}};
  float elapsed = 0.0f;
  float lastTime = 0.0f;
  Durations<std::int32_t> frames{0, 1, {}};
  std::int32_t frameCounter = 0;
};
