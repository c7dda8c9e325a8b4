#include "support/sxTestHolder.h"

SX_IMPLEMENT_CLASS(sxTestHolder, sxBase, sxType)

sxEntry* sxTestHolder::write(sxFile* file, sxEntry* entry) const {
  sxEntry* created = sxBase::write(file, entry);
  sxEntry* e = entry ? entry : created;
  if (!e) return nullptr;
  if (array)
    array->writeRef(file, e);
  else
    e->writeInt(-1);
  return created;
}

sxEntry* sxTestHolder::read(sxFile* file, sxEntry* entry) {
  sxEntry* e = sxBase::read(file, entry);
  if (!e) return nullptr;
  setArray(sxArray::readRef(file, e));
  return e;
}
