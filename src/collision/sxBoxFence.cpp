#include <sx/collision/sxBoxFence.h>
#include <sx/nodes/sxGroupType.h>

SX_IMPLEMENT_CLASS(sxBoxFence, sxFence, sxGroupType)
