#include <sx/traversal/sxSort.h>
#include <sx/traversal/sxTraitType.h>
#include <sx/traversal/sxTravContext.h>

SX_DEFINE_CLASS(sxSort, sxTravTraitType)

void sxSort::apply(sxTravContext* context) const {
  if (!context) return;
  context->setFlags((context->getFlags() & ~0x300000u) | mask);
}

SX_DEFINE_VALUE_TRAIT(sxSort, mask, int)
