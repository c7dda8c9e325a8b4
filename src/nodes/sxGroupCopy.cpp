#include <sx/nodes/sxActionNode.h>
#include <sx/nodes/sxGroup.h>

#include "kernel/sxKernelLocks.h"
#include "nodes/sxGroupEdits.h"
#include "platform/sxDeepStack.h"

namespace {
// The group mapping of the copy in progress: the node at index i of
// prevGroups was copied to the node at index i of newGroups. Global, and
// therefore guarded by the group lock.
sxTList<const sxGroup*> prevGroups;
sxTList<sxGroup*> newGroups;

void clearMapping() {
  prevGroups.setSize(0);
  newGroups.setSize(0);
}

void resolveActions(sxGroup* node) {
  if (!node->isOfType(sxActionNode::getClassType())) return;
  auto* action = static_cast<sxActionNode*>(node);
  for (int i = prevGroups.getNum() - 1; i >= 0; --i)
    action->resolveGroup(prevGroups[i], newGroups[i]);
}
}  // namespace

void sxGroup::addGroupMapping(const sxGroup* from, sxGroup* to) {
  prevGroups.add(from);
  newGroups.add(to);
}

// Depth first, children from the last to the first.
void sxGroup::resolveGroupMapping(sxGroup* node) {
  if (node)
    sxiGroupEdits::depthFirst(node, false, [](sxGroup* g) {
      resolveActions(g);
      return false;
    });
}

sxGroup* sxGroup::copyGroup() const {
  return newCopyOf(*this, false);
}

sxGroup* sxGroup::cloneGroup() const {
  return newCopyOf(*this, true);
}

void sxGroup::copy(const sxGroup& src) {
  copyOrClone(src, false);
}

void sxGroup::clone(const sxGroup& src) {
  copyOrClone(src, true);
}

// Every child is copied for itself: a node shared below src becomes one
// node per path in the result (updateSharedInstances's node flags decide
// what happens to shared instances in place).
void sxGroup::copyOrClone(const sxGroup& src, bool cloning) {
  if (&src == this) return;
  if (!cloning) removeChildren();
  sxBase::operator=(src);
  travFlags = std::uint16_t((travFlags & TRAV_CONTENT_MASK) | (src.travFlags & ~TRAV_CONTENT_MASK) |
                            TRAV_FLAG_UPDATE);
  nodeFlags = src.nodeFlags;
  dirtyUp(travFlags);
  if (cloning) removeChildren();
  for (int i = 0; i < src.children.getNum(); ++i) {
    const sxGroup* from = src.children[i];
    sxGroup* made = sxiDeepCall([&] { return cloning ? from->cloneGroup() : from->copyGroup(); });
    if (made && !addChild(made)) sxRef<sxGroup> drop(made);
  }
}

sxGroup* sxGroup::makeCopy() const {
  return makeCopyOrClone(false);
}

sxGroup* sxGroup::makeClone() const {
  return makeCopyOrClone(true);
}

sxGroup* sxGroup::makeCopyOrClone(bool cloning) const {
  sxiKernel::LockGuard guard(sxiKernel::groupLock);
  sxGroup* made = cloning ? cloneGroup() : copyGroup();
  resolveGroupMapping(made);
  clearMapping();
  return made;
}

void sxGroup::updateSharedInstances() {
  if (parents.getNum() > 1 && nodeFlags != NODE_SHARE_INSTANCES) {
    for (int i = parents.getNum() - 1; i >= 1; --i) {
      sxGroup* parent = parents.get(i);
      sxGroup* made;
      {
        sxiKernel::LockGuard guard(sxiKernel::groupLock);
        made = nodeFlags == NODE_CLONE_INSTANCES ? cloneGroup() : copyGroup();
        resolveGroupMapping(made);
        clearMapping();
      }
      if (!made || !made->parents.add(parent)) {
        sxRef<sxGroup> drop(made);
        continue;
      }
      parent->children.slot(parent->children.getIndex(this)) = made;
      made->ref();
      parents.removeOrdered(parent);
      unRef();
    }
  }
  for (int i = 0; i < children.getNum(); ++i)
    if (sxGroup* child = children[i]; child->travFlags & TRAV_FLAG_SHARED)
      sxiDeepCall([&] { child->updateSharedInstances(); });
  removeTravFlags(TRAV_FLAG_SHARED);
}
