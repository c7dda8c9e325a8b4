#include <sx/nodes/sxAction.h>

SX_IMPLEMENT_CLASS(sxAction, sxBase, sxType)

sxAction::sxAction() : sxBase() {
  initInstance();
}

sxAction::sxAction(const sxAction& source) : sxBase(source) {
  initInstance();
}

bool sxAction::apply(sxBase*, sxEvent*) {
  return true;
}
