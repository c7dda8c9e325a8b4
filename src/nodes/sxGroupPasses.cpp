#include <sx/nodes/sxGroup.h>

// Placeholder passes until the traversal context lands.
sxTraverser::TRAV_STATE sxGroup::apply(sxTraverser* t, bool skipPreApply) {
  if (!skipPreApply)
    if (auto s = t->preApply(this)) return s;
  auto s = t->apply(this);
  if (s == sxTraverser::TRAV_STOP) return s;
  if (s == sxTraverser::TRAV_CONTINUE)
    for (int i = 0; i < getNumChildren(); ++i)
      if (getChild(i)->apply(t, false) == sxTraverser::TRAV_STOP) return sxTraverser::TRAV_STOP;
  return sxTraverser::TRAV_CONTINUE;
}
void sxGroup::apply(sxCollider*) const {}
void sxGroup::apply(sxListener*) const {}
void sxGroup::apply(sxCamera*) const {}
void sxGroup::applyDirect(sxCollider*, bool) const {}
void sxGroup::applyDirect(sxListener*, bool) const {}
void sxGroup::applyDirect(sxCamera*, bool) const {}
void sxGroup::updateDirect(sxScene*, bool) {}
void sxGroup::update(sxTravContext*) {
  travFlags &= TRAV_KEPT_BY_UPDATE;
  for (int i = 0; i < getNumChildren(); ++i)
    if (getChild(i)->travFlags & TRAV_UPDATE_MASK) getChild(i)->update(nullptr);
}
void sxGroup::updateFences(sxTravContext*) {}
void sxGroup::getBoundingVolume(sxVolume&) {}
