#include <sx/nodes/sxGroupType.h>
#include <sx/viewing/sxGeometry.h>

SX_IMPLEMENT_CLASS(sxGeometry, sxGroup, sxGroupType)
