#pragma once

#include <sx/nodes/sxAction.h>
#include <sx/nodes/sxEvent.h>
#include <sx/object/sxRef.h>

// The action through which an event is chained to another: applying it
// triggers the chained event. It keeps a reference on that event.
class sxiEventAction : public sxAction {
 public:
  explicit sxiEventAction(sxEvent* chained);
  sxiEventAction(const sxiEventAction&) = delete;
  sxiEventAction& operator=(const sxiEventAction&) = delete;

  bool apply(sxBase* object, sxEvent* event) override;
  sxEvent* getEvent() const { return chained.get(); }

 private:
  sxRef<sxEvent> chained;
};
