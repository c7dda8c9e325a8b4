#include <sx/containers/sxArray.h>
#include <sx/object/sxArena.h>

#include <cstring>

namespace {

// Bytes of n elements of `elemSize`, or 0 when there are none or the size
// would not fit the 32-bit byte count.
std::size_t blockBytes(int n, int elemSize) {
  if (n < 1 || elemSize < 1) return 0;
  std::uint64_t bytes = std::uint64_t(n) * std::uint64_t(elemSize);
  return bytes > 0xFFFFFFFFu ? 0 : std::size_t(bytes);
}

}  // namespace

sxArray::sxArray(int n, DATA_TYPE type)
    : data(nullptr),
      refCount(0),
      typeWord(std::uint16_t(type & typeMask)),
      count(n),
      size(0),
      inArena(false),
      growable(false) {
  std::size_t bytes = blockBytes(n, getElemSize());
  if (bytes && !resize(bytes)) count = 0;
}

sxArray::sxArray(const sxArray& source)
    : data(nullptr), refCount(0), typeWord(0), count(0), size(0), inArena(false), growable(false) {
  copyFrom(source, nullptr);
}

sxArray::sxArray(const sxGrowableArray& source) : sxArray(static_cast<const sxArray&>(source)) {}

sxArray::sxArray(const sxArray& source, sxArena* arena)
    : data(nullptr), refCount(0), typeWord(0), count(0), size(0), inArena(false), growable(false) {
  copyFrom(source, arena);
}

sxArray& sxArray::operator=(const sxArray& source) {
  if (this != &source) copyFrom(source, nullptr);
  return *this;
}

sxArray::~sxArray() {
  if (!inArena) sxMemory::free(data);
}

void sxArray::copyFrom(const sxArray& source, sxArena* arena) {
  if (!inArena) sxMemory::free(data);
  data = nullptr;
  size = 0;
  inArena = arena != nullptr;
  typeWord = source.typeWord;
  count = source.count;
  std::size_t bytes = source.data ? blockBytes(source.count, source.getElemSize()) : 0;
  if (bytes > source.size) bytes = source.size;
  if (!bytes) return;
  data =
      static_cast<unsigned char*>(arena ? arena->malloc(unsigned(bytes)) : sxMemory::malloc(bytes));
  if (!data) {
    count = 0;
    return;
  }
  std::memcpy(data, source.data, bytes);
  size = std::uint32_t(bytes);
}

void sxArray::unRef() {
  if (refCount.fetch_sub(1, std::memory_order_acq_rel) - 1 >= 1 || inArena) return;
  if (growable)
    delete static_cast<sxGrowableArray*>(this);
  else
    delete this;
}

bool sxArray::resize(std::size_t bytes) {
  if (bytes == size && (data || !bytes)) return true;
  unsigned char* fresh = nullptr;
  if (bytes) {
    fresh = static_cast<unsigned char*>(sxMemory::malloc(bytes));
    if (!fresh) return false;
    std::size_t keep = bytes < size ? bytes : size;
    if (keep) std::memcpy(fresh, data, keep);
    std::memset(fresh + keep, 0, bytes - keep);
  }
  if (!inArena) sxMemory::free(data);
  inArena = false;
  data = fresh;
  size = std::uint32_t(bytes);
  return true;
}

void sxArray::setSize(unsigned bytes) {
  resize(bytes);
}

void sxArray::enableDynamic(bool enable) {
  typeWord = enable ? std::uint16_t(typeWord | dynamicBit) : std::uint16_t(typeWord & ~dynamicBit);
}

int sxArray::getNumStored() const {
  int es = getElemSize();
  if (!data || es < 1 || count < 1) return 0;
  std::uint32_t stored = size / std::uint32_t(es);
  return std::uint32_t(count) < stored ? count : int(stored);
}

// --- sxGrowableArray

sxGrowableArray::sxGrowableArray(DATA_TYPE type) : sxArray(0, type), numUsed(0) {
  growable = true;
}

sxGrowableArray::sxGrowableArray(int n, DATA_TYPE type) : sxArray(n, type), numUsed(0) {
  growable = true;
}

sxGrowableArray::sxGrowableArray(const sxArray& source) : sxArray(source), numUsed(0) {
  growable = true;
}

