#include <sx/nodes/sxGroupType.h>
#include <sx/viewing/sxModel.h>

SX_IMPLEMENT_CLASS(sxModel, sxTransform, sxGroupType)
