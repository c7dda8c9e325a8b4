#include <sx/nodes/sxGroupType.h>
#include <sx/nodes/sxRangeSwitch.h>

SX_IMPLEMENT_CLASS(sxRangeSwitch, sxSwitch, sxGroupType)
