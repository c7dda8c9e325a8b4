#include <sx/traversal/sxColliderMask.h>
#include <sx/traversal/sxTraitType.h>

SX_DEFINE_CLASS(sxColliderMask, sxTravTraitType)
