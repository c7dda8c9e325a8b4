#include <sx/traversal/sxCull.h>
#include <sx/traversal/sxTraitType.h>

SX_IMPLEMENT_CLASS(sxCull, sxTravTrait, sxTravTraitType)
