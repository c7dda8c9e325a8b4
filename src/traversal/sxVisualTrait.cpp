#include <sx/traversal/sxVisualTrait.h>

SX_IMPLEMENT_CLASS(sxVisualTrait, sxTrait, sxType)
