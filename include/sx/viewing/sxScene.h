#pragma once

#include <memory>

#include <sx/containers/sxList.h>
#include <sx/math/sxSphere.h>
#include <sx/object/sxRef.h>
#include <sx/viewing/sxStyle.h>

class sxCamera;
class sxCollider;
class sxEmitter;
class sxEvent;
class sxListener;
class sxLock;
class sxSemaphore;
class sxTravContext;

/// The root node of a graph that is updated once per frame.
///
/// update() runs one frame: the pre-update event, the nodes that asked for
/// direct calls before the update pass, the update pass over the parts of
/// the graph that need it, the direct calls after it, and the post-update
/// event. A fence pass before it recomputes the bounds of what changed. The
/// scene keeps the emitters that are playing, and offers reader-writer
/// access for code that edits the graph while other threads walk it.
///
/// Direct-call lists and the play list describe the running graph: they
/// hold no references and are not saved. A node that leaves the scene's
/// graph is taken off them.
class SX_API sxScene : public sxStyle {
 public:
  SX_CLASS(sxScene, sxStyle)

  /// The direct-call lists: which pass calls them, before or after its walk.
  enum DIRECT_CALL : int {
    DIRECT_CALL_CAMERA_FIRST = 0,    ///< applyDirect(camera, true)
    DIRECT_CALL_CAMERA_LAST = 1,     ///< applyDirect(camera, false)
    DIRECT_CALL_LISTENER_FIRST = 2,  ///< applyDirect(listener, true)
    DIRECT_CALL_LISTENER_LAST = 3,   ///< applyDirect(listener, false)
    DIRECT_CALL_COLLIDER_FIRST = 4,  ///< applyDirect(collider, true)
    DIRECT_CALL_COLLIDER_LAST = 5,   ///< applyDirect(collider, false)
    DIRECT_CALL_UPDATE_FIRST = 6,    ///< updateDirect(scene, true) before the update pass
    DIRECT_CALL_UPDATE_LAST = 7      ///< updateDirect(scene, false) after it
  };
  static constexpr int numDirectCallKinds = 8;

  /// Makes the context (with a trait stack of every family), the access
  /// locks and the two update events.
  sxScene();
  /// A scene with the source's traits and a context, locks and events of
  /// its own; lists start empty.
  sxScene(const sxScene& source);
  ~sxScene() override;

  sxEntry* read(sxFile* file, sxEntry* entry) override;
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

  // --- the frame

  /// One frame: the shared-instance pass and the fence pass when flagged,
  /// the pre-update event, direct calls of kind UPDATE_FIRST, the update
  /// pass when any of the update bits is set, direct calls of kind
  /// UPDATE_LAST, the post-update event, and the statistics. Takes no
  /// access lock: the caller decides.
  void update();
  /// The fence pass alone, when the fence bit is set: the scene's volume
  /// is emptied and grown by everything below that has extent.
  void updateFences();
  using sxStyle::update;
  using sxStyle::updateFences;

  /// The bounds found by the last fence pass.
  const sxSphere& getVolume() const { return volume; }

  // --- direct calls

  /// Appends node to the list of kind; a kind outside 0 to 7, a null node
  /// or a node already listed is ignored. No reference is taken.
  virtual void addDirectCall(DIRECT_CALL kind, sxGroup* node);
  /// Takes node off the list of kind, keeping the order of the others; an
  /// unknown kind or a node not listed is ignored. Called for every kind
  /// when the node or an ancestor leaves the scene's graph.
  virtual void removeDirectCall(DIRECT_CALL kind, sxGroup* node);
  /// The list of kind (empty for an unknown kind).
  const sxTList<sxGroup*>& getDirectCalls(int kind) const;

  /// Calls the listed nodes of the matching kind, in order.
  void applyDirect(sxCamera* camera, bool first) const override;
  void applyDirect(sxListener* listener, bool first) const override;
  void applyDirect(sxCollider* collider, bool first) const override;

  // --- the emitters playing

  const sxTList<sxEmitter*>& getPlayList() const { return playList; }
  /// Adds a playing emitter unless listed; false when it was.
  bool addToPlayList(sxEmitter* emitter);
  /// Removes the emitter (the last entry takes its slot); false when it
  /// was not listed.
  bool removeFromPlayList(sxEmitter* emitter);

  // --- context and events

  /// Referenced; the old one is released. The update runs in it.
  virtual void setTravContext(sxTravContext* context);
  sxTravContext* getTravContext() const { return travContext.get(); }
  sxEvent* getPreUpdateEvent() const { return preUpdateEvent.get(); }
  sxEvent* getPostUpdateEvent() const { return postUpdateEvent.get(); }

  // --- access from several threads

  /// Exclusive access for edits: waits until no other thread holds
  /// modification or query access. Nests on the thread that holds it.
  /// Threads that ask for query access while a writer waits queue behind
  /// it, so a writer gets in once the current readers are done. False,
  /// taking nothing, when the calling thread holds query access (waiting
  /// for its own readers to leave would never end).
  virtual bool acquireForMods();
  virtual void releaseFromMods();
  /// True when no thread holds or waits for modification access and
  /// no reader holds query access.
  virtual bool availableForMods();
  /// Shared access for walks: any number of threads hold it at once; it
  /// waits while another thread holds modification access. Nests, and is
  /// granted at once to the thread holding modification access.
  virtual void acquireForQuery();
  virtual void releaseFromQuery();
  /// True when no thread holds modification access.
  virtual bool availableForQuery();

  /// Scenes alive in the process: a detached node looks for scenes above it
  /// only when there are any.
  static int getNumLive();

 protected:
  SX_GROUP_COPIES
  /// Nothing: a scene attached below a group keeps its own flags.
  void addedTo(sxGroup* parent) override;

 private:
  struct Index;
  void init();
  template <class Agent>
  void callList(int kind, Agent* agent, bool first) const;

  sxRef<sxTravContext> travContext;
  sxRef<sxLock> modsLock;
  sxRef<sxLock> queryLock;
  sxRef<sxSemaphore> accessSemaphore;
  sxRef<sxEvent> preUpdateEvent;
  sxRef<sxEvent> postUpdateEvent;
  sxTList<sxGroup*> directCalls[numDirectCallKinds];
  sxTList<sxEmitter*> playList;
  sxSphere volume;
  // Which lists hold a node and where the play list holds an emitter, so
  // that taking a whole sub-graph off the lists costs O(1) per node.
  std::unique_ptr<Index> index;
  int queryCount = 0;
  // Writers waiting or inside: new readers queue behind them.
  int writersWaiting = 0;
};
