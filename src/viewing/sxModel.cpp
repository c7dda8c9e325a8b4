#include <sx/nodes/sxGroupType.h>
#include <sx/viewing/sxModel.h>

SX_DEFINE_CLASS(sxModel, sxGroupType)
