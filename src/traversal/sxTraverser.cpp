#include <sx/nodes/sxGroup.h>
#include <sx/traversal/sxTravContext.h>
#include <sx/traversal/sxTraverser.h>

#include "object/sxDeletion.h"

SX_DEFINE_CLASS(sxTraverser)

sxTraverser::sxTraverser(const sxTraverser& source)
    : sxBase(source),
      groupBreakPoint(source.groupBreakPoint),
      isOfTypeBreakPoint(source.isOfTypeBreakPoint),
      exactTypeBreakPoint(source.exactTypeBreakPoint),
      travContext(source.travContext) {}

sxTraverser::~sxTraverser() = default;

void sxTraverser::traverse(sxGroup* root) {
  if (!root) return;
  reset();
  // A traverser may edit the graph it walks: what it releases lives until
  // the walk is over, so no group the walk stands on can go.
  sxiDeletion::Hold hold;
  root->apply(this, false);
}

void sxTraverser::reset() {
  if (travContext) travContext->reset();
}

sxTraverser::TRAV_STATE sxTraverser::apply(sxGroup* group) {
  if (group == groupBreakPoint.get()) return TRAV_STOP;
  if (exactTypeBreakPoint && group && group->isOfExactType(exactTypeBreakPoint)) return TRAV_STOP;
  if (isOfTypeBreakPoint && group && group->isOfType(isOfTypeBreakPoint)) return TRAV_STOP;
  return TRAV_CONTINUE;
}

sxTraverser::TRAV_STATE sxTraverser::preApply(sxGroup*) {
  return TRAV_CONTINUE;
}

void sxTraverser::setGroupBreakPoint(sxGroup* group) {
  groupBreakPoint = group;
}

void sxTraverser::setIsOfTypeBreakPoint(const sxType* type) {
  isOfTypeBreakPoint = type;
}

void sxTraverser::setExactTypeBreakPoint(const sxType* type) {
  exactTypeBreakPoint = type;
}

void sxTraverser::setTravContext(sxTravContext* context) {
  travContext = context;
}
