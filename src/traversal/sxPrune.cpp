#include <sx/traversal/sxPrune.h>
#include <sx/traversal/sxTraitType.h>
#include <sx/traversal/sxTravContext.h>

SX_DEFINE_CLASS(sxPrune, sxTravTraitType)

void sxPrune::apply(sxTravContext* context) const {
  if (!context) return;
  if (enabled)
    context->addFlags(0x0080u);
  else
    context->removeFlags(0x0080u);
}

SX_DEFINE_VALUE_TRAIT(sxPrune, enabled, int)
