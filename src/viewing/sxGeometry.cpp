#include <sx/nodes/sxGroupType.h>
#include <sx/viewing/sxGeometry.h>

SX_DEFINE_CLASS(sxGeometry, sxGroupType)
