#include "support/sxTestHolder.h"

#include <sx/sxCore.h>

SX_IMPLEMENT_CLASS(sxTestHolder, sxBase, sxType)

sxTestHolder::sxTestHolder() {
  initInstance();
}

sxTestHolder::sxTestHolder(const sxTestHolder& source) : sxBase(source) {
  setArray(source.array);
  initInstance();
}

sxTestHolder::~sxTestHolder() {
  setArray(nullptr);
}

void sxTestHolder::setArray(sxArray* a) {
  if (a) a->ref();
  if (array) array->unRef();
  array = a;
}

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
