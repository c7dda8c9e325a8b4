#include <sx/nodes/sxAction.h>

SX_DEFINE_CLASS(sxAction)

bool sxAction::apply(sxBase*, sxEvent*) {
  return true;
}
