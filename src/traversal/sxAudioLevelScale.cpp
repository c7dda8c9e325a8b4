#include <sx/traversal/sxAudioLevelScale.h>
#include <sx/traversal/sxTraitType.h>

SX_DEFINE_CLASS(sxAudioLevelScale, sxAudioTraitType)
