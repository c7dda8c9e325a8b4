#include <sx/nodes/sxGroup.h>
#include <sx/traversal/sxTravContext.h>
#include <sx/traversal/sxTraverser.h>

SX_DEFINE_CLASS(sxTraverser)

// Placeholder until the traversal context lands.
sxTraverser::sxTraverser(const sxTraverser& source)
    : sxBase(source),
      groupBreakPoint(source.groupBreakPoint),
      isOfTypeBreakPoint(source.isOfTypeBreakPoint),
      exactTypeBreakPoint(source.exactTypeBreakPoint),
      travContext(source.travContext) {}
sxTraverser::~sxTraverser() = default;
void sxTraverser::traverse(sxGroup* root) {
  if (root) root->apply(this, false);
}
void sxTraverser::reset() {}
sxTraverser::TRAV_STATE sxTraverser::apply(sxGroup* g) {
  if (g == groupBreakPoint.get()) return TRAV_STOP;
  return TRAV_CONTINUE;
}
sxTraverser::TRAV_STATE sxTraverser::preApply(sxGroup*) {
  return TRAV_CONTINUE;
}
void sxTraverser::setGroupBreakPoint(sxGroup* g) {
  groupBreakPoint = g;
}
void sxTraverser::setIsOfTypeBreakPoint(const sxType* t) {
  isOfTypeBreakPoint = t;
}
void sxTraverser::setExactTypeBreakPoint(const sxType* t) {
  exactTypeBreakPoint = t;
}
void sxTraverser::setTravContext(sxTravContext* c) {
  travContext = c;
}
