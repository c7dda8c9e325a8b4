#include <sx/collision/sxBoxFence.h>
#include <sx/nodes/sxGroupType.h>

SX_DEFINE_CLASS(sxBoxFence, sxGroupType)
