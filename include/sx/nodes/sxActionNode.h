#pragma once

#include <sx/nodes/sxGroup.h>

class sxEvent;

// A scene-graph group that can also be attached to events. Each concrete
// node kind says in eventTriggered what a trigger does to it.
class SX_API sxActionNode : public sxGroup {
 public:
  SX_CLASS(sxActionNode, sxGroup)
  sxActionNode() = default;

  // Called by an event, on the triggering thread, with the triggering object
  // and the event.
  virtual void eventTriggered(sxBase* object, sxEvent* event) = 0;

  /// After a copy or clone of a sub-graph holding this node: from was
  /// copied to to, so a node that points at from should now point at to.
  /// Called once per copied node; nothing here.
  virtual void resolveGroup(const sxGroup* from, sxGroup* to);
};
