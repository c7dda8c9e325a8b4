#include <sx/traversal/sxTravTrait.h>

SX_IMPLEMENT_CLASS(sxTravTrait, sxTrait, sxType)
