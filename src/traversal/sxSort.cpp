#include <sx/traversal/sxSort.h>
#include <sx/traversal/sxTraitType.h>
#include <sx/traversal/sxTravContext.h>

SX_DEFINE_CLASS(sxSort, sxTravTraitType)

void sxSort::apply(sxTravContext* context) const {
  if (!context) return;
  context->setFlags((context->getFlags() & ~0x300000u) | mask);
}

bool sxSort::isEqual(const sxTrait* other) const {
  return isEqualValue(other, &sxSort::mask);
}

sxEntry* sxSort::write(sxFile* file, sxEntry* entry) const {
  return writeWithValue(file, entry, int(mask));
}

sxEntry* sxSort::read(sxFile* file, sxEntry* entry) {
  int value = int(mask);
  sxEntry* e = readWithValue(file, entry, value);
  mask = unsigned(value);
  return e;
}
