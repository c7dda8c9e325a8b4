#include <sx/nodes/sxListener.h>
#include <sx/traversal/sxAudioLevelScale.h>
#include <sx/traversal/sxTraitType.h>

SX_DEFINE_CLASS(sxAudioLevelScale, sxAudioTraitType)

void sxAudioLevelScale::apply(sxListener* target) const {
  if (!target) return;
  target->setAudioLevelScale(scale);
}

SX_DEFINE_VALUE_TRAIT(sxAudioLevelScale, scale, float)
