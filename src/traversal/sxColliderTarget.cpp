#include <sx/traversal/sxColliderTarget.h>
#include <sx/traversal/sxTraitType.h>

SX_DEFINE_CLASS(sxColliderTarget, sxTravTraitType)
