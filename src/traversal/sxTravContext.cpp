#include <sx/traversal/sxTravContext.h>

SX_DEFINE_CLASS(sxTravContext)
