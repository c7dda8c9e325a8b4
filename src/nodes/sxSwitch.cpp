#include <sx/nodes/sxGroupType.h>
#include <sx/nodes/sxSwitch.h>

SX_DEFINE_CLASS(sxSwitch, sxGroupType)
