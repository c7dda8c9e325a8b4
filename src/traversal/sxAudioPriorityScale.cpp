#include <sx/nodes/sxListener.h>
#include <sx/traversal/sxAudioPriorityScale.h>
#include <sx/traversal/sxTraitType.h>

SX_DEFINE_CLASS(sxAudioPriorityScale, sxAudioTraitType)

void sxAudioPriorityScale::apply(sxListener* target) const {
  if (!target) return;
  target->setPriorityScale(scale);
}

bool sxAudioPriorityScale::isEqual(const sxTrait* other) const {
  return isEqualValue(other, &sxAudioPriorityScale::scale);
}

sxEntry* sxAudioPriorityScale::write(sxFile* file, sxEntry* entry) const {
  return writeWithValue(file, entry, scale);
}

sxEntry* sxAudioPriorityScale::read(sxFile* file, sxEntry* entry) {
  return readWithValue(file, entry, scale);
}
