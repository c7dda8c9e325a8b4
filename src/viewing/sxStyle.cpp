#include <sx/nodes/sxGroupType.h>
#include <sx/viewing/sxStyle.h>

SX_IMPLEMENT_CLASS(sxStyle, sxGroup, sxGroupType)
