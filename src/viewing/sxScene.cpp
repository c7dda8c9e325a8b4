#include <sx/collision/sxCollider.h>
#include <sx/kernel/sxKernel.h>
#include <sx/nodes/sxEmitter.h>
#include <sx/nodes/sxEvent.h>
#include <sx/nodes/sxGroupType.h>
#include <sx/nodes/sxListener.h>
#include <sx/threads/sxLock.h>
#include <sx/threads/sxSemaphore.h>
#include <sx/threads/sxStats.h>
#include <sx/traversal/sxTraitStack.h>
#include <sx/traversal/sxTravContext.h>
#include <sx/viewing/sxCamera.h>
#include <sx/viewing/sxScene.h>

#include <atomic>
#include <cstdint>
#include <unordered_map>

SX_DEFINE_CLASS(sxScene, sxGroupType)

struct sxScene::Index {
  // Bit k set: the node is on direct-call list k.
  std::unordered_map<const sxGroup*, std::uint8_t> kinds;
  // The play list's slot of each playing emitter.
  std::unordered_map<const sxEmitter*, int> slots;
  // Writers queue here while they wait, so that readers arriving meanwhile
  // wait behind them instead of keeping the writer out for ever.
  sxRef<sxLock> turnstile;
};

namespace {

constinit std::atomic<int> liveScenes{0};

// How often the calling thread holds query access to each scene, so that
// nested requests neither count twice against the semaphore nor queue
// behind a waiting writer (which waits for them: a deadlock).
struct QueryHold {
  const sxScene* scene;
  int depth;
  bool counted;  // in queryCount (false for the writer's own reads)
};
constexpr int maxQueryHolds = 16;
thread_local QueryHold queryHolds[maxQueryHolds];
thread_local int numQueryHolds = 0;

QueryHold* findHold(const sxScene* scene) {
  for (int i = 0; i < numQueryHolds; ++i)
    if (queryHolds[i].scene == scene) return &queryHolds[i];
  return nullptr;
}

void dropHold(QueryHold* hold) {
  *hold = queryHolds[--numQueryHolds];
}

const sxTList<sxGroup*> noCalls;

}  // namespace

sxScene::sxScene() : index(new Index) {
  init();
}

// A copy shares the traits (as a style does) and makes everything else anew.
sxScene::sxScene(const sxScene& source) : sxStyle(source), index(new Index) {
  init();
}

void sxScene::init() {
  liveScenes.fetch_add(1, std::memory_order_relaxed);
  travContext = new sxTravContext;
  if (travContext) travContext->setTraitStack(new sxTraitStack(sxTraitStack::STACK_ALL, false));
  modsLock = new sxLock;
  queryLock = new sxLock;
  index->turnstile = new sxLock;
  accessSemaphore = new sxSemaphore(1, 1);
  preUpdateEvent = new sxEvent;
  postUpdateEvent = new sxEvent;
}

sxScene::~sxScene() {
  liveScenes.fetch_sub(1, std::memory_order_relaxed);
}

int sxScene::getNumLive() {
  return liveScenes.load(std::memory_order_relaxed);
}

// A scene stores nothing of its own: what it runs is rebuilt by its first
// frame.
sxEntry* sxScene::read(sxFile* file, sxEntry* entry) {
  return sxStyle::read(file, entry);
}

sxEntry* sxScene::write(sxFile* file, sxEntry* entry) const {
  return sxStyle::write(file, entry);
}

void sxScene::addedTo(sxGroup*) {}

// --- the frame

void sxScene::updateFences() {
  if (!anyTravFlags(TRAV_FLAG_FENCES) || !travContext) return;
  sxTravContext* ctx = travContext.get();
  ctx->reset();
  ctx->setScene(this);
  volume.makeEmpty();
  const bool pushed = ctx->pushVolume(&volume);
  sxGroup::updateFences(ctx);
  if (pushed) ctx->popVolume();
}

void sxScene::update() {
  const double t0 = sxGetTime();
  if (anyTravFlags(TRAV_FLAG_SHARED)) updateSharedInstances();
  updateFences();
  sxTravContext* ctx = travContext.get();
  if (ctx) {
    ctx->reset();
    ctx->setScene(this);
    ctx->pushVolume(&volume);
  }
  if (preUpdateEvent) preUpdateEvent->trigger(this);
  callList(DIRECT_CALL_UPDATE_FIRST, this, true);
  if (anyTravFlags(TRAV_UPDATE_MASK)) sxStyle::update(ctx);
  callList(DIRECT_CALL_UPDATE_LAST, this, false);
  if (postUpdateEvent) postUpdateEvent->trigger(this);
  if (ctx) {
    if (sxStats* stats = ctx->getStats()) stats->addUpdate(sxGetTime() - t0);
  }
}

