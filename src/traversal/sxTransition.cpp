#include <sx/traversal/sxTraitType.h>
#include <sx/traversal/sxTransition.h>

SX_IMPLEMENT_CLASS(sxTransition, sxTravTrait, sxTravTraitType)