sxGrowableArray::sxGrowableArray(const sxGrowableArray& source)
    : sxArray(static_cast<const sxArray&>(source)), numUsed(0) {
  growable = true;
}

sxGrowableArray& sxGrowableArray::operator=(const sxArray& source) {
  sxArray::operator=(source);
  if (numUsed > count) numUsed = count > 0 ? count : 0;
  return *this;
}

sxGrowableArray& sxGrowableArray::operator=(const sxGrowableArray& source) {
  return *this = static_cast<const sxArray&>(source);
}

void sxGrowableArray::grow(int n) {
  if (n < 1) n = 1;
  std::size_t bytes = blockBytes(n, getElemSize());
  if (bytes && !resize(bytes)) return;
  count = n;
}

void sxGrowableArray::setNum(int n) {
  int most = getNumStored();
  numUsed = n < 0 ? 0 : n > most ? most : n;
}

int sxGrowableArray::getIndex(const void* element) const {
  int es = getElemSize();
  if (!element || es < 1) return -1;
  int used = numUsed < getNumStored() ? numUsed : getNumStored();
  for (int i = 0; i < used; ++i)
    if (std::memcmp(data + std::size_t(i) * std::size_t(es), element, std::size_t(es)) == 0)
      return i;
  return -1;
}

void sxGrowableArray::removeElem(const void* element) {
  int i = getIndex(element);
  if (i < 0) return;
  int es = getElemSize();
  std::size_t from = std::size_t(i + 1) * std::size_t(es);
  std::size_t moved = std::size_t(numUsed - i - 1);
  if (from + moved > size) moved = from < size ? size - from : 0;
  if (moved) std::memmove(data + std::size_t(i) * std::size_t(es), data + from, moved);
  --numUsed;
}

void sxGrowableArray::read(sxEntry* entry) {
  sxArray::read(entry);
  numUsed = getNumStored();
}

// --- creation by type name

namespace {

struct NamedType {
  const char* name;
  sxArray::DATA_TYPE type;
  bool growable;
};

constexpr NamedType namedTypes[] = {
    {"sxUShortArray", sxArray::TYPE_USHORT, false},
    {"sxUShortGArray", sxArray::TYPE_USHORT, true},
    {"sxUByteVec3Array", sxArray::TYPE_UBYTEVEC3, false},
    {"sxUByteVec3GArray", sxArray::TYPE_UBYTEVEC3, true},
    {"sxUByteVec4Array", sxArray::TYPE_UBYTEVEC4, false},
    {"sxUByteVec4GArray", sxArray::TYPE_UBYTEVEC4, true},
    {"sxIntArray", sxArray::TYPE_INT, false},
    {"sxIntGArray", sxArray::TYPE_INT, true},
    {"sxFloatArray", sxArray::TYPE_FLOAT, false},
    {"sxFloatGArray", sxArray::TYPE_FLOAT, true},
    {"sxVec2Array", sxArray::TYPE_VEC2, false},
    {"sxVec2GArray", sxArray::TYPE_VEC2, true},
    {"sxVec3Array", sxArray::TYPE_VEC3, false},
    {"sxVec3GArray", sxArray::TYPE_VEC3, true},
    {"sxVec4Array", sxArray::TYPE_VEC4, false},
    {"sxVec4GArray", sxArray::TYPE_VEC4, true},
    {"sxDoubleArray", sxArray::TYPE_DOUBLE, false},
    {"sxDoubleGArray", sxArray::TYPE_DOUBLE, true},
};

const NamedType* findNamedType(const char* name) {
  if (!name) return nullptr;
  for (const NamedType& t : namedTypes)
    if (std::strcmp(t.name, name) == 0) return &t;
  return nullptr;
}

}  // namespace

sxArray* sxCreateArray(const char* typeName, int n) {
  const NamedType* t = findNamedType(typeName);
  if (!t) return nullptr;
  if (t->growable) return new sxGrowableArray(n, t->type);
  return new sxArray(n, t->type);
}

sxArray* sxCreateArrayCopy(const char* typeName, const sxArray* source) {
  sxArray* copy = sxCreateArray(typeName, source ? source->getNum() : 0);
  if (!copy || !source || !source->getData() || !copy->getData()) return copy;
  std::size_t bytes = copy->getSize() < source->getSize() ? copy->getSize() : source->getSize();
  std::memcpy(copy->getData(), source->getData(), bytes);
  return copy;
}
