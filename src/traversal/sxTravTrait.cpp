#include <sx/traversal/sxTravTrait.h>

SX_DEFINE_CLASS(sxTravTrait)
