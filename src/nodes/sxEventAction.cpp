#include "nodes/sxEventAction.h"

sxiEventAction::sxiEventAction(sxEvent* event) : chained(event) {}

bool sxiEventAction::apply(sxBase* object, sxEvent* event) {
  return chained->apply(object, event);
}
