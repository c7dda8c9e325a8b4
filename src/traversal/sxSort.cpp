#include <sx/traversal/sxSort.h>
#include <sx/traversal/sxTraitType.h>

SX_DEFINE_CLASS(sxSort, sxTravTraitType)
