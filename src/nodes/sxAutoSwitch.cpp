#include <sx/nodes/sxAutoSwitch.h>
#include <sx/nodes/sxGroupType.h>

SX_DEFINE_CLASS(sxAutoSwitch, sxGroupType)
