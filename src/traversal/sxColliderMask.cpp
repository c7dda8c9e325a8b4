#include <sx/traversal/sxColliderMask.h>
#include <sx/traversal/sxTraitType.h>
#include <sx/traversal/sxTravContext.h>

SX_DEFINE_CLASS(sxColliderMask, sxTravTraitType)

void sxColliderMask::apply(sxTravContext* context) const {
  if (!context) return;
  context->setColliderMask(mask);
}

SX_DEFINE_VALUE_TRAIT(sxColliderMask, mask, int)
