#include <sx/traversal/sxTraitStack.h>

SX_DEFINE_CLASS(sxTraitStack)
