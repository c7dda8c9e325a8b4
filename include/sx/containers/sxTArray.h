#pragma once

#include <sx/containers/sxArray.h>

// The element type code of T, for the element types of the library (the
// vector types opt in from <sx/math/sxVecArrays.h>). A further value type of
// matching size opts in with SX_ARRAY_ELEMENT.
template <class T>
struct sxArrayElement;

#define SX_ARRAY_ELEMENT(T, code)                                                             \
  template <>                                                                                 \
  struct sxArrayElement<T> {                                                                  \
    static constexpr sxArray::DATA_TYPE type = code;                                          \
    static_assert(sizeof(T) == sxArray::getElemSize(code), "element type of the wrong size"); \
  }

SX_ARRAY_ELEMENT(unsigned short, sxArray::TYPE_USHORT);
SX_ARRAY_ELEMENT(int, sxArray::TYPE_INT);
SX_ARRAY_ELEMENT(float, sxArray::TYPE_FLOAT);
SX_ARRAY_ELEMENT(double, sxArray::TYPE_DOUBLE);

// A thin typed view of an array's elements. It holds no reference; the
// array must outlive it. A view of an array of another element type (or of
// none) is empty.
template <class T>
class sxTArray {
 public:
  static constexpr sxArray::DATA_TYPE dataType = sxArrayElement<T>::type;

  explicit sxTArray(sxArray* array = nullptr)
      : array(array && array->getType() == dataType ? array : nullptr) {}

  sxArray* getArray() const { return array; }
  bool isValid() const { return array != nullptr; }
  // The allocated elements (the capacity for growable arrays).
  int getNum() const {
    if (!array || array->getNum() < 1) return 0;
    unsigned stored = array->getSize() / unsigned(sizeof(T));
    return unsigned(array->getNum()) < stored ? array->getNum() : int(stored);
  }
  T* getData() const { return array ? static_cast<T*>(array->getData()) : nullptr; }
  // Unchecked: 0 <= i < getNum().
  T& operator[](int i) const { return getData()[i]; }
  T* begin() const { return getData(); }
  T* end() const { return getData() + getNum(); }

 private:
  sxArray* array;
};
