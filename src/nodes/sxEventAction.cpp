#include "nodes/sxEventAction.h"

sxiEventAction::sxiEventAction(sxEvent* event) : chained(event) {
  chained->ref();
}

sxiEventAction::~sxiEventAction() {
  chained->unRef();
}

bool sxiEventAction::apply(sxBase* object, sxEvent* event) {
  return chained->apply(object, event);
}
