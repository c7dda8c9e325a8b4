#include <sx/traversal/sxTraverser.h>

SX_IMPLEMENT_CLASS(sxTraverser, sxBase, sxType)
