#include <sx/object/sxMemory.h>
#include <sx/persist/sxEntry.h>
#include <sx/persist/sxEntryObserver.h>
#include <sx/persist/sxFile.h>

#include <climits>
#include <cstring>

#include "persist/sxByteOrder.h"

namespace {

// Writes that reach the end of the buffer grow it to their end plus
// growthStep. The first buffer is smaller than a step: a scene has an entry
// per object, most records are a few dozen bytes, and a buffer is trimmed
// to its data once its entry is complete.
constexpr int growthStep = 1024;
constexpr int firstBuffer = 256;

inline int alignUp(int at, int align) {
  return (at + align - 1) & ~(align - 1);
}

}  // namespace

sxEntry::sxEntry(int t)
    : magic(nativeMagic),
      capacity(0),
      cursor(0),
      byteSwapped(false),
      tag(t),
      offset(-1),
      compression(NO_COMPRESSION),
      dataSize(0),
      data(nullptr),
      handle(nullptr),
      dirNum(-1),
      version(0),
      owner(nullptr),
      slot(-1),
      observer(nullptr) {}

sxEntry::~sxEntry() {
  freeData();
}

void sxEntry::freeData() {
  sxMemory::free(data);
  data = nullptr;
  capacity = 0;
}

void sxEntry::setHandle(const void* object) {
  const void* old = handle;
  handle = object;
  if (owner) owner->handleChanged(this, old);
}

void sxEntry::setData(const void* p, int n) {
  if (!p) {
    freeData();
    return;
  }
  if (n < 0) n = 0;
  if (n > capacity || !data) {
    auto* fresh = static_cast<unsigned char*>(sxMemory::calloc(1, std::size_t(n ? n : 1)));
    if (!fresh) return;
    freeData();
    data = fresh;
    capacity = n;
  }
  std::memmove(data, p, std::size_t(n));
  magic = nativeMagic;
  byteSwapped = false;
  dataSize = n;
}

bool sxEntry::reserve(int at, int n, bool doubled) {
  if (at < 0 || n < 0) return false;
  long long end = (long long)at + n;
  long long reach = doubled ? end + n : end;
  if (end > INT_MAX - growthStep) return false;
  if (!data) {
    data = static_cast<unsigned char*>(sxMemory::calloc(1, firstBuffer));
    if (!data) return false;
    capacity = firstBuffer;
  }
  if (reach < capacity) return true;
  int grown = int(end) + growthStep;
  auto* fresh = static_cast<unsigned char*>(sxMemory::realloc(data, std::size_t(grown)));
  if (!fresh) return false;
  // The new room is zero, so that alignment padding is written as zeros.
  if (grown > capacity) std::memset(fresh + capacity, 0, std::size_t(grown - capacity));
  data = fresh;
  capacity = grown;
  return true;
}

void sxEntry::noteEnd(int end) {
  cursor = end;
  if (end > dataSize) dataSize = end;
}

void sxEntry::trim() {
  if (!data || capacity <= dataSize || dataSize < 1) return;
  data = static_cast<unsigned char*>(sxMemory::shrink(data, std::size_t(dataSize)));
  capacity = dataSize;
}

void sxEntry::writeAligned(VALUE kind, int align, const void* p, int size) {
  int at = alignUp(cursor, align);
  if (!reserve(at, size, false)) return;
  std::memcpy(data + at, p, std::size_t(size));
  noteEnd(at + size);
  if (observer) observer->written(*this, kind, at, size);
}

void sxEntry::writeBytes(VALUE kind, const void* p, int n) {
  if (!p || n <= 0 || n > INT_MAX / 2) return;
  int at = cursor;
  if (!reserve(at, n, true)) return;
  std::memcpy(data + at, p, std::size_t(n));
  noteEnd(at + n);
  if (observer) observer->written(*this, kind, at, n);
}

void sxEntry::writeByte(unsigned char v) {
  writeAligned(VALUE_BYTE, 1, &v, 1);
}
void sxEntry::writeShort(short v) {
  writeAligned(VALUE_SHORT, 1, &v, 2);
}
void sxEntry::writeInt(int v) {
  writeAligned(VALUE_INT, 4, &v, 4);
}
void sxEntry::writeBool(bool v) {
  int i = v ? 1 : 0;
  writeAligned(VALUE_BOOL, 4, &i, 4);
}
void sxEntry::writeFloat(float v) {
  writeAligned(VALUE_FLOAT, 4, &v, 4);
}
void sxEntry::writeDouble(double v) {
  writeAligned(VALUE_DOUBLE, 8, &v, 8);
}
void sxEntry::writeRef(int dirNum) {
  writeAligned(VALUE_REF, 4, &dirNum, 4);
}

