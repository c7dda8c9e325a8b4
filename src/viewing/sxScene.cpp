#include <sx/nodes/sxGroupType.h>
#include <sx/viewing/sxScene.h>

SX_DEFINE_CLASS(sxScene, sxGroupType)
