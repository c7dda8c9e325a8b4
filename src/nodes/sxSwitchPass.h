#pragma once

#include <sx/collision/sxCollider.h>
#include <sx/nodes/sxGroup.h>
#include <sx/threads/sxStats.h>
#include <sx/traversal/sxTravContext.h>

#include <type_traits>

#include "platform/sxDeepStack.h"

// What the passes of the switch kinds share: visiting one chosen child, and
// the fade values handed to it through the context.
namespace sxiSwitchPass {

// The transition modes a child sees during a fade.
enum : int { MODE_NONE = 0, MODE_FADE_IN = 1, MODE_FADE_OUT = 2 };

// The context of the agent's pass, with the switch counted; null when the
// agent has none (the pass then does nothing).
template <class Agent>
sxTravContext* begin(const sxGroup* sw, Agent* agent) {
  sxTravContext* ctx = agent ? agent->getTravContext() : nullptr;
  if (ctx)
    if (sxStats* stats = ctx->getStats()) stats->incCount(sw);
  return ctx;
}

// One child in the agent's pass. Colliders see the switch on the path, as
// in the group pass.
template <class Agent>
void visit(const sxGroup* sw, int index, Agent* agent, sxTravContext* ctx) {
  if (index < 0 || index >= sw->getNumChildren()) return;
  const sxGroup* child = sw->getChild(index);
  if constexpr (std::is_same_v<Agent, sxCollider>) {
    if (!ctx->pushGroup(sw)) return;
    sxiDeepCall([&] { child->apply(agent); });
    ctx->popGroup();
  } else {
    sxiDeepCall([&] { child->apply(agent); });
  }
}

// Puts the context's fade values back when the switch is done.
class SavedFade {
 public:
  explicit SavedFade(sxTravContext* c)
      : ctx(c), scale(c->getTransitionScale()), mode(c->getTransitionMode()) {}
  ~SavedFade() {
    ctx->setTransitionScale(scale);
    ctx->setTransitionMode(mode);
  }
  SavedFade(const SavedFade&) = delete;
  SavedFade& operator=(const SavedFade&) = delete;

 private:
  sxTravContext* ctx;
  float scale;
  int mode;
};

inline void setFade(sxTravContext* ctx, int mode, float scale) {
  ctx->setTransitionMode(mode);
  ctx->setTransitionScale(scale);
}

}  // namespace sxiSwitchPass
