#include <sx/collision/sxFence.h>
#include <sx/nodes/sxGroupType.h>

SX_DEFINE_CLASS(sxFence, sxGroupType)
