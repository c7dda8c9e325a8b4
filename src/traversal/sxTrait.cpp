#include <type_traits>

#include <sx/persist/sxEntry.h>
#include <sx/persist/sxFile.h>
#include <sx/traversal/sxTrait.h>

SX_DEFINE_CLASS(sxTrait)

bool sxTrait::isEqual(const sxTrait* other) const {
  return other && other->getType() == getType() && other->applyMode == applyMode &&
         other->shareable == shareable;
}

sxEntry* sxTrait::write(sxFile* file, sxEntry* entry) const {
  sxEntry* created = sxBase::write(file, entry);
  sxEntry* e = entry ? entry : created;
  if (e) {
    e->writeShort(applyMode);
    e->writeShort(shareable);
  }
  return created;
}

sxEntry* sxTrait::read(sxFile* file, sxEntry* entry) {
  sxEntry* e = sxBase::read(file, entry);
  if (e) {
    applyMode = e->readShort();
    shareable = e->readShort();
  }
  return e;
}

namespace {
template <class V>
sxEntry* writeTraitValue(const sxTrait* t, sxFile* file, sxEntry* entry, V value) {
  sxEntry* created = t->sxTrait::write(file, entry);
  sxEntry* e = entry ? entry : created;
  if (e) {
    if constexpr (std::is_same_v<V, float>)
      e->writeFloat(value);
    else
      e->writeInt(value);
  }
  return created;
}
}  // namespace

sxEntry* sxTrait::writeWithValue(sxFile* file, sxEntry* entry, int value) const {
  return writeTraitValue(this, file, entry, value);
}

sxEntry* sxTrait::writeWithValue(sxFile* file, sxEntry* entry, float value) const {
  return writeTraitValue(this, file, entry, value);
}

sxEntry* sxTrait::readWithValue(sxFile* file, sxEntry* entry, int& value) {
  sxEntry* e = sxTrait::read(file, entry);
  if (e) value = e->readInt();
  return e;
}

sxEntry* sxTrait::readWithValue(sxFile* file, sxEntry* entry, float& value) {
  sxEntry* e = sxTrait::read(file, entry);
  if (e) value = e->readFloat();
  return e;
}
