#include <sx/collision/sxSphereFence.h>
#include <sx/nodes/sxGroupType.h>

SX_IMPLEMENT_CLASS(sxSphereFence, sxFence, sxGroupType)
