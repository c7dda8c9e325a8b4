#include <sx/traversal/sxTraverser.h>

SX_DEFINE_CLASS(sxTraverser)
