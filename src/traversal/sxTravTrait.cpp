#include <sx/traversal/sxTravTrait.h>

SX_DEFINE_CLASS(sxTravTrait)

void sxTravTrait::apply(sxTravContext*) const {}
