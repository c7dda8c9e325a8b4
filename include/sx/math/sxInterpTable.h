#pragma once

#include <cstring>
#include <type_traits>

#include <sx/math/sxQuat.h>
#include <sx/math/sxVec3.h>
#include <sx/math/sxVec4.h>
#include <sx/object/sxMemory.h>
#include <sx/persist/sxEntry.h>
#include <sx/sxExport.h>

// The blend of two keyed values by the fraction f of the way from a to b.
inline float sxInterpBlend(float f, float a, float b) {
  return (1.0f - f) * a + f * b;
}
inline sxVec3 sxInterpBlend(float f, const sxVec3& a, const sxVec3& b) {
  sxVec3 r;
  r.combine(1.0f - f, a, f, b);
  return r;
}
inline sxVec4 sxInterpBlend(float f, const sxVec4& a, const sxVec4& b) {
  sxVec4 r;
  r.combine(1.0f - f, a, f, b);
  return r;
}
inline sxQuat sxInterpBlend(float f, const sxQuat& a, const sxQuat& b) {
  sxQuat r;
  r.slerp(f, a, b);
  return r;
}

// Keys in ascending order with a value each, read back by piecewise-linear
// interpolation. The segment of the previous lookup is remembered, so a
// parameter that moves forward, as time does, is found without a search.
template <class V>
class sxInterpTable {
  static_assert(std::is_trivially_copyable_v<V>, "values are moved as bytes");
  static_assert(sizeof(V) % sizeof(float) == 0, "values are stored as their floats");

  // A key as stored: the param, then the value's floats in order.
  static constexpr int recordFloats = 1 + static_cast<int>(sizeof(V) / sizeof(float));

 public:
  sxInterpTable() : sxInterpTable(2) {}
  // A capacity below 1 is taken as 1, so that doubling can grow it.
  explicit sxInterpTable(int capacity)
      : count(0),
        params(nullptr),
        values(nullptr),
        last(0),
        capacity(capacity < 1 ? 1u : static_cast<unsigned int>(capacity)) {
    allocate();
  }
  sxInterpTable(const sxInterpTable& other) : sxInterpTable(static_cast<int>(other.capacity)) {
    addAll(other);
  }
  // Empties this table and adds the other's pairs in order.
  sxInterpTable& operator=(const sxInterpTable& other) {
    if (this != &other) {
      reset();
      addAll(other);
    }
    return *this;
  }
  ~sxInterpTable() {
    sxMemory::free(params);
    sxMemory::free(values);
  }

  // Inserts the key in order. A key that is already present does not get a
  // second entry: its value goes into the last entry of the table instead,
  // which is the table's defined behaviour for repeated keys.
  void add(float param, const V& value) {
    for (int i = 0; i < count; ++i) {
      if (params[i] == param) {
        values[count - 1] = value;
        return;
      }
    }
    ++count;
    if (static_cast<unsigned int>(count) >= capacity) {
      capacity *= 2;
      allocate();
    }
    int at = count - 1;
    for (int i = 0; i < count - 1; ++i) {
      if (param < params[i]) {
        at = i;
        break;
      }
    }
    std::memmove(params + at + 1, params + at, sizeof(float) * (count - 1 - at));
    std::memmove(values + at + 1, values + at, sizeof(V) * (count - 1 - at));
    params[at] = param;
    values[at] = value;
  }

  // Overwrites key and value at an index below the count, without sorting.
  void set(int index, float param, const V& value) {
    if (index < 0 || index >= count) return;
    params[index] = param;
    values[index] = value;
  }

  // Beyond the last key, and also before the first, the last value; with
  // one key, its value. An empty table gives a zero value.
  V get(float param) {
    if (count == 0) return V{};
    int i = param >= params[last] ? last : 0;
    for (; i < count - 1; ++i) {
      if (params[i] <= param && param <= params[i + 1]) {
        last = i;
        const float f = (param - params[i]) / (params[i + 1] - params[i]);
        return sxInterpBlend(f, values[i], values[i + 1]);
      }
    }
    last = count - 1;
    return values[count - 1];
  }

  // No range check.
  const V& getValue(int index) const { return values[index]; }
  float getParam(int index) const { return params[index]; }
  int getNum() const { return count; }
  int getCapacity() const { return static_cast<int>(capacity); }

  // Forgets the keys; the arrays are kept.
  void reset() { count = last = 0; }

  // The count as one int, then each key: its param and its value's floats.
  void write(sxEntry* entry) const {
    if (!entry) return;
    entry->writeInt(count);
    for (int i = 0; i < count; ++i) {
      float record[recordFloats];
      record[0] = params[i];
      std::memcpy(record + 1, &values[i], sizeof(V));
      entry->writeFloats(record, recordFloats);
    }
  }
  // Empties the table and adds each stored key with add, so keys stored out
  // of order come back sorted. A count beyond the whole keys that the data
  // still hold is cut to them: a damaged count neither reads past the data
  // nor grows the table without bound. Past the end the count reads as -1
  // and the table stays empty.
  void read(sxEntry* entry) {
    if (!entry) return;
    reset();
    int n = entry->readInt();
    const int most = (entry->getDataSize() - entry->getCursor()) / (recordFloats * 4);
    if (n > most) n = most;
    for (int i = 0; i < n; ++i) {
      float record[recordFloats];
      entry->readFloats(record, recordFloats);
      V value;
      std::memcpy(&value, record + 1, sizeof(V));
      add(record[0], value);
    }
  }

 private:
  void addAll(const sxInterpTable& other) {
    for (int i = 0; i < other.count; ++i) add(other.params[i], other.values[i]);
  }
  void allocate() {
    void* p = sxMemory::realloc(params, sizeof(float) * capacity);
    if (!p) sxMemory::outOfMemory();
    params = static_cast<float*>(p);
    p = sxMemory::realloc(values, sizeof(V) * capacity);
    if (!p) sxMemory::outOfMemory();
    values = static_cast<V*>(p);
  }

  int count;
  float* params;
  V* values;
  int last;
  unsigned int capacity;
};

class sxFloatInterpTable : public sxInterpTable<float> {
 public:
  using sxInterpTable::sxInterpTable;
};
class sxVec3InterpTable : public sxInterpTable<sxVec3> {
 public:
  using sxInterpTable::sxInterpTable;
};
class sxVec4InterpTable : public sxInterpTable<sxVec4> {
 public:
  using sxInterpTable::sxInterpTable;
};
// Orientations, blended by spherical interpolation.
class sxQuatInterpTable : public sxInterpTable<sxQuat> {
 public:
  using sxInterpTable::sxInterpTable;
};
