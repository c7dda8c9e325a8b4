#include <sx/traversal/sxCull.h>
#include <sx/traversal/sxTraitType.h>

SX_DEFINE_CLASS(sxCull, sxTravTraitType)
