#include <sx/traversal/sxTrait.h>

SX_DEFINE_CLASS(sxTrait)
