#include <sx/traversal/sxAudioPriorityScale.h>
#include <sx/traversal/sxTraitType.h>

SX_IMPLEMENT_CLASS(sxAudioPriorityScale, sxAudioTrait, sxAudioTraitType)
