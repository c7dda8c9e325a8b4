#include <sx/nodes/sxEvent.h>

SX_IMPLEMENT_CLASS(sxEvent, sxBase, sxType)
