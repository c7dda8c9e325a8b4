#include <sx/nodes/sxGroupType.h>
#include <sx/viewing/sxScene.h>

SX_IMPLEMENT_CLASS(sxScene, sxStyle, sxGroupType)
