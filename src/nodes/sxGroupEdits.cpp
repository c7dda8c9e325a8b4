#include <sx/nodes/sxGroup.h>
#include <sx/object/sxRef.h>
#include <sx/viewing/sxScene.h>

#include <algorithm>
#include <cstddef>

#include "nodes/sxGroupEdits.h"

// --- snapshots

sxiGroupSnapshot::sxiGroupSnapshot(const sxParentList& parents) : items(local), count(0) {
  if (reserve(parents.getNum())) parents.copyTo(items);
}

sxiGroupSnapshot::sxiGroupSnapshot(const sxTList<sxGroup*>& children) : items(local), count(0) {
  if (reserve(children.getNum()))
    for (int i = 0; i < count; ++i) items[i] = children[i];
}

sxiGroupSnapshot::~sxiGroupSnapshot() {
  if (items != local) sxMemory::free(items);
}

bool sxiGroupSnapshot::reserve(int n) {
  if (n > int(std::size(local))) {
    items = static_cast<sxGroup**>(sxMemory::malloc(sizeof(sxGroup*) * std::size_t(n)));
    if (!items) return false;
  }
  count = n;
  return true;
}

// --- the shared steps

void sxiGroupEdits::addedToWalk(sxGroup* node, sxGroup* parent) {
  struct Frame {
    sxGroup* node;
    sxGroup* parent;
    int next;  // the next child to walk, counting down
  };
  // The walk is as deep as the sub-graph: typical graphs fit the frames on
  // the stack, deeper ones continue on the heap.
  constexpr int localFrames = 48;
  Frame local[localFrames];
  std::vector<Frame, sxAllocator<Frame>> deep;
  Frame* frames = local;
  int capacity = localFrames;
  int top = 0;
  frames[0] = {node, parent, node->children.getNum() - 1};
  while (top >= 0) {
    Frame& f = frames[top];
    // An addedTo override may have edited the list meanwhile.
    const int num = f.node->children.getNum();
    if (f.next >= num) f.next = num - 1;
    if (f.next >= 0) {
      prefetchSiblings(f.node, f.next, -1);
      sxGroup* child = f.node->children[f.next--];
      const int numChildren = child->children.getNum();
      // A leaf's walk is its own notification: no frame for it.
      if (numChildren == 0) {
        child->addedTo(f.node);
        continue;
      }
      const Frame next{child, f.node, numChildren - 1};
      prefetchChildren(child);
      if (top + 1 == capacity) {
        deep.resize(std::size_t(capacity) * 2);
        if (frames == local) std::copy(local, local + localFrames, deep.begin());
        frames = deep.data();
        capacity = int(deep.size());
      }
      frames[++top] = next;
      continue;
    }
    sxGroup* n = f.node;
    sxGroup* p = f.parent;
    --top;
    n->addedTo(p);
  }
}

bool sxiGroupEdits::attach(sxGroup* parent, int index, sxGroup* child) {
  child->ref();
  const bool appended = index == parent->children.getNum();
  const bool listed =
      appended ? parent->children.add(child) >= 0 : parent->children.insert(index, child);
  if (!listed || !child->parents.add(parent)) {
    if (listed) parent->children.removeOrdered(child);
    child->unRefNoDelete();
    return false;
  }
  parent->childLinked(index);
  addedToWalk(child, parent);
  return true;
}

bool sxiGroupEdits::isAncestor(const sxGroup* ancestor, const sxGroup* node) {
  if (!ancestor || !node) return false;
  // A node without children is nobody's ancestor: attaching new leaves
  // costs no walk.
  if (ancestor->children.getNum() == 0) return ancestor == node;
  return walkUp(node, [ancestor](const sxGroup* g) { return g == ancestor; });
}

bool sxiGroupEdits::isLinked(const sxGroup* parent, const sxGroup* child) {
  if (child->parents.getNum() <= parent->children.getNum()) return child->parents.contains(parent);
  return parent->children.getIndex(const_cast<sxGroup*>(child)) >= 0;
}

bool sxiGroupEdits::refusesChild(const sxGroup* parent, const sxGroup* child) {
  return !child || child == parent || isLinked(parent, child) || isAncestor(child, parent);
}

bool sxiGroupEdits::refusesInPlaceOf(const sxGroup* old, const sxGroup* newNode,
                                     bool allowDescendant) {
  if (!newNode || newNode == old || isAncestor(newNode, old) ||
      (!allowDescendant && isAncestor(old, newNode)))
    return true;
  for (int i = 0; i < old->parents.getNum(); ++i)
    if (isLinked(old->parents.get(i), newNode)) return true;
  return false;
}

