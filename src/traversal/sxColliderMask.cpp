#include <sx/traversal/sxColliderMask.h>
#include <sx/traversal/sxTraitType.h>

SX_IMPLEMENT_CLASS(sxColliderMask, sxTravTrait, sxTravTraitType)
