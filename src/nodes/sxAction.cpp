#include <sx/nodes/sxAction.h>

SX_IMPLEMENT_CLASS(sxAction, sxBase, sxType)
