#pragma once

#include <type_traits>

#include <sx/math/sxVec3.h>
#include <sx/math/sxVec4.h>
#include <sx/math/sxVecOps.h>

// Byte colours. Sums and differences wrap modulo 256; operations with a
// float factor compute in floats and store the low byte of the truncated
// value. Floats in 0..1 convert by multiplying with 255 and truncating
// (1.0 gives 255, 0.999 gives 254, 1.5 gives 126).
template <class D, int N>
class sxUByteVec : public sxVecArith<D, unsigned char, N, unsigned int> {
 protected:
  static unsigned char fromUnit(float v) {
    return sxVecStore(v * 255.0f, static_cast<unsigned char>(0));
  }
  static unsigned char byte(int v) { return static_cast<unsigned char>(v); }
  static unsigned char byteOf(unsigned int packed, int i) {
    return static_cast<unsigned char>(packed >> (8 * i));
  }
};

class sxUByteVec3 : public sxUByteVec<sxUByteVec3, 3> {
 public:
  sxUByteVec3() = default;
  sxUByteVec3(unsigned char r, unsigned char g, unsigned char b) : r(r), g(g), b(b) {}

  // Components as ints so that integer literals pick this form over the
  // float one; the low byte of each is stored.
  void set(int nr, int ng, int nb) { r = byte(nr), g = byte(ng), b = byte(nb); }
  void set(const sxUByteVec3& v) { *this = v; }
  // r from bits 0-7, g from 8-15, b from 16-23.
  void set(unsigned int packed) { set(byteOf(packed, 0), byteOf(packed, 1), byteOf(packed, 2)); }
  void set(float fr, float fg, float fb) { set(fromUnit(fr), fromUnit(fg), fromUnit(fb)); }
  void set(const sxVec3& v) { set(v.x, v.y, v.z); }
  void set(const sxVec4& v) { set(v.x, v.y, v.z); }

  // No range check.
  unsigned char& operator[](int i) { return (&r)[i]; }
  unsigned char operator[](int i) const { return (&r)[i]; }

  unsigned char r, g, b;
};

class sxUByteVec4 : public sxUByteVec<sxUByteVec4, 4> {
 public:
  sxUByteVec4() = default;
  sxUByteVec4(unsigned char r, unsigned char g, unsigned char b, unsigned char a)
      : r(r), g(g), b(b), a(a) {}

  // Components as ints (see sxUByteVec3::set).
  void set(int nr, int ng, int nb, int na) {
    r = byte(nr), g = byte(ng), b = byte(nb), a = byte(na);
  }
  void set(const sxUByteVec4& v) { *this = v; }
  // r from bits 0-7, g from 8-15, b from 16-23, a from 24-31.
  void set(unsigned int packed) {
    set(byteOf(packed, 0), byteOf(packed, 1), byteOf(packed, 2), byteOf(packed, 3));
  }
  void set(float fr, float fg, float fb, float fa) {
    set(fromUnit(fr), fromUnit(fg), fromUnit(fb), fromUnit(fa));
  }
  // Opaque: alpha becomes 255.
  void set(const sxVec3& v) { set(fromUnit(v.x), fromUnit(v.y), fromUnit(v.z), 255); }
  void set(const sxVec4& v) { set(v.x, v.y, v.z, v.w); }

  // No range check.
  unsigned char& operator[](int i) { return (&r)[i]; }
  unsigned char operator[](int i) const { return (&r)[i]; }

  unsigned char r, g, b, a;
};

static_assert(sizeof(sxUByteVec3) == 3 && std::is_standard_layout_v<sxUByteVec3>);
static_assert(sizeof(sxUByteVec4) == 4 && std::is_standard_layout_v<sxUByteVec4>);
