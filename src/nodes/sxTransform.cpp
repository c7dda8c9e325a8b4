#include <sx/nodes/sxGroupType.h>
#include <sx/nodes/sxTransform.h>

SX_IMPLEMENT_CLASS(sxTransform, sxGroup, sxGroupType)
