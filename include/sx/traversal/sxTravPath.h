#pragma once

#include <cstdint>
#include <vector>

#include <sx/sxExport.h>

class sxGroup;
class sxTravStack;

/// A stored copy of a traversal path (sxTravStack), to be compared with the
/// live path later or inspected after a traversal stopped.
class SX_API sxTravPath {
 public:
  sxTravPath() = default;
  explicit sxTravPath(const sxTravStack& stack) { *this = stack; }
  sxTravPath(const sxTravPath&) = default;
  sxTravPath& operator=(const sxTravPath&) = default;
  /// Copies the id and the groups of the stack.
  sxTravPath& operator=(const sxTravStack& stack);

  /// Equal ids, equal lengths and equal groups (compared from the deepest
  /// up, since the id does not depend on the order).
  bool operator==(const sxTravPath& other) const;
  bool operator==(const sxTravStack& stack) const;
  bool contains(const sxGroup* group) const;
  /// Group i from the root; null outside 0..getLength()-1.
  const sxGroup* get(int i) const { return i >= 0 && i < length ? groups[i] : nullptr; }
  std::uintptr_t getID() const { return id; }
  int getLength() const { return length; }

 private:
  std::uintptr_t id = 0;
  int length = 0;
  std::vector<const sxGroup*> groups;
};
