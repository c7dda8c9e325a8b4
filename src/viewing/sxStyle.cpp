#include <sx/nodes/sxGroupType.h>
#include <sx/viewing/sxStyle.h>

SX_DEFINE_CLASS(sxStyle, sxGroupType)
