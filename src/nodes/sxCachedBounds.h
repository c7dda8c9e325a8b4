#pragma once

#include <sx/math/sxSphere.h>
#include <sx/nodes/sxGroup.h>
#include <sx/traversal/sxTravContext.h>

// The fence pass of the node kinds that cache the bounds of their children
// in their own space (transforms, billboards): when the sub-graph changed
// (TRAV_FLAG_FENCES), the children grow the cached sphere under an identity
// matrix; otherwise it is kept. Returns the volume the node then grows
// (the top of the volume stack before the node), or null when there is
// none or nothing to grow it by.
inline sxVolume* sxiUpdateCachedBounds(sxGroup* node, sxSphere& cached, sxTravContext* ctx) {
  if (!ctx) {
    node->sxGroup::updateFences(ctx);
    return nullptr;
  }
  sxVolume* outer = ctx->getVolume();
  if (node->anyTravFlags(sxGroup::TRAV_FLAG_FENCES)) {
    cached.makeEmpty();
    if (ctx->pushVolume(&cached)) {
      ctx->pushIdentMatrix();
      node->sxGroup::updateFences(ctx);
      ctx->popMatrix();
      ctx->popVolume();
    } else {
      node->sxGroup::updateFences(ctx);
    }
  }
  return cached.isEmpty() ? nullptr : outer;
}
