#pragma once

#include <utility>

#include <sx/math/sxScalar.h>
#include <sx/persist/sxEntry.h>

// Calls f(0) ... f(N - 1), unrolled at compile time.
template <int N, class F>
inline void sxForEachComponent(F&& f) {
  [&]<int... I>(std::integer_sequence<int, I...>) {
    (f(I), ...);
  }
  (std::make_integer_sequence<int, N>{});
}

// Storing a computed float into a component. Byte components take the low
// eight bits of the value truncated toward zero: no rounding, no clamping
// (1.5 gives 126). Values beyond the int range are multiples of 256 as
// floats, so their low byte is 0; NaN stores 0 too.
inline float sxVecStore(float v, float) {
  return v;
}
inline unsigned char sxVecStore(float v, unsigned char) {
  if (!(v > -2147483648.0f && v < 2147483648.0f)) return 0;
  return static_cast<unsigned char>(static_cast<int>(v));
}

// How components go into a scene file entry: float components as
// consecutive floats (aligned, and byte-swapped when read on a machine of
// the other order), byte components as one raw chunk (no alignment, no
// swapping).
inline void sxVecWrite(sxEntry* e, const float* v, int n) {
  e->writeFloats(v, n);
}
inline void sxVecWrite(sxEntry* e, const unsigned char* v, int n) {
  e->writeChunk(v, n);
}
inline void sxVecRead(sxEntry* e, float* v, int n) {
  e->readFloats(v, n);
}
inline void sxVecRead(sxEntry* e, unsigned char* v, int n) {
  e->readChunk(v, n);
}

// The operations that float vectors and byte colours share. D is the vector
// type (which provides operator[]), T its component type, Tol the type in
// which almostEqual compares. Every form that writes into the object reads
// each component before writing it, so an argument may be the object itself.
template <class D, class T, int N, class Tol>
class sxVecArith {
 public:
  static constexpr int size = N;

  void add(const D& a, const D& b) {
    each([&](int i) { self()[i] = static_cast<T>(a[i] + b[i]); });
  }
  void add(const D& v) { add(self(), v); }
  void sub(const D& a, const D& b) {
    each([&](int i) { self()[i] = static_cast<T>(a[i] - b[i]); });
  }
  void sub(const D& v) { sub(self(), v); }
  void scale(float s, const D& v) {
    each([&](int i) { self()[i] = sxVecStore(s * v[i], T()); });
  }
  void scale(float s) { scale(s, self()); }
  // a + s * b
  void addScaled(const D& a, float s, const D& b) {
    each([&](int i) { self()[i] = sxVecStore(a[i] + s * b[i], T()); });
  }
  void addScaled(float s, const D& v) { addScaled(self(), s, v); }
  // s * a + t * b
  void combine(float s, const D& a, float t, const D& b) {
    each([&](int i) { self()[i] = sxVecStore(s * a[i] + t * b[i], T()); });
  }

  // True when every component c satisfies v.c - tol <= c <= v.c + tol,
  // computed in Tol arithmetic (for bytes unsigned, so v.c - tol wraps).
  bool almostEqual(const D& v, Tol tol) const {
    return all([&](int i) {
      const Tol c = self()[i];
      const Tol o = v[i];
      return o - tol <= c && c <= o + tol;
    });
  }
  // Hidden friends on the derived type, so that C++20's reversed candidates
  // do not make a == b ambiguous.
  friend bool operator==(const D& a, const D& b) {
    return sxVecArith::all([&](int i) { return a[i] == b[i]; });
  }
  friend bool operator!=(const D& a, const D& b) { return !(a == b); }

  D operator+(const D& v) const {
    return make([&](D& r) { r.add(self(), v); });
  }
  D operator-(const D& v) const {
    return make([&](D& r) { r.sub(self(), v); });
  }
  D operator*(float s) const {
    return make([&](D& r) { r.scale(s, self()); });
  }
  D operator/(float s) const {
    return make([&](D& r) { r.scale(1.0f / s, self()); });
  }
  D& operator+=(const D& v) { return add(v), self(); }
  D& operator-=(const D& v) { return sub(v), self(); }
  D& operator*=(float s) { return scale(s), self(); }
  D& operator/=(float s) { return scale(1.0f / s), self(); }

  // The components into or out of a scene file entry; nothing happens
  // without one. Past the end of the data a float component reads as -1; a
  // byte colour takes the bytes that remain and keeps the rest.
  void write(sxEntry* entry) const {
    if (!entry) return;
    T v[N];
    each([&](int i) { v[i] = self()[i]; });
    sxVecWrite(entry, v, N);
  }
  void read(sxEntry* entry) {
    if (entry) sxVecRead(entry, &self()[0], N);
  }

 protected:
  D& self() { return static_cast<D&>(*this); }
  const D& self() const { return static_cast<const D&>(*this); }
  template <class F>
  static void each(F&& f) {
    sxForEachComponent<N>(f);
  }
  template <class F>
  static bool all(F&& f) {
    return [&]<int... I>(std::integer_sequence<int, I...>) {
      return (f(I) && ...);
    }
    (std::make_integer_sequence<int, N>{});
  }
  template <class F>
  static D make(F&& f) {
    D r;
    f(r);
    return r;
  }
};

// The float vector family: sxVec2, sxVec3 and sxVec4.
template <class D, int N>
class sxFloatVec : public sxVecArith<D, float, N, float> {
  using Base = sxVecArith<D, float, N, float>;
  using Base::each;
  using Base::self;

 public:
  void set(const float* v) {
    each([&](int i) { self()[i] = v[i]; });
  }
  void negate(const D& v) {
    each([&](int i) { self()[i] = -v[i]; });
  }
  float dot(const D& v) const {
    float sum = 0.0f;
    each([&](int i) { sum += self()[i] * v[i]; });
    return sum;
  }
  float sqrLength() const { return dot(self()); }
  float length() const { return sxSqrt(sqrLength()); }
  float sqrDistance(const D& v) const { return (self() - v).sqrLength(); }
  float distance(const D& v) const { return sxSqrt(sqrDistance(v)); }
  D operator-() const {
    return Base::make([&](D& r) { r.negate(self()); });
  }
  using Base::operator-;

  // Scales to unit length by the reciprocal and returns the length before;
  // a vector shorter than 1e-6 becomes all zeros (the length is still
  // returned). sxVec3 replaces this with its unit-shortcut rule.
  float normalize() {
    const float len = length();
    if (len < 1e-6f) {
      each([&](int i) { self()[i] = 0.0f; });
    } else {
      Base::scale(1.0f / len);
    }
    return len;
  }
};
