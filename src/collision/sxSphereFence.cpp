#include <sx/collision/sxSphereFence.h>
#include <sx/nodes/sxGroupType.h>

#include "collision/sxFenceVolume.h"

SX_DEFINE_VOLUME_FENCE(sxSphereFence, sxSphere, sphere, setSphere)
