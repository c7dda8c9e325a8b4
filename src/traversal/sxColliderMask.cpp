#include <sx/traversal/sxColliderMask.h>
#include <sx/traversal/sxTraitType.h>
#include <sx/traversal/sxTravContext.h>

SX_DEFINE_CLASS(sxColliderMask, sxTravTraitType)

void sxColliderMask::apply(sxTravContext* context) const {
  if (!context) return;
  context->setColliderMask(mask);
}

bool sxColliderMask::isEqual(const sxTrait* other) const {
  return isEqualValue(other, &sxColliderMask::mask);
}

sxEntry* sxColliderMask::write(sxFile* file, sxEntry* entry) const {
  return writeWithValue(file, entry, int(mask));
}

sxEntry* sxColliderMask::read(sxFile* file, sxEntry* entry) {
  int value = int(mask);
  sxEntry* e = readWithValue(file, entry, value);
  mask = unsigned(value);
  return e;
}
