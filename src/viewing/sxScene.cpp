#include <sx/nodes/sxGroupType.h>
#include <sx/viewing/sxScene.h>

#include <atomic>

SX_DEFINE_CLASS(sxScene, sxGroupType)

namespace {
constinit std::atomic<int> liveScenes{0};
}

sxScene::sxScene() {
  liveScenes.fetch_add(1, std::memory_order_relaxed);
}

sxScene::sxScene(const sxScene& source) : sxStyle(source) {
  liveScenes.fetch_add(1, std::memory_order_relaxed);
}

sxScene::~sxScene() {
  liveScenes.fetch_sub(1, std::memory_order_relaxed);
}

// The direct-call lists arrive with the scene's frame update; until a scene
// keeps any, there is nothing to take a node off.
void sxScene::removeDirectCall(int, sxGroup*) {}

int sxScene::getNumLive() {
  return liveScenes.load(std::memory_order_relaxed);
}
