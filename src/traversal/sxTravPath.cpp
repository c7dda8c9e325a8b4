#include <sx/traversal/sxTravPath.h>
#include <sx/traversal/sxTravStack.h>

namespace {
// The id test rejects almost every unequal pair; the entries are compared
// from the deepest, where paths that share a root differ first.
template <class A, class B>
bool samePath(const A& a, const B& b, int depthA, int depthB) {
  if (a.getID() != b.getID() || depthA != depthB) return false;
  for (int i = depthA - 1; i >= 0; --i)
    if (a.get(i) != b.get(i)) return false;
  return true;
}
}  // namespace

bool sxTravStack::operator==(const sxTravStack& other) const {
  return samePath(*this, other, getDepth(), other.getDepth());
}

bool sxTravStack::operator==(const sxTravPath& path) const {
  return samePath(*this, path, getDepth(), path.getLength());
}

sxTravPath& sxTravPath::operator=(const sxTravStack& stack) {
  id = stack.getID();
  length = stack.getDepth();
  groups.resize(std::size_t(length));
  for (int i = 0; i < length; ++i) groups[std::size_t(i)] = stack.get(i);
  return *this;
}

bool sxTravPath::operator==(const sxTravPath& other) const {
  return samePath(*this, other, length, other.length);
}

bool sxTravPath::operator==(const sxTravStack& stack) const {
  return stack == *this;
}

bool sxTravPath::contains(const sxGroup* group) const {
  for (int i = 0; i < length; ++i)
    if (groups[std::size_t(i)] == group) return true;
  return false;
}
