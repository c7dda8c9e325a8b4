#include <sx/traversal/sxCull.h>
#include <sx/traversal/sxTraitType.h>
#include <sx/traversal/sxTravContext.h>

SX_DEFINE_CLASS(sxCull, sxTravTraitType)

void sxCull::apply(sxTravContext* context) const {
  if (!context) return;
  context->setFlags((context->getFlags() & ~0x5500u) | mask);
}

bool sxCull::isEqual(const sxTrait* other) const {
  return isEqualValue(other, &sxCull::mask);
}

sxEntry* sxCull::write(sxFile* file, sxEntry* entry) const {
  return writeWithValue(file, entry, int(mask));
}

sxEntry* sxCull::read(sxFile* file, sxEntry* entry) {
  int value = int(mask);
  sxEntry* e = readWithValue(file, entry, value);
  mask = unsigned(value);
  return e;
}
