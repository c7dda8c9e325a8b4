#include <sx/collision/sxCollider.h>
#include <sx/nodes/sxBillboard.h>
#include <sx/nodes/sxListener.h>
#include <sx/traversal/sxTravContext.h>
#include <sx/viewing/sxCamera.h>

#include "nodes/sxCachedBounds.h"

// Every pass places the sub-graph the same way: turned towards the
// context's viewpoint, or translated when there is none. The children are
// reached through the group passes (and so through the deep-stack entry).

namespace {

void pushPlacement(const sxBillboard* b, sxTravContext* ctx) {
  sxMatrix full;
  b->computeFullMatrix(ctx->getMatrix(), full, ctx->getViewpoint());
  ctx->pushMatrix(full);
}

template <class Agent>
void placed(const sxBillboard* b, Agent* agent) {
  sxTravContext* ctx = agent ? agent->getTravContext() : nullptr;
  if (!ctx) return;
  pushPlacement(b, ctx);
  b->sxGroup::apply(agent);
  ctx->popMatrix();
}

}  // namespace

sxTraverser::TRAV_STATE sxBillboard::apply(sxTraverser* t, bool skipPreApply) {
  sxTraverser::TRAV_STATE entry;
  if (!entersTraversal(t, skipPreApply, entry)) return entry;
  sxTravContext* ctx = t->getTravContext();
  if (!ctx) return sxGroup::apply(t, true);
  pushPlacement(this, ctx);
  const sxTraverser::TRAV_STATE s = sxGroup::apply(t, true);
  if (s != sxTraverser::TRAV_STOP) ctx->popMatrix();
  return s;
}

void sxBillboard::apply(sxCollider* collider) const {
  placed(this, collider);
}

void sxBillboard::apply(sxListener* listener) const {
  placed(this, listener);
}

void sxBillboard::apply(sxCamera* camera) const {
  placed(this, camera);
}

// The turn is not known before a pass looks, so the parent's volume gets a
// sphere around the position that holds the children in every turn.
void sxBillboard::updateFences(sxTravContext* ctx) {
  sxVolume* outer = sxiUpdateCachedBounds(this, volume, ctx);
  if (!outer) return;
  sxSphere around(getXYZ(), volume.getCenter().length() + volume.getRadius());
  around.xform(ctx->getMatrix());
  outer->extendAround(around);
}
