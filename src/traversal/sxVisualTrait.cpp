#include <sx/traversal/sxVisualTrait.h>

SX_DEFINE_CLASS(sxVisualTrait)

void sxVisualTrait::apply(sxCamera*) const {}
