#include <sx/collision/sxCollider.h>
#include <sx/math/sxVolume.h>
#include <sx/nodes/sxGroup.h>
#include <sx/nodes/sxListener.h>
#include <sx/threads/sxStats.h>
#include <sx/threads/sxThread.h>
#include <sx/traversal/sxTravContext.h>
#include <sx/viewing/sxCamera.h>

#include <utility>

#include "nodes/sxGroupEdits.h"
#include "platform/sxDeepStack.h"

// The recursive passes over a graph. Every call from a group into a child
// goes through callChild, the one place where a deep graph can be continued
// on a fresh stack segment.

namespace {

using State = sxTraverser::TRAV_STATE;

// The single entry for every recursive call into a child: a deep graph
// carries on on a fresh stack segment.
template <class F>
inline decltype(auto) callChild(F&& f) {
  return sxiDeepCall(std::forward<F>(f));
}

void count(sxTravContext* ctx, const sxGroup* g) {
  if (sxStats* stats = ctx->getStats()) stats->incCount(g);
}

// The camera and listener passes: children whose content bits meet the
// context's pass mask.
template <class Agent>
void passToChildren(const sxGroup* g, Agent* agent) {
  sxTravContext* ctx = agent ? agent->getTravContext() : nullptr;
  if (!ctx) return;
  count(ctx, g);
  const unsigned mask = ctx->getTravMask();
  for (int i = 0; i < g->getNumChildren(); ++i) {
    const sxGroup* child = g->getChild(i);
    if (child->anyTravFlags(mask)) callChild([&] { child->apply(agent); });
  }
}

}  // namespace

// A path deeper than the context can hold (32766 groups) is not entered.
sxTraverser::TRAV_STATE sxGroup::apply(sxTraverser* t, bool skipPreApply) {
  sxTraverser::TRAV_STATE entry;
  if (!entersTraversal(t, skipPreApply, entry)) return entry;
  sxTravContext* ctx = t->getTravContext();
  if (!ctx) return sxTraverser::TRAV_CONTINUE;
  count(ctx, this);
  if (!ctx->pushGroup(this)) return sxTraverser::TRAV_CONTINUE;
  State s = t->apply(this);
  // A stop leaves the path on the context for the application to inspect.
  if (s == sxTraverser::TRAV_STOP) return s;
  if (s == sxTraverser::TRAV_CONTINUE) {
    sxiGroupEdits::prefetchChildren(this);
    for (int i = 0; i < children.getNum(); ++i) {
      sxGroup* child = children[i];
      sxiGroupEdits::prefetchSiblings(this, i, 1);
      if (callChild([&] { return child->apply(t, false); }) == sxTraverser::TRAV_STOP)
        return sxTraverser::TRAV_STOP;
    }
  }
  ctx->popGroup();
  return sxTraverser::TRAV_CONTINUE;
}

void sxGroup::apply(sxCamera* camera) const {
  passToChildren(this, camera);
}

void sxGroup::apply(sxListener* listener) const {
  passToChildren(this, listener);
}

void sxGroup::apply(sxCollider* collider) const {
  sxTravContext* ctx = collider ? collider->getTravContext() : nullptr;
  if (!ctx) return;
  count(ctx, this);
  const unsigned mask = ctx->getTravMask();
  for (int i = 0; i < children.getNum(); ++i) {
    const sxGroup* child = children[i];
    if (!child->anyTravFlags(mask) || !ctx->pushGroup(this)) continue;
    callChild([&] { child->apply(collider); });
    ctx->popGroup();
  }
}

void sxGroup::applyDirect(sxCollider*, bool) const {}
void sxGroup::applyDirect(sxListener*, bool) const {}
void sxGroup::applyDirect(sxCamera*, bool) const {}
void sxGroup::updateDirect(sxScene*, bool) {}

void sxGroup::update(sxTravContext* ctx) {
  if (ctx) count(ctx, this);
  travFlags &= TRAV_KEPT_BY_UPDATE;
  sxiGroupEdits::prefetchChildren(this);
  for (int i = 0; i < children.getNum(); ++i) {
    sxGroup* child = children[i];
    sxiGroupEdits::prefetchSiblings(this, i, 1);
    if (child->travFlags & TRAV_UPDATE_MASK) callChild([&] { child->update(ctx); });
  }
}

void sxGroup::updateFences(sxTravContext* ctx) {
  travFlags &= std::uint16_t(~TRAV_FLAG_FENCES);
  sxiGroupEdits::prefetchChildren(this);
  for (int i = 0; i < children.getNum(); ++i) {
    sxGroup* child = children[i];
    sxiGroupEdits::prefetchSiblings(this, i, 1);
    callChild([&] { child->updateFences(ctx); });
  }
}

// The calling thread's context is reused; a thread the library does not
// know gets one for this call.
void sxGroup::getBoundingVolume(sxVolume& volume) {
  sxThread* thread = sxThread::getCurrentThread();
  sxRef<sxTravContext> ctx(thread ? thread->getTravContext() : nullptr);
  if (ctx)
    ctx->reset();
  else
    ctx = new sxTravContext;
  if (!ctx) return;
  volume.makeEmpty();
  if (!ctx->pushVolume(&volume)) return;
  updateFences(ctx.get());
  // The volume is the caller's: the context keeps no pointer to it.
  ctx->popVolume();
}
