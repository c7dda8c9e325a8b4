#include <sx/traversal/sxCull.h>
#include <sx/traversal/sxTraitType.h>
#include <sx/traversal/sxTravContext.h>

SX_DEFINE_CLASS(sxCull, sxTravTraitType)

void sxCull::apply(sxTravContext* context) const {
  if (!context) return;
  context->setFlags((context->getFlags() & ~0x5500u) | mask);
}

SX_DEFINE_VALUE_TRAIT(sxCull, mask, int)
