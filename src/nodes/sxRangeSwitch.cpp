#include <sx/nodes/sxGroupType.h>
#include <sx/nodes/sxRangeSwitch.h>

SX_DEFINE_CLASS(sxRangeSwitch, sxGroupType)