// The count is read afresh before every call: a node may register more
// nodes of the same kind behind the current one, and they are called in
// the same frame; one may also take itself off.
template <class Agent>
void sxScene::callList(int kind, Agent* agent, bool first) const {
  const sxTList<sxGroup*>& list = directCalls[kind];
  for (int i = 0; i < list.getNum(); ++i) {
    sxGroup* node = list[i];
    if constexpr (std::is_same_v<Agent, sxScene>) {
      node->updateDirect(const_cast<sxScene*>(agent), first);
    } else {
      node->applyDirect(agent, first);
    }
    // A node that took itself off moved the next one into its slot.
    if (i < list.getNum() && list[i] != node) --i;
  }
}

void sxScene::applyDirect(sxCamera* camera, bool first) const {
  callList(first ? DIRECT_CALL_CAMERA_FIRST : DIRECT_CALL_CAMERA_LAST, camera, first);
}

void sxScene::applyDirect(sxListener* listener, bool first) const {
  callList(first ? DIRECT_CALL_LISTENER_FIRST : DIRECT_CALL_LISTENER_LAST, listener, first);
}

void sxScene::applyDirect(sxCollider* collider, bool first) const {
  callList(first ? DIRECT_CALL_COLLIDER_FIRST : DIRECT_CALL_COLLIDER_LAST, collider, first);
}

// --- direct calls

void sxScene::addDirectCall(DIRECT_CALL kind, sxGroup* node) {
  if (kind < 0 || kind >= numDirectCallKinds || !node) return;
  std::uint8_t& kinds = index->kinds[node];
  const std::uint8_t bit = std::uint8_t(1u << kind);
  if (kinds & bit) return;
  if (directCalls[kind].add(node) < 0) {
    if (!kinds) index->kinds.erase(node);
    return;
  }
  kinds = std::uint8_t(kinds | bit);
}

void sxScene::removeDirectCall(DIRECT_CALL kind, sxGroup* node) {
  if (kind < 0 || kind >= numDirectCallKinds) return;
  auto it = index->kinds.find(node);
  const std::uint8_t bit = std::uint8_t(1u << kind);
  if (it == index->kinds.end() || !(it->second & bit)) return;
  sxTList<sxGroup*>& list = directCalls[kind];
  for (int i = list.getNum() - 1; i >= 0; --i) {
    if (list[i] == node) {
      list.removeOrderedIndex(i);
      break;
    }
  }
  it->second = std::uint8_t(it->second & ~bit);
  if (!it->second) index->kinds.erase(it);
}

const sxTList<sxGroup*>& sxScene::getDirectCalls(int kind) const {
  return kind >= 0 && kind < numDirectCallKinds ? directCalls[kind] : noCalls;
}

// --- the play list

bool sxScene::addToPlayList(sxEmitter* emitter) {
  if (!emitter || index->slots.count(emitter)) return false;
  const int slot = playList.add(emitter);
  if (slot < 0) return false;
  index->slots.emplace(emitter, slot);
  return true;
}

bool sxScene::removeFromPlayList(sxEmitter* emitter) {
  auto it = index->slots.find(emitter);
  if (it == index->slots.end()) return false;
  const int slot = it->second;
  index->slots.erase(it);
  const int last = playList.getNum() - 1;
  if (slot != last) {
    sxEmitter* moved = playList[last];
    playList.slot(slot) = moved;
    index->slots[moved] = slot;
  }
  playList.removeLast();
  return true;
}

void sxScene::setTravContext(sxTravContext* context) {
  travContext = context;
}

// --- access from several threads

bool sxScene::acquireForMods() {
  if (modsLock->isHeldByCurrentThread()) return modsLock->acquire(-1);
  if (findHold(this)) return false;
  index->turnstile->acquire(-1);
  accessSemaphore->dec(-1);
  modsLock->acquire(-1);
  index->turnstile->release();
  return true;
}

void sxScene::releaseFromMods() {
  if (!modsLock->isHeldByCurrentThread()) return;
  modsLock->release();
  if (!modsLock->isHeldByCurrentThread()) accessSemaphore->inc();
}

bool sxScene::availableForMods() {
  if (!modsLock->available()) return false;
  modsLock->release();
  return accessSemaphore->getAvailable() > 0;
}

void sxScene::acquireForQuery() {
  if (QueryHold* hold = findHold(this)) {
    ++hold->depth;
    return;
  }
  // The writer itself reads without counting: it holds the access already.
  const bool counted = !modsLock->isHeldByCurrentThread();
  if (counted) {
    // Behind any writer that is waiting.
    index->turnstile->acquire(-1);
    index->turnstile->release();
    queryLock->acquire(-1);
    if (queryCount == 0) accessSemaphore->dec(-1);
    ++queryCount;
    queryLock->release();
  }
  if (numQueryHolds < maxQueryHolds) queryHolds[numQueryHolds++] = {this, 1, counted};
}

void sxScene::releaseFromQuery() {
  bool counted = true;
  if (QueryHold* hold = findHold(this)) {
    if (--hold->depth > 0) return;
    counted = hold->counted;
    dropHold(hold);
  }
  if (!counted) return;
  queryLock->acquire(-1);
  if (queryCount > 0 && --queryCount == 0) accessSemaphore->inc();
  queryLock->release();
}

bool sxScene::availableForQuery() {
  if (!modsLock->available()) return false;
  modsLock->release();
  return true;
}
