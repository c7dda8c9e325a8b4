#include <sx/traversal/sxTrait.h>

SX_IMPLEMENT_CLASS(sxTrait, sxBase, sxType)
