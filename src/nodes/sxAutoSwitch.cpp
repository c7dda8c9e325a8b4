#include <sx/nodes/sxAutoSwitch.h>
#include <sx/nodes/sxGroupType.h>

SX_IMPLEMENT_CLASS(sxAutoSwitch, sxSwitch, sxGroupType)
