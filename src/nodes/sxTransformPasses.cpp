#include <sx/collision/sxCollider.h>
#include <sx/nodes/sxListener.h>
#include <sx/nodes/sxTransform.h>
#include <sx/threads/sxStats.h>
#include <sx/traversal/sxTravContext.h>
#include <sx/traversal/sxViewpoint.h>
#include <sx/viewing/sxCamera.h>

#include "nodes/sxCachedBounds.h"

// The passes of a transform: the group passes, wrapped with the matrix. The
// children are reached through the group passes, which make every call into
// a child through the deep-stack entry.

namespace {

// The local matrix on the context's matrix stack for the length of a scope,
// unless it is the identity.
class MatrixScope {
 public:
  MatrixScope(sxTravContext* ctx, const sxTransform& t) : ctx(t.isIdentity() ? nullptr : ctx) {
    if (this->ctx) this->ctx->pushPreMultMatrix(t.getMatrix());
  }
  ~MatrixScope() {
    if (ctx) ctx->popMatrix();
  }
  MatrixScope(const MatrixScope&) = delete;
  MatrixScope& operator=(const MatrixScope&) = delete;

 private:
  sxTravContext* ctx;
};

template <class Agent>
void wrapped(const sxTransform* t, Agent* agent) {
  sxTravContext* ctx = agent ? agent->getTravContext() : nullptr;
  if (!ctx) return;
  MatrixScope scope(ctx, *t);
  t->sxGroup::apply(agent);
}

}  // namespace

sxTraverser::TRAV_STATE sxTransform::apply(sxTraverser* t, bool skipPreApply) {
  sxTraverser::TRAV_STATE entry;
  if (!entersTraversal(t, skipPreApply, entry)) return entry;
  sxTravContext* ctx = t->getTravContext();
  if (!ctx || isIdentity()) return sxGroup::apply(t, true);
  ctx->pushPreMultMatrix(matrix);
  // The inverse of the new top is the old inverse after the inverse of the
  // local matrix: a short closed form for the usual rigid matrices.
  sxMatrix inverse;
  inverse.invert(matrix);
  ctx->pushMultInvertMatrix(inverse);
  const sxTraverser::TRAV_STATE s = sxGroup::apply(t, true);
  // A stop leaves the stacks as they are for the application to inspect.
  if (s != sxTraverser::TRAV_STOP) {
    ctx->popInvertMatrix();
    ctx->popMatrix();
  }
  return s;
}

void sxTransform::apply(sxCollider* collider) const {
  wrapped(this, collider);
}

void sxTransform::apply(sxListener* listener) const {
  wrapped(this, listener);
}

void sxTransform::apply(sxCamera* camera) const {
  sxTravContext* ctx = camera ? camera->getTravContext() : nullptr;
  if (!ctx) return;
  const sxVolume::CONTAINMENT above = ctx->getCullResult();
  if (!ctx->anyFlags(CULL_CAMERA) || above == sxVolume::INSIDE) {
    MatrixScope scope(ctx, *this);
    sxGroup::apply(camera);
    return;
  }
  // The sub-graph was culled above (a plug-in may push OUTSIDE itself).
  if (above == sxVolume::OUTSIDE) return;
  MatrixScope scope(ctx, *this);
  sxSphere world(volume);
  world.xform(ctx->getMatrix());
  const sxViewpoint* viewpoint = ctx->getViewpoint();
  const sxVolume::CONTAINMENT c = viewpoint ? viewpoint->contains(world) : sxVolume::INSIDE;
  if (c == sxVolume::OUTSIDE) {
    if (sxStats* stats = ctx->getStats()) stats->incCulled();
  } else if (c == sxVolume::INSIDE && ctx->pushCullResult(sxVolume::INSIDE)) {
    // Wholly inside: nothing below needs a test.
    sxGroup::apply(camera);
    ctx->popCullResult();
  } else {
    sxGroup::apply(camera);
  }
}

void sxTransform::update(sxTravContext* ctx) {
  MatrixScope scope(ctx, *this);
  sxGroup::update(ctx);
}

void sxTransform::updateFences(sxTravContext* ctx) {
  sxVolume* outer = sxiUpdateCachedBounds(this, volume, ctx);
  if (!outer) return;
  if (isIdentity()) {
    outer->extendAround(volume);
    return;
  }
  sxMatrix placed;
  placed.mult(matrix, ctx->getMatrix());
  sxSphere moved(volume);
  moved.xform(placed);
  outer->extendAround(moved);
}
