#include <sx/traversal/sxSort.h>
#include <sx/traversal/sxTraitType.h>

SX_IMPLEMENT_CLASS(sxSort, sxTravTrait, sxTravTraitType)
