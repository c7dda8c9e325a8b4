#include <sx/traversal/sxColliderTarget.h>
#include <sx/traversal/sxTraitType.h>
#include <sx/traversal/sxTravContext.h>

SX_DEFINE_CLASS(sxColliderTarget, sxTravTraitType)

void sxColliderTarget::apply(sxTravContext* context) const {
  if (!context) return;
  context->setFlags((context->getFlags() & ~0x70000u) | targets);
}

SX_DEFINE_VALUE_TRAIT(sxColliderTarget, targets, int)
