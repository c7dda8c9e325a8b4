#pragma once

#include <sx/nodes/sxAction.h>
#include <sx/nodes/sxEvent.h>

// The action through which an event is chained to another: applying it
// triggers the chained event. It keeps a reference on that event.
class sxiEventAction : public sxAction {
 public:
  explicit sxiEventAction(sxEvent* chained);
  ~sxiEventAction() override;
  sxiEventAction(const sxiEventAction&) = delete;
  sxiEventAction& operator=(const sxiEventAction&) = delete;

  bool apply(sxBase* object, sxEvent* event) override;
  sxEvent* getEvent() const { return chained; }

 private:
  sxEvent* chained;
};
