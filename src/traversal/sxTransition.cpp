#include <sx/persist/sxEntry.h>
#include <sx/traversal/sxTraitType.h>
#include <sx/traversal/sxTransition.h>
#include <sx/traversal/sxTravContext.h>

SX_DEFINE_CLASS(sxTransition, sxTravTraitType)

void sxTransition::apply(sxTravContext* context) const {
  if (!context) return;
  context->setTransitionScale(scale);
  context->setTransitionMode(mode);
}

bool sxTransition::isEqual(const sxTrait* other) const {
  return isEqualValue(other, &sxTransition::scale) &&
         static_cast<const sxTransition*>(other)->mode == mode;
}

sxEntry* sxTransition::write(sxFile* file, sxEntry* entry) const {
  sxEntry* created = writeWithValue(file, entry, scale);
  sxEntry* e = entry ? entry : created;
  if (e) e->writeInt(mode);
  return created;
}

// A file may hold any mode; one the traversal does not know counts as none.
sxEntry* sxTransition::read(sxFile* file, sxEntry* entry) {
  sxEntry* e = readWithValue(file, entry, scale);
  if (e) {
    const int m = e->readInt();
    mode = m >= MODE_NONE && m <= MODE_FADE_OUT ? MODE(m) : MODE_NONE;
  }
  return e;
}
