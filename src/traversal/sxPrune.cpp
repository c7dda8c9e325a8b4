#include <sx/traversal/sxPrune.h>
#include <sx/traversal/sxTraitType.h>

SX_IMPLEMENT_CLASS(sxPrune, sxTravTrait, sxTravTraitType)
