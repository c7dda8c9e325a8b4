#include <sx/kernel/sxKernel.h>
#include <sx/nodes/sxGroup.h>
#include <sx/nodes/sxGroupType.h>

#include "nodes/sxGroupEdits.h"
#include "platform/sxDeepStack.h"
#include "platform/sxPlatform.h"

SX_DEFINE_CLASS(sxGroup, sxGroupType)

namespace {
// Set by a dying group just before it tells a child that it is gone, read
// (and cleared) by the group version of removedFrom. A dying group is a
// root that no scene can be above, and its own flags no longer matter, so
// the child skips updating them and telling its sub-graph: taking a chain
// or a tree down then costs one notification per node, not one per node
// and ancestor.
SX_TLS_FAST constinit thread_local bool formerParentDying = false;
}  // namespace

sxGroup::sxGroup(const sxGroup& source) : sxBase(source) {}

sxGroup::~sxGroup() {
  // A group released while still linked (an unbalanced unRef) must not
  // leave its parents pointing at freed memory.
  while (parents.getNum() > 0) {
    sxGroup* p = parents.get(parents.getNum() - 1);
    const int at = p->children.getIndex(this);
    if (at >= 0) {
      p->children.removeOrderedIndex(at);
      p->childUnlinked(at);
    }
    parents.removeOrdered(p);
  }
  sxiGroupEdits::prefetchChildren(this);
  for (int i = children.getNum() - 1; i >= 0; --i) {
    sxGroup* child = children.removeLast();
    child->parents.removeOrdered(this);
    formerParentDying = true;
    child->removedFrom(this);
    formerParentDying = false;
    child->unRef();
  }
}

// --- queries

int sxGroup::getChildIndex(const sxGroup* child) const {
  return children.getIndex(const_cast<sxGroup*>(child));
}

bool sxGroup::hasChild(const sxGroup* child) const {
  return child && sxiGroupEdits::isLinked(this, child);
}

bool sxGroup::hasDescendant(sxGroup* node) const {
  return node && node != this && sxiGroupEdits::isAncestor(this, node);
}

bool sxGroup::hasDescendantOfType(sxType* type) const {
  return sxiGroupEdits::depthFirst(this, false, [type](sxGroup* g) { return g->isOfType(type); });
}

sxGroup* sxGroup::findGroup(const char* name, const sxGroup* start) {
  bool found = false;
  return findGroupRec(name, start, found);
}

sxGroup* sxGroup::findGroupRec(const char* name, const sxGroup* start, bool& found) {
  if (!name) return nullptr;
  return sxiGroupEdits::depthFirst(this, true, [&](sxGroup* g) {
    if (!g->getName() || sxStrcmp(name, g->getName(), true) != 0) return false;
    if (!start || found) return true;
    found = true;
    return false;
  });
}

// --- flags and notifications

void sxGroup::setNodeFlags(NODE_FLAGS flags) {
  nodeFlags = std::uint16_t(flags);
}

bool sxGroup::areChildrenOrdered() const {
  return false;
}

void sxGroup::childLinked(int) {}
void sxGroup::childUnlinked(int) {}

void sxGroup::addedTo(sxGroup* parent) {
  unsigned bits = (travFlags & TRAV_CONTENT_MASK) | TRAV_FLAG_UPDATE | TRAV_FLAG_ADDED;
  if (parents.getNum() > 1) bits |= TRAV_FLAG_SHARED;
  // When this node's flags do not change, its other parents have them
  // already: only the new one needs them. A shared instance with thousands
  // of parents then gains one more at no cost per parent.
  if (parent && (travFlags | bits) == travFlags) {
    if ((parent->travFlags & travFlags) != travFlags) parent->dirtyUp(travFlags);
    return;
  }
  dirtyUp(bits);
}

void sxGroup::dirtyUp(unsigned bits) {
  travFlags = std::uint16_t(travFlags | bits);
  const unsigned flags = travFlags;
  for (int i = 0; i < parents.getNum(); ++i) {
    sxGroup* p = parents.get(i);
    if ((p->travFlags & flags) != flags) sxiDeepCall([&] { p->dirtyUp(flags); });
  }
}

void sxGroup::cleanUp(unsigned bits) {
  if (!bits) return;
  unsigned carried = 0;
  for (int i = 0, n = children.getNum(); i < n && (bits & ~carried); ++i)
    carried |= children[i]->travFlags;
  const unsigned clear = bits & ~carried;
  if (!clear) return;
  travFlags = std::uint16_t(travFlags & ~clear);
  for (int i = 0; i < parents.getNum(); ++i) {
    sxGroup* p = parents.get(i);
    sxiDeepCall([&] { p->cleanUp(clear); });
  }
}

void sxGroup::removedFrom(sxGroup* parent) {
  const bool parentDying = formerParentDying;
  formerParentDying = false;
  if (parentDying) {
    addTravFlags(TRAV_FLAG_UPDATE);
    return;
  }
  parent->cleanUp(travFlags & TRAV_CONTENT_MASK);
  parent->dirtyUp(TRAV_FLAG_UPDATE | TRAV_FLAG_REMOVED);
  addTravFlags(TRAV_FLAG_UPDATE);
  sxiGroupEdits::withdrawFromScenes(parent, this);
  for (int i = 0; i < children.getNum(); ++i) {
    sxGroup* child = children[i];
    sxiDeepCall([&] { child->removedFrom(parent); });
  }
}
