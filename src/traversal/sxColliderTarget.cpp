#include <sx/traversal/sxColliderTarget.h>
#include <sx/traversal/sxTraitType.h>

SX_IMPLEMENT_CLASS(sxColliderTarget, sxTravTrait, sxTravTraitType)