void sxiGroupEdits::takeSlot(sxGroup* parent, sxGroup* old, sxGroup* newNode, bool orderedRemoval) {
  const int slot = parent->children.getIndex(old);
  if (slot < 0 || !newNode->parents.add(parent)) return;
  parent->children.slot(slot) = newNode;
  newNode->ref();
  if (orderedRemoval)
    old->parents.removeOrdered(parent);
  else
    old->parents.removeUnordered(parent);
  old->removedFrom(parent);
  addedToWalk(newNode, parent);
  old->unRef();
}

void sxiGroupEdits::withdrawFromScenes(sxGroup* parent, sxGroup* node) {
  if (sxScene::getNumLive() == 0) return;
  walkUp(parent, [node](const sxGroup* g) {
    // Any scene above, not only a root: a scene below a group may be
    // updated on its own, and then its nodes are on its lists.
    if (g->isOfType(sxScene::getClassType()))
      for (int kind = 0; kind < sxScene::numDirectCallKinds; ++kind)
        const_cast<sxScene*>(static_cast<const sxScene*>(g))
            ->removeDirectCall(sxScene::DIRECT_CALL(kind), node);
    return false;
  });
}

// --- the edits

bool sxGroup::addChild(sxGroup* child) {
  if (sxiGroupEdits::refusesChild(this, child)) return false;
  return sxiGroupEdits::attach(this, children.getNum(), child);
}

bool sxGroup::insertChild(int index, sxGroup* child) {
  if (index < 0 || index > children.getNum() || sxiGroupEdits::refusesChild(this, child))
    return false;
  return sxiGroupEdits::attach(this, index, child);
}

bool sxGroup::removeChild(sxGroup* child) {
  if (!child || child == this || !sxiGroupEdits::isLinked(this, child)) return false;
  const int at = children.getIndex(child);
  children.removeOrderedIndex(at);
  childUnlinked(at);
  child->parents.removeOrdered(this);
  child->removedFrom(this);
  child->unRef();
  return true;
}

bool sxGroup::removeChildren() {
  // A removedFrom override may edit the list meanwhile.
  for (int i = children.getNum() - 1; i >= 0; --i)
    if (i < children.getNum()) removeChild(children[i]);
  return true;
}

bool sxGroup::remove() {
  sxRef<sxGroup> self(this);
  sxiGroupSnapshot before(parents);
  if (!before.valid()) return false;
  if (children.getNum() == 1) {
    sxGroup* only = children[0];
    for (int i = 0; i < before.size(); ++i) {
      // A parent that already has the child keeps it once.
      if (sxiGroupEdits::isLinked(before[i], only))
        before[i]->removeChild(this);
      else
        sxiGroupEdits::takeSlot(before[i], this, only, true);
    }
  } else {
    for (int i = 0; i < before.size(); ++i) before[i]->removeChild(this);
    sxiGroupSnapshot moved(children);
    for (int i = 0; i < before.size(); ++i)
      for (int j = 0; j < moved.size(); ++j) before[i]->addChild(moved[j]);
  }
  removeChildren();
  return true;
}

bool sxGroup::detach() {
  sxiGroupSnapshot before(parents);
  if (!before.valid()) return false;
  for (int i = before.size() - 1; i >= 0; --i) before[i]->removeChild(this);
  return true;
}

bool sxGroup::replace(sxGroup* other) {
  if (sxiGroupEdits::refusesInPlaceOf(this, other)) return false;
  sxRef<sxGroup> self(this);
  sxRef<sxGroup> keep(other);
  while (children.getNum() > 0) {
    sxGroup* child = children[0];
    other->addChild(child);
    removeChild(child);
  }
  while (parents.getNum() > 0) sxiGroupEdits::takeSlot(parents.get(0), this, other, false);
  return true;
}

bool sxGroup::replaceGraph(sxGroup* other) {
  if (sxiGroupEdits::refusesInPlaceOf(this, other, true)) return false;
  sxRef<sxGroup> self(this);
  sxRef<sxGroup> keep(other);
  while (parents.getNum() > 0)
    sxiGroupEdits::takeSlot(parents.get(parents.getNum() - 1), this, other, false);
  return true;
}

bool sxGroup::insertBelow(sxGroup* newNode) {
  if (!newNode || newNode == this || sxiGroupEdits::isAncestor(newNode, this) ||
      sxiGroupEdits::isAncestor(this, newNode))
    return false;
  sxRef<sxGroup> keep(newNode);
  sxiGroupSnapshot moved(children);
  if (!moved.valid()) return false;
  for (int i = 0; i < moved.size(); ++i) newNode->addChild(moved[i]);
  removeChildren();
  return addChild(newNode);
}

bool sxGroup::insertAbove(sxGroup* newNode) {
  if (sxiGroupEdits::refusesInPlaceOf(this, newNode)) return false;
  sxRef<sxGroup> keep(newNode);
  sxiGroupSnapshot before(parents);
  if (!before.valid() || !newNode->addChild(this)) return false;
  for (int i = 0; i < before.size(); ++i) sxiGroupEdits::takeSlot(before[i], this, newNode, true);
  return true;
}
