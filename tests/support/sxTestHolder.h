#pragma once

#include <sx/sxCore.h>

// A test class that refers to a shared array: the sxBase fields, then the
// array as a reference.
class sxTestHolder : public sxBase {
 public:
  SX_DECLARE_CLASS(sxTestHolder)
  sxTestHolder() { initInstance(); }
  sxTestHolder(const sxTestHolder& source) : sxBase(source) {
    setArray(source.array);
    initInstance();
  }
  ~sxTestHolder() override { setArray(nullptr); }

  sxEntry* read(sxFile* file, sxEntry* entry) override;
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

  void setArray(sxArray* a) {
    if (a) a->ref();
    if (array) array->unRef();
    array = a;
  }
  sxArray* getArray() const { return array; }

 private:
  sxArray* array = nullptr;
};
