#include <sx/traversal/sxAudioTrait.h>

SX_DEFINE_CLASS(sxAudioTrait)

void sxAudioTrait::apply(sxListener*) const {}
