#include <sx/nodes/sxGroupType.h>
#include <sx/nodes/sxTransform.h>

SX_DEFINE_CLASS(sxTransform, sxGroupType)
