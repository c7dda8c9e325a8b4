#pragma once

#include <cstdint>

#include <sx/sxExport.h>

class sxGroup;

/// The parents of a group, in one pointer: null for a root, the parent itself
/// for the usual single parent, or (tagged in the low bit) a heap block
/// holding several. Most nodes of a scene graph have one parent, so the list
/// costs no allocation of its own until a node becomes a shared instance.
/// Order is kept by ordered removals; searches run from the last entry.
class SX_API sxParentList {
 public:
  sxParentList() = default;
  ~sxParentList() { clear(); }
  sxParentList(const sxParentList&) = delete;
  sxParentList& operator=(const sxParentList&) = delete;

  int getNum() const {
    if (!word) return 0;
    return isBlock() ? block()->num : 1;
  }
  /// Precondition: 0 <= i < getNum().
  sxGroup* get(int i) const { return isBlock() ? block()->items[i] : single(); }
  /// Index of the last occurrence of p, or -1.
  int getIndex(const sxGroup* p) const;
  bool contains(const sxGroup* p) const { return getIndex(p) >= 0; }
  /// Appends p; false (nothing changed) when memory is exhausted.
  bool add(sxGroup* p);
  /// Removes the last occurrence of p, later entries moving down by one.
  void removeOrdered(const sxGroup* p);
  /// Removes the last occurrence of p, the last entry moving into its slot.
  void removeUnordered(const sxGroup* p);
  /// Copies the entries into out (which has room for getNum()).
  void copyTo(sxGroup** out) const;
  void clear();

 private:
  struct Block {
    std::int32_t num;
    std::int32_t capacity;
    sxGroup* items[1];
  };
  static constexpr std::uintptr_t blockTag = 1;

  bool isBlock() const { return (word & blockTag) != 0; }
  sxGroup* single() const { return reinterpret_cast<sxGroup*>(word); }
  Block* block() const { return reinterpret_cast<Block*>(word & ~blockTag); }
  void removeAt(int i, bool ordered);

  std::uintptr_t word = 0;
};
