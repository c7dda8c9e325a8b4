#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include <sx/object/sxMemory.h>
#include <sx/sxExport.h>

class sxArena;
class sxEntry;
class sxFile;
class sxGrowableArray;

// A shared, reference-counted block of fixed-size elements of one of nine
// element types. Geometry, vertex data and interpolation tables keep their
// bulk data in arrays and share one array between several owners; a scene
// file stores an array once, in an entry of its own, however many objects
// refer to it.
//
// Arrays are created with a count of 0; each owner calls ref and later
// unRef, and the last unRef frees the array. The count is 32-bit: one array
// shared by every leaf of a large scene would wrap 16 bits. Arrays are not
// locked.
class SX_API sxArray {
 public:
  enum DATA_TYPE : int {
    TYPE_USHORT = 0,     // unsigned short, 2 bytes
    TYPE_UBYTEVEC3 = 1,  // three unsigned bytes
    TYPE_UBYTEVEC4 = 2,  // four unsigned bytes
    TYPE_INT = 3,        // int, 4 bytes
    TYPE_FLOAT = 4,      // float, 4 bytes
    TYPE_VEC2 = 5,       // two floats
    TYPE_VEC3 = 6,       // three floats
    TYPE_VEC4 = 7,       // four floats
    TYPE_DOUBLE = 8      // double, 8 bytes
  };
  static constexpr int numDataTypes = 9;

  // n zeroed elements (none for n < 1).
  sxArray(int n, DATA_TYPE type);
  // Copies take the source's type word and count and their own copy of the
  // elements; the count of references starts at 0.
  sxArray(const sxArray& source);
  sxArray(const sxGrowableArray& source);
  // A copy whose elements live in the arena (for disposable copies); it is
  // never freed by unRef but goes with the arena.
  sxArray(const sxArray& source, sxArena* arena);
  // Keeps this array's count of references.
  sxArray& operator=(const sxArray& source);
  ~sxArray();

  void ref() { refCount.fetch_add(1, std::memory_order_relaxed); }
  // The last reference frees the elements and the array.
  void unRef();
  // Releases a reference but never frees the array, even at 0 (see
  // sxBase::unRefNoDelete).
  void unRefNoDelete() { refCount.fetch_sub(1, std::memory_order_acq_rel); }
  int getRefCount() const { return refCount.load(std::memory_order_relaxed); }

  // The element type code (the type word without its top four bits); codes
  // above 8 name no element type.
  DATA_TYPE getType() const { return DATA_TYPE(typeWord & typeMask); }
  int getElemSize() const { return getElemSize(getType()); }
  // 0 for an unknown code.
  static constexpr int getElemSize(DATA_TYPE type) {
    constexpr int sizes[numDataTypes] = {2, 3, 4, 4, 4, 8, 12, 16, 8};
    return type >= 0 && type < numDataTypes ? sizes[type] : 0;
  }
  int getNum() const { return count; }
  // Bytes allocated for the elements.
  unsigned getSize() const { return size; }
  // Reallocates the element block to exactly `bytes`; the count stays.
  void setSize(unsigned bytes);
  void enableDynamic(bool enable);
  bool isDynamic() const { return (typeWord & dynamicBit) != 0; }
  // True for the array part of an sxGrowableArray.
  bool isGrowable() const { return growable; }
  void* getData() { return data; }
  const void* getData() const { return data; }

  // The count elements, each in its type's file encoding; nothing else.
  void write(sxEntry* entry) const;
  void read(sxEntry* entry);
  // Shared storage: the array's own entry (tagged "sxArray", written on the
  // first reference) and its directory number written into entry.
  sxEntry* writeRef(sxFile* file, sxEntry* entry) const;
  // Resolves a reference written by writeRef: the same array for every
  // reference to one entry; null for none, a damaged entry or an unknown
  // element type. Always a fixed array. The caller takes its own reference.
  static sxArray* readRef(sxFile* file, sxEntry* entry);

  static void* operator new(std::size_t size) noexcept { return sxMemory::malloc(size); }
  static void operator delete(void* p) noexcept { sxMemory::free(p); }

 protected:
  static constexpr std::uint16_t typeMask = 0x0FFF;
  static constexpr std::uint16_t dynamicBit = 0x8000;

  // Elements that lie within the allocated block.
  int getNumStored() const;
  // Replaces the block by one of exactly `bytes`, keeping what fits and
  // zeroing the rest; false when memory is exhausted.
  bool resize(std::size_t bytes);
  void copyFrom(const sxArray& source, sxArena* arena);

  unsigned char* data;
  std::atomic<std::int32_t> refCount;
  std::uint16_t typeWord;
  std::int32_t count;
  // Bookkeeping: bytes allocated, whether the elements live in an arena and
  // whether this is the array part of an sxGrowableArray.
  std::uint32_t size;
  bool inArena;
  bool growable;
};

// An array with a count of elements in use (getNum) below its capacity.
class SX_API sxGrowableArray : public sxArray {
 public:
  explicit sxGrowableArray(DATA_TYPE type);
  sxGrowableArray(int n, DATA_TYPE type);
  sxGrowableArray(const sxArray& source);
  sxGrowableArray(const sxGrowableArray& source);
  sxGrowableArray& operator=(const sxArray& source);
  sxGrowableArray& operator=(const sxGrowableArray& source);

  void reset() { numUsed = 0; }
  // Sets the capacity to exactly n elements (at least 1); getNum stays.
  void grow(int n);
  // The first used element equal (byte for byte) to `element`, or -1.
  int getIndex(const void* element) const;
  // Removes the first used element equal to `element`. The following bytes
  // move down by numUsed - index - 1 bytes, not elements: the short move of
  // the format's reference behaviour, kept as it is.
  void removeElem(const void* element);
  int getNum() const { return numUsed; }
  // Marks the first n elements as used (at most the capacity).
  void setNum(int n);
  // All count elements, as sxArray::write.
  void write(sxEntry* entry) const { sxArray::write(entry); }
  // As sxArray::read; then every element is in use.
  void read(sxEntry* entry);

 private:
  std::int32_t numUsed;
};

// An sxArray ("sx...Array" names) or sxGrowableArray ("sx...GArray") of the
// named element type with n elements; null for an unknown name.
SX_API sxArray* sxCreateArray(const char* typeName, int n);
// The same choice of class and type, as a copy of source: the source's
// count of elements and as many of its bytes as fit. A null source gives
// an empty array.
SX_API sxArray* sxCreateArrayCopy(const char* typeName, const sxArray* source);
