#include <sx/traversal/sxTraitType.h>
#include <sx/traversal/sxTransition.h>

SX_DEFINE_CLASS(sxTransition, sxTravTraitType)
