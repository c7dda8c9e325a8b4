#include <sx/collision/sxBoxFence.h>
#include <sx/nodes/sxGroupType.h>

#include "collision/sxFenceVolume.h"

SX_DEFINE_VOLUME_FENCE(sxBoxFence, sxBox, box, setBox)
