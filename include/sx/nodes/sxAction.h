#pragma once

#include <sx/object/sxBase.h>

class sxEvent;

// An operation that threads and events apply to an object. Only subclasses
// are made: they override apply.
class SX_API sxAction : public sxBase {
 public:
  SX_CLASS(sxAction, sxBase)

  // Called by a thread with its target (event null) or by an event with the
  // triggering object and itself. A thread dies when one of its actions
  // returns false. The base action does nothing and returns true.
  virtual bool apply(sxBase* object, sxEvent* event);

 protected:
  sxAction() = default;
  sxAction(const sxAction& source) = default;
};
