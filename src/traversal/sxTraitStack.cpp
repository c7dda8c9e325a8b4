#include <sx/traversal/sxTraitStack.h>

SX_IMPLEMENT_CLASS(sxTraitStack, sxBase, sxType)
