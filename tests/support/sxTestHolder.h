#pragma once

#include <sx/sxCore.h>

// A test class that refers to a shared array: the sxBase fields, then the
// array as a reference (-1 for none).
class sxTestHolder : public sxBase {
 public:
  SX_DECLARE_CLASS(sxTestHolder)
  sxTestHolder() { initInstance(); }
  sxTestHolder(const sxTestHolder& source) : sxBase(source) {
    setArray(source.array);
    initInstance();
  }
  ~sxTestHolder() override { setArray(nullptr); }

  sxEntry* read(sxFile* file, sxEntry* entry) override {
    sxEntry* e = sxBase::read(file, entry);
    if (e) setArray(sxArray::readRef(file, e));
    return e;
  }
  sxEntry* write(sxFile* file, sxEntry* entry) const override {
    sxEntry* created = sxBase::write(file, entry);
    sxEntry* e = entry ? entry : created;
    if (e && array)
      array->writeRef(file, e);
    else if (e)
      e->writeInt(-1);
    return created;
  }

  void setArray(sxArray* a) {
    if (a) a->ref();
    if (array) array->unRef();
    array = a;
  }
  sxArray* getArray() const { return array; }

 private:
  sxArray* array = nullptr;
};
