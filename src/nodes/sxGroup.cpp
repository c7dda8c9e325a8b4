#include <sx/nodes/sxGroup.h>
#include <sx/nodes/sxGroupType.h>

SX_DEFINE_CLASS(sxGroup, sxGroupType)
