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

bool sxPrune::isEqual(const sxTrait* other) const {
  return isEqualValue(other, &sxPrune::enabled);
}

sxEntry* sxPrune::write(sxFile* file, sxEntry* entry) const {
  return writeWithValue(file, entry, enabled ? 1 : 0);
}

sxEntry* sxPrune::read(sxFile* file, sxEntry* entry) {
  int value = enabled ? 1 : 0;
  sxEntry* e = readWithValue(file, entry, value);
  enabled = value != 0;
  return e;
}
