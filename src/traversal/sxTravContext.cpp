#include <sx/traversal/sxTravContext.h>

SX_IMPLEMENT_CLASS(sxTravContext, sxBase, sxType)
