#pragma once

#include <atomic>
#include <cstdint>

#include <sx/sxExport.h>

/// The lock of one type record's instance list (library use).
///
/// Listing or unlisting an object takes it for a few instructions; nothing
/// else is done while it is taken, so it spins briefly instead of sleeping,
/// and an uncontended change costs one atomic exchange and one store.
/// sxType::lockInstanceList() holds it across calls, re-entrantly; a
/// thread that holds it that way lists and unlists its own objects
/// without taking it again.
class SX_API sxiInstanceLock {
 public:
  /// Takes the lock for one change of the list. False when the calling
  /// thread holds it across calls already: it is then not to be left.
  bool enter() {
    std::uint32_t expected = 0;
    if (word.compare_exchange_strong(expected, 1, std::memory_order_acquire)) return true;
    return enterContended();
  }
  void leave() { word.store(0, std::memory_order_release); }

  /// Holds the lock across calls; re-entrant for the holding thread.
  void hold();
  /// Gives back one hold; ignored when the calling thread holds none.
  void unhold();
  /// How many holds the calling thread has on the lock (0 for none).
  unsigned holdsHere() const;

 private:
  bool enterContended();
  void acquire();

  std::atomic<std::uint32_t> word{0};
  // The thread holding the lock across calls (0: none) and its holds,
  // which only that thread reads or changes.
  std::atomic<std::uintptr_t> holder{0};
  unsigned depth = 0;
};
