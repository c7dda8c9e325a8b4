#pragma once

#include <sx/object/sxMemory.h>

#include <cstddef>
#include <cstdint>
#include <vector>

class sxEntry;

// The entries of a file by handle: an open-addressing table with linear
// probing over one flat array. Writing a scene looks a handle up for every
// reference and adds one for every object, so the table keeps each of them
// to about one cache miss, where node-based maps take several.
class sxiHandleIndex {
 public:
  sxEntry* find(const void* handle) const {
    if (slots.empty()) return nullptr;
    for (std::size_t i = home(handle);; i = next(i)) {
      if (slots[i].handle == handle) return slots[i].entry;
      if (!slots[i].handle) return nullptr;
    }
  }

  // Adds handle -> entry; false (nothing changed) when the handle is listed.
  bool add(const void* handle, sxEntry* entry) {
    if ((used + 1) * 4 > slots.size() * 3) grow();
    for (std::size_t i = home(handle);; i = next(i)) {
      if (slots[i].handle == handle) return false;
      if (!slots[i].handle) {
        slots[i] = {handle, entry};
        ++used;
        return true;
      }
    }
  }

  // Removes the handle when it is listed for this entry. The following
  // slots of its probe run move back, so that no marker of removal is left.
  void remove(const void* handle, const sxEntry* entry) {
    if (slots.empty()) return;
    std::size_t i = home(handle);
    while (slots[i].handle != handle) {
      if (!slots[i].handle) return;
      i = next(i);
    }
    if (slots[i].entry != entry) return;
    for (std::size_t j = next(i);; j = next(j)) {
      if (!slots[j].handle) break;
      std::size_t h = home(slots[j].handle);
      // Slot j may move to the hole at i unless its home lies in (i, j].
      bool stays = i <= j ? (i < h && h <= j) : (i < h || h <= j);
      if (stays) continue;
      slots[i] = slots[j];
      i = j;
    }
    slots[i] = {};
    --used;
  }

  void clear() {
    slots.clear();
    slots.shrink_to_fit();
    used = 0;
  }
  void reserve(std::size_t n) {
    while (slots.size() * 3 < n * 4) grow();
  }

 private:
  struct Slot {
    const void* handle = nullptr;
    sxEntry* entry = nullptr;
  };

  std::size_t home(const void* handle) const {
    // Objects written one after another mostly lie one after another in
    // memory: the handles of four kilobytes keep their order in a run of
    // 256 neighbouring slots, which keeps the table's cache lines warm. The
    // runs themselves are scattered (Fibonacci hashing), because
    // objects of different sizes come from different runs of memory, whose
    // handles would otherwise share the slots of one stretch of the table
    // and pile up in it.
    const std::uint64_t a = std::uint64_t(reinterpret_cast<std::uintptr_t>(handle)) >> 4;
    const std::uint64_t run = ((a >> 8) * 0x9E3779B97F4A7C15ull) >> 32;
    return std::size_t((run << 8) | (a & 255)) & (slots.size() - 1);
  }
  std::size_t next(std::size_t i) const { return (i + 1) & (slots.size() - 1); }

  void grow() {
    std::vector<Slot, sxAllocator<Slot>> old;
    old.swap(slots);
    slots.resize(old.empty() ? 64 : old.size() * 2);
    used = 0;
    for (const Slot& s : old)
      if (s.handle) add(s.handle, s.entry);
  }

  std::vector<Slot, sxAllocator<Slot>> slots;
  std::size_t used = 0;
};
