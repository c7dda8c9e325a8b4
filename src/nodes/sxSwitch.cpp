#include <sx/nodes/sxGroupType.h>
#include <sx/nodes/sxSwitch.h>

SX_IMPLEMENT_CLASS(sxSwitch, sxGroup, sxGroupType)
