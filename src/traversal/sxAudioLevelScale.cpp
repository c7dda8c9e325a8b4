#include <sx/traversal/sxAudioLevelScale.h>
#include <sx/traversal/sxTraitType.h>

SX_IMPLEMENT_CLASS(sxAudioLevelScale, sxAudioTrait, sxAudioTraitType)
