#include <sx/collision/sxFence.h>
#include <sx/nodes/sxGroupType.h>

SX_IMPLEMENT_CLASS(sxFence, sxGroup, sxGroupType)
