#include <sx/traversal/sxPrune.h>
#include <sx/traversal/sxTraitType.h>

SX_DEFINE_CLASS(sxPrune, sxTravTraitType)
