#pragma once

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include <sx/sxExport.h>

class sxArena;

// A growable array of pointer-sized slots, three words, small enough to sit
// inside every node. The element count (22 bits) and the owning arena's
// number (10 bits, 0 for the general heap) share one word, which limits a
// list to maxCount elements. Elements are compared by identity. Searches run
// from the last element towards the first. Unchecked forms trust their
// index or element; the check... forms test first and report failure.
class SX_API sxList {
 public:
  static constexpr int maxCount = 0x3FFFFF;

  constexpr sxList() noexcept = default;
  explicit sxList(int n, sxArena* arena = nullptr);
  // A copy is a heap list with the same elements.
  sxList(const sxList& other);
  ~sxList();

  int getNum() const { return int(countArena & countMask); }
  void reset() { countArena &= ~countMask; }
  bool isArenaList() const { return countArena > countMask; }
  // The arena that owns the storage; null for heap lists and for an arena
  // that no longer exists.
  sxArena* getArena() const;
  bool indexInRange(int i) const { return i >= 0 && i < getNum(); }
  int getCapacity() const { return capacity; }

  void*& operator[](int i) { return data[i]; }
  void* const& operator[](int i) const { return data[i]; }
  void getValue(int i, void* out) const { *static_cast<void**>(out) = data[i]; }

  // Appends and returns the new index; -1 (nothing added) when the list
  // holds maxCount elements or memory is exhausted.
  int add(void* p);
  bool addUnique(void* p);
  // Shifts i..count-1 up and stores p at i; count becomes max(count+1, i+1).
  // Slots between the old end and i hold null. False when i < 0 or the list
  // would outgrow maxCount.
  bool insert(int i, void* p);
  // Stores p at i, growing as needed; count becomes max(count, i+1), and
  // slots between the old end and i hold null.
  bool set(int i, void* p);
  bool contains(const void* p) const { return getIndex(p) >= 0; }
  int getIndex(const void* p) const;
  // Replace the highest-indexed occurrence of o by n.
  void replace(void* o, void* n);
  bool checkReplace(void* o, void* n);
  // Unordered removal: the last element moves into the hole.
  void remove(void* p);
  bool checkRemove(void* p);
  void removeIndex(int i);
  bool checkRemoveIndex(int i);
  // Ordered removal: later elements shift down by one.
  void removeOrdered(void* p);
  bool checkRemoveOrdered(void* p);
  void removeOrderedIndex(int i);
  bool checkRemoveOrderedIndex(int i);
  // Precondition: the list is not empty.
  void* removeLast();
  // Null, and no change, when the list is empty.
  void* checkRemoveLast();
  // Sets the capacity to exactly n (arena lists only grow); n < 1 frees heap
  // storage. A count above n is cut to n.
  void setSize(int n);
  // Copies count and elements; keeps this list's arena and never shrinks it.
  sxList& operator=(const sxList& other);
  bool operator==(const sxList& other) const;
  bool operator!=(const sxList& other) const { return !(*this == other); }

 protected:
  static constexpr std::uint32_t countMask = 0x3FFFFF;
  void setCount(int n) { countArena = (countArena & ~countMask) | std::uint32_t(n); }
  bool increasePhysicalSize(int n);
  void** allocSlots(int n);
  // Nulls the slots from `from` up to (not including) `to`: a slot that an
  // insert or set past the end skips never shows an old or random pointer.
  void clearGap(int from, int to) {
    if (from < to) std::fill(data + from, data + to, nullptr);
  }

  void** data = nullptr;
  std::uint32_t countArena = 0;
  std::int32_t capacity = 0;
};

// Converts pointer-sized values to and from list slots.
template <class T>
struct sxListSlot {
  static_assert(sizeof(T) <= sizeof(void*), "list elements must fit a pointer slot");
  static void* to(T v) {
    if constexpr (std::is_pointer_v<T> && std::is_function_v<std::remove_pointer_t<T>>)
      return reinterpret_cast<void*>(v);
    else if constexpr (std::is_pointer_v<T>)
      return const_cast<void*>(static_cast<const void*>(v));
    else
      return reinterpret_cast<void*>(static_cast<std::intptr_t>(v));
  }
  static T from(void* p) {
    if constexpr (std::is_pointer_v<T> && std::is_function_v<std::remove_pointer_t<T>>)
      return reinterpret_cast<T>(p);
    else if constexpr (std::is_pointer_v<T>)
      return static_cast<T>(p);
    else
      return static_cast<T>(reinterpret_cast<std::intptr_t>(p));
  }
};

// Typed view of sxList: the same layout and operations with T in place of
// void*. T is a pointer, function pointer or integer of at most pointer size.
template <class T>
class sxTList : public sxList {
  using S = sxListSlot<T>;

 public:
  constexpr sxTList() noexcept = default;
  explicit sxTList(int n, sxArena* arena = nullptr) : sxList(n, arena) {}

  T operator[](int i) const { return S::from(data[i]); }
  // Writable slot access for pointer element types.
  void*& slot(int i) { return data[i]; }
  T get(int i) const { return S::from(data[i]); }
  int add(T p) { return sxList::add(S::to(p)); }
  bool addUnique(T p) { return sxList::addUnique(S::to(p)); }
  bool insert(int i, T p) { return sxList::insert(i, S::to(p)); }
  bool set(int i, T p) { return sxList::set(i, S::to(p)); }
  bool contains(T p) const { return sxList::getIndex(S::to(p)) >= 0; }
  int getIndex(T p) const { return sxList::getIndex(S::to(p)); }
  void replace(T o, T n) { sxList::replace(S::to(o), S::to(n)); }
  bool checkReplace(T o, T n) { return sxList::checkReplace(S::to(o), S::to(n)); }
  void remove(T p) { sxList::remove(S::to(p)); }
  bool checkRemove(T p) { return sxList::checkRemove(S::to(p)); }
  void removeOrdered(T p) { sxList::removeOrdered(S::to(p)); }
  bool checkRemoveOrdered(T p) { return sxList::checkRemoveOrdered(S::to(p)); }
  T removeLast() { return S::from(sxList::removeLast()); }
  T checkRemoveLast() { return S::from(sxList::checkRemoveLast()); }

  // Range-for support; yields elements by value.
  class const_iterator {
   public:
    explicit const_iterator(void* const* p) : p(p) {}
    T operator*() const { return S::from(*p); }
    const_iterator& operator++() {
      ++p;
      return *this;
    }
    bool operator!=(const const_iterator& o) const { return p != o.p; }

   private:
    void* const* p;
  };
  const_iterator begin() const { return const_iterator(data); }
  const_iterator end() const { return const_iterator(data + getNum()); }
};