// Elements of 4 bytes stay aligned once the first is, so a run of them is
// one copy.
void sxEntry::writeInts(const int* v, int n) {
  if (!v || n <= 0 || n > INT_MAX / 4) return;
  writeAligned(VALUE_INTS, 4, v, n * 4);
}
void sxEntry::writeFloats(const float* v, int n) {
  if (!v || n <= 0 || n > INT_MAX / 4) return;
  writeAligned(VALUE_FLOATS, 4, v, n * 4);
}

void sxEntry::writeString(const char* s) {
  if (!s) return;
  std::size_t n = std::strlen(s) + 1;
  if (n > std::size_t(INT_MAX / 2)) return;
  writeBytes(VALUE_STRING, s, int(n));
}

void sxEntry::writeChunk(const void* p, int n) {
  writeBytes(VALUE_CHUNK, p, n);
}

// The end test looks at the cursor before alignment; a value that would
// then reach past the data counts as past the end too, so that no reader
// ever touches bytes outside the data.
int sxEntry::readPosition(int align, int size) const {
  if (!data || cursor >= dataSize || cursor < 0) return -1;
  int at = alignUp(cursor, align);
  if (at > dataSize - size) return -1;
  return at;
}

void sxEntry::readSwapped(int at, void* out, int size) {
  std::memcpy(out, data + at, std::size_t(size));
  if (byteSwapped && size > 1) sxiByteOrder::swapInPlace(out, size);
  cursor = at + size;
}

int sxEntry::readByte() {
  int at = readPosition(1, 1);
  if (at < 0) return -1;
  cursor = at + 1;
  return data[at];
}

// A number of `size` bytes at its alignment, or the end-of-data value.
template <class T>
T sxEntry::readNumber(int align, T endValue) {
  T v = endValue;
  int at = readPosition(align, int(sizeof(T)));
  if (at >= 0) readSwapped(at, &v, int(sizeof(T)));
  return v;
}

short sxEntry::readShort() {
  return readNumber<short>(1, -1);
}
int sxEntry::readInt() {
  return readNumber<int>(4, -1);
}
bool sxEntry::readBool() {
  return readInt() != 0;
}
float sxEntry::readFloat() {
  return readNumber<float>(4, -1.0f);
}
double sxEntry::readDouble() {
  return readNumber<double>(8, -1.0);
}

// A run of 4-byte values that lies wholly within the data is one copy;
// otherwise each element is read on its own, past the end as -1.
template <class T>
void sxEntry::readRun(T* out, int n) {
  if (!out || n <= 0) return;
  int at = n <= INT_MAX / 4 ? readPosition(4, n * 4) : -1;
  if (at < 0) {
    for (int i = 0; i < n; ++i) {
      T v = T(-1);
      int p = readPosition(4, 4);
      if (p >= 0) readSwapped(p, &v, 4);
      out[i] = v;
    }
    return;
  }
  std::memcpy(out, data + at, std::size_t(n) * 4);
  if (byteSwapped)
    for (int i = 0; i < n; ++i) sxiByteOrder::swapInPlace(out + i, 4);
  cursor = at + n * 4;
}

void sxEntry::readInts(int* out, int n) {
  readRun(out, n);
}

void sxEntry::readFloats(float* out, int n) {
  readRun(out, n);
}

int sxEntry::readString(char* dst, int len) {
  if (!dst || len < 0 || !data || cursor < 0 || cursor >= dataSize) return -1;
  int available = dataSize - cursor;
  int take = len < available ? len : available;
  const char* src = reinterpret_cast<const char*>(data + cursor);
  int copied = 0;
  while (copied < take && src[copied]) {
    dst[copied] = src[copied];
    ++copied;
  }
  if (copied < len) std::memset(dst + copied, 0, std::size_t(len - copied));
  cursor = len > INT_MAX - cursor ? INT_MAX : cursor + len;
  return take;
}

int sxEntry::readChunk(void* dst, int n) {
  if (!dst || n < 0 || !data || cursor < 0 || cursor >= dataSize) return -1;
  int available = dataSize - cursor;
  int take = n < available ? n : available;
  std::memcpy(dst, data + cursor, std::size_t(take));
  cursor += take;
  return take;
}
