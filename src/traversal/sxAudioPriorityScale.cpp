#include <sx/traversal/sxAudioPriorityScale.h>
#include <sx/traversal/sxTraitType.h>

SX_DEFINE_CLASS(sxAudioPriorityScale, sxAudioTraitType)
