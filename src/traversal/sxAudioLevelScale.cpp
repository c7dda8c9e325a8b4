#include <sx/nodes/sxListener.h>
#include <sx/traversal/sxAudioLevelScale.h>
#include <sx/traversal/sxTraitType.h>

SX_DEFINE_CLASS(sxAudioLevelScale, sxAudioTraitType)

void sxAudioLevelScale::apply(sxListener* target) const {
  if (!target) return;
  target->setAudioLevelScale(scale);
}

bool sxAudioLevelScale::isEqual(const sxTrait* other) const {
  return isEqualValue(other, &sxAudioLevelScale::scale);
}

sxEntry* sxAudioLevelScale::write(sxFile* file, sxEntry* entry) const {
  return writeWithValue(file, entry, scale);
}

sxEntry* sxAudioLevelScale::read(sxFile* file, sxEntry* entry) {
  return readWithValue(file, entry, scale);
}
