#pragma once

#include <sx/containers/sxList.h>
#include <sx/object/sxBase.h>
#include <sx/object/sxRef.h>

class sxAction;
class sxActionNode;
class sxEntry;
class sxFile;
class sxLock;

// A named, shareable trigger point. Triggering records the time and the
// object, applies the actions in order, notifies the action nodes in order
// and wakes every thread waiting for the event. An event can itself be the
// action of another event (chaining). Any thread may trigger an event or
// change its lists: the event's own lock serialises them, and actions run on
// the triggering thread.
class SX_API sxEvent : public sxBase {
 public:
  SX_CLASS(sxEvent, sxBase)

  sxEvent();
  // A new event with the source's name, enabled flag, actions and action
  // nodes (each referenced again); time and last object start empty.
  sxEvent(const sxEvent& source);
  ~sxEvent() override;

  // The event named name, referenced for the caller: an existing one or a
  // new one. Null for a null or empty name.
  static sxEvent* findOrCreate(const char* name);
  // Calls event->trigger(object); a null event is ignored.
  static void trigger(sxEvent* event, sxBase* object);

  // Wakes the waiting threads; when enabled, also records the time and the
  // object and runs the actions, then the action nodes. Chains nested more
  // than maxChainDepth deep (an event that triggers itself through others)
  // stop there.
  virtual void trigger(sxBase* object);
  // A disabled event still wakes waiting threads but runs nothing.
  virtual void enable(bool enable);
  // Blocks until the next trigger or until timeoutMs milliseconds have
  // passed (-1: no limit). True when a trigger came.
  virtual bool waitForTrigger(int timeoutMs);
  virtual bool waitForTrigger();
  // Appends and references; false for null.
  virtual bool addAction(sxAction* action);
  // As an action of another event: triggers this event with object.
  virtual bool apply(sxBase* object, sxEvent* event);

  // The file record adds the enabled flag to sxBase's (as an int, 0 or 1);
  // actions are not stored.
  sxEntry* read(sxFile* file, sxEntry* entry) override;
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

  bool addAction(sxActionNode* node);
  // Chains event: it is triggered, with the same object, whenever this one
  // runs its actions. False for null and for this event itself.
  bool addAction(sxEvent* event);
  // Remove one entry (the last one moves into the hole) and release it;
  // false when it was not there.
  bool removeAction(sxAction* action);
  bool removeAction(sxActionNode* node);
  bool removeAction(sxEvent* event);

  bool isEnabled() const;
  // Clock reading (sxGetTime) at the last enabled trigger; 0 before one.
  double getTime() const;
  sxBase* getLastObject() const;
  int getNumActions() const;
  // Null outside 0..getNumActions()-1. A chained event is listed as an
  // action that triggers it.
  sxAction* getAction(int i) const;
  int getNumActionNodes() const;
  sxActionNode* getActionNode(int i) const;

  static constexpr int maxChainDepth = 64;

 private:
  struct Signal;
  int findChained(const sxEvent* event) const;

  static constexpr int initialActions = 4;
  static Signal* newSignal();
  static sxLock* newLock();

  double time = 0.0;
  sxTList<sxAction*> actions{initialActions};
  sxTList<sxActionNode*> actionNodes;
  sxBase* lastObject = nullptr;
  sxRef<sxLock> lock;
  Signal* signal = newSignal();
  bool enabled = true;
};
