#pragma once

#include <cstdint>

#include <sx/containers/sxStack.h>
#include <sx/sxExport.h>

class sxGroup;
class sxTravPath;

/// The path of groups from the root of a traversal down to the current
/// group, with a path identifier kept up to date at every push and pop: the
/// XOR of the addresses of all groups on it (0 when empty). Asking whether
/// the path is the one seen before thus costs one comparison in the common
/// case.
///
/// Like every sxStack it holds at most 32767 entries minus one: a push
/// beyond that is refused (false) and changes nothing.
class SX_API sxTravStack {
 public:
  explicit sxTravStack(int capacity = 8) : stack(capacity) {}

  /// Grows as needed. False when full or out of memory (nothing pushed).
  bool push(const sxGroup* group) {
    if (!stack.push(const_cast<sxGroup*>(group))) return false;
    id ^= std::uintptr_t(group);
    return true;
  }
  /// The popped group; null on an empty stack.
  const sxGroup* pop() {
    const sxGroup* g = static_cast<const sxGroup*>(stack.pop());
    id ^= std::uintptr_t(g);
    return g;
  }
  /// Empties the stack, keeping its storage.
  void reset() {
    stack.reset();
    id = 0;
  }
  std::uintptr_t getID() const { return id; }
  /// The 16-bit change counter that every push, pop and reset advances.
  short getChangeID() const { return stack.getID(); }
  /// The index of the top entry; -1 when empty.
  int getTopIndex() const { return stack.getTopIndex(); }
  int getDepth() const { return stack.getNum(); }
  const sxGroup* getTop() const { return static_cast<const sxGroup*>(stack.getTop()); }
  /// Entry i from the root; null outside 0..getDepth()-1.
  const sxGroup* get(int i) const {
    return i >= 0 && i < stack.getNum() ? static_cast<const sxGroup*>(stack.get(i)) : nullptr;
  }

  /// Equal ids, equal depths and equal entries.
  bool operator==(const sxTravStack& other) const;
  bool operator==(const sxTravPath& path) const;

 private:
  sxStack stack;
  std::uintptr_t id = 0;
};
