#pragma once

#include <sx/containers/sxArray.h>

// The element type code of T. Specialised for the element types the
// library knows; a value type of matching size opts in with its own
// specialisation next to its definition, for example
//     template <> struct sxArrayElement<sxVec3> {
//       static constexpr sxArray::DATA_TYPE type = sxArray::TYPE_VEC3;
//     };
template <class T>
struct sxArrayElement;

template <>
struct sxArrayElement<unsigned short> {
  static constexpr sxArray::DATA_TYPE type = sxArray::TYPE_USHORT;
};
template <>
struct sxArrayElement<int> {
  static constexpr sxArray::DATA_TYPE type = sxArray::TYPE_INT;
};
template <>
struct sxArrayElement<float> {
  static constexpr sxArray::DATA_TYPE type = sxArray::TYPE_FLOAT;
};
template <>
struct sxArrayElement<double> {
  static constexpr sxArray::DATA_TYPE type = sxArray::TYPE_DOUBLE;
};

// The raw element layouts, for code that needs them without the math types.
struct sxArrayUByte3 {
  unsigned char v[3];
};
struct sxArrayUByte4 {
  unsigned char v[4];
};
struct sxArrayFloat2 {
  float v[2];
};
struct sxArrayFloat3 {
  float v[3];
};
struct sxArrayFloat4 {
  float v[4];
};
template <>
struct sxArrayElement<sxArrayUByte3> {
  static constexpr sxArray::DATA_TYPE type = sxArray::TYPE_UBYTEVEC3;
};
template <>
struct sxArrayElement<sxArrayUByte4> {
  static constexpr sxArray::DATA_TYPE type = sxArray::TYPE_UBYTEVEC4;
};
template <>
struct sxArrayElement<sxArrayFloat2> {
  static constexpr sxArray::DATA_TYPE type = sxArray::TYPE_VEC2;
};
template <>
struct sxArrayElement<sxArrayFloat3> {
  static constexpr sxArray::DATA_TYPE type = sxArray::TYPE_VEC3;
};
template <>
struct sxArrayElement<sxArrayFloat4> {
  static constexpr sxArray::DATA_TYPE type = sxArray::TYPE_VEC4;
};

// A thin typed view of an array's elements. It holds no reference; the
// array must outlive it. A view of an array of another element type (or of
// none) is empty.
template <class T>
class sxTArray {
 public:
  static constexpr sxArray::DATA_TYPE dataType = sxArrayElement<T>::type;

  explicit sxTArray(sxArray* array = nullptr)
      : array(array && array->getType() == dataType ? array : nullptr) {
    static_assert(sizeof(T) == sxArray::getElemSize(dataType), "element type of the wrong size");
  }

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
