#include <sx/collision/sxSphereFence.h>
#include <sx/nodes/sxGroupType.h>

SX_DEFINE_CLASS(sxSphereFence, sxGroupType)
