#pragma once

#include <sx/nodes/sxGroup.h>
#include <sx/traversal/sxTraitStack.h>
#include <sx/traversal/sxTravContext.h>
#include <sx/viewing/sxScene.h>

// What the camera, listener and collider passes share: a context of their
// own, and the pass entry that brackets the walk with the scene's direct
// calls.
namespace sxiPassEntry {

inline sxTravContext* newContext(unsigned stackTypes) {
  sxTravContext* ctx = new sxTravContext;
  if (ctx) ctx->setTraitStack(new sxTraitStack(stackTypes, true));
  return ctx;
}

// prepare runs once the context is reset and set up, before any call (a
// listener pushes its traits there); false skips the walk.
template <class Agent, class Prepare>
void run(Agent* agent, sxGroup* root, const sxViewpoint* viewpoint, Prepare&& prepare) {
  sxTravContext* ctx = agent->getTravContext();
  if (!root || !ctx) return;
  ctx->reset();
  ctx->setViewpoint(viewpoint);
  sxScene* scene = root->isOfType(sxScene::getClassType()) ? static_cast<sxScene*>(root) : nullptr;
  ctx->setScene(scene);
  if (!prepare()) return;
  if (scene) scene->applyDirect(agent, true);
  root->apply(agent);
  if (scene) scene->applyDirect(agent, false);
}

template <class Agent>
void run(Agent* agent, sxGroup* root, const sxViewpoint* viewpoint) {
  run(agent, root, viewpoint, [] { return true; });
}

}  // namespace sxiPassEntry
