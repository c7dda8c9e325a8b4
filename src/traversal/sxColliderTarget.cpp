#include <sx/traversal/sxColliderTarget.h>
#include <sx/traversal/sxTraitType.h>
#include <sx/traversal/sxTravContext.h>

SX_DEFINE_CLASS(sxColliderTarget, sxTravTraitType)

void sxColliderTarget::apply(sxTravContext* context) const {
  if (!context) return;
  context->setFlags((context->getFlags() & ~0x70000u) | targets);
}

bool sxColliderTarget::isEqual(const sxTrait* other) const {
  return isEqualValue(other, &sxColliderTarget::targets);
}

sxEntry* sxColliderTarget::write(sxFile* file, sxEntry* entry) const {
  return writeWithValue(file, entry, int(targets));
}

sxEntry* sxColliderTarget::read(sxFile* file, sxEntry* entry) {
  int value = int(targets);
  sxEntry* e = readWithValue(file, entry, value);
  targets = unsigned(value);
  return e;
}
