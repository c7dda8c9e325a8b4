#include <sx/nodes/sxListener.h>
#include <sx/traversal/sxAudioPriorityScale.h>
#include <sx/traversal/sxTraitType.h>

SX_DEFINE_CLASS(sxAudioPriorityScale, sxAudioTraitType)

void sxAudioPriorityScale::apply(sxListener* target) const {
  if (!target) return;
  target->setPriorityScale(scale);
}

SX_DEFINE_VALUE_TRAIT(sxAudioPriorityScale, scale, float)
