// Arrays in scene files: the elements in their types' encodings, and the
// shared storage of an array in an entry of its own.

#include <sx/containers/sxArray.h>
#include <sx/kernel/sxKernel.h>
#include <sx/persist/sxEntry.h>
#include <sx/persist/sxFile.h>

#include <cstring>

#include "persist/sxFileState.h"

namespace {

// Floats per element of the float vector types (0 for the others).
int floatsPerElement(sxArray::DATA_TYPE type) {
  switch (type) {
    case sxArray::TYPE_FLOAT:
      return 1;
    case sxArray::TYPE_VEC2:
      return 2;
    case sxArray::TYPE_VEC3:
      return 3;
    case sxArray::TYPE_VEC4:
      return 4;
    default:
      return 0;
  }
}

// One number of an element, through the entry's writer or reader.
template <class T>
void put(sxEntry* entry, const unsigned char* e, void (sxEntry::*writer)(T)) {
  T v;
  std::memcpy(&v, e, sizeof v);
  (entry->*writer)(v);
}
template <class T>
void get(sxEntry* entry, unsigned char* e, T (sxEntry::*reader)()) {
  T v = (entry->*reader)();
  std::memcpy(e, &v, sizeof v);
}

// One element at e (zero bytes for null), in its type's encoding. Byte
// triples and quadruples are raw bytes and never swapped.
void writeElement(sxEntry* entry, sxArray::DATA_TYPE type, const unsigned char* e) {
  static const unsigned char zero[16] = {};
  if (!e) e = zero;
  switch (type) {
    case sxArray::TYPE_USHORT:
      return put<short>(entry, e, &sxEntry::writeShort);
    case sxArray::TYPE_UBYTEVEC3:
    case sxArray::TYPE_UBYTEVEC4:
      return entry->writeChunk(e, sxArray::getElemSize(type));
    case sxArray::TYPE_INT:
      return put<int>(entry, e, &sxEntry::writeInt);
    case sxArray::TYPE_DOUBLE:
      return put<double>(entry, e, &sxEntry::writeDouble);
    default:
      for (int k = 0; k < floatsPerElement(type); ++k)
        put<float>(entry, e + 4 * k, &sxEntry::writeFloat);
  }
}

// Reads one element into e (discarded for null).
void readElement(sxEntry* entry, sxArray::DATA_TYPE type, unsigned char* e) {
  unsigned char scratch[16];
  if (!e) e = scratch;
  switch (type) {
    case sxArray::TYPE_USHORT:
      return get<short>(entry, e, &sxEntry::readShort);
    case sxArray::TYPE_UBYTEVEC3:
    case sxArray::TYPE_UBYTEVEC4:
      entry->readChunk(e, sxArray::getElemSize(type));
      return;
    case sxArray::TYPE_INT:
      return get<int>(entry, e, &sxEntry::readInt);
    case sxArray::TYPE_DOUBLE:
      return get<double>(entry, e, &sxEntry::readDouble);
    default:
      for (int k = 0; k < floatsPerElement(type); ++k)
        get<float>(entry, e + 4 * k, &sxEntry::readFloat);
  }
}

}  // namespace

// Ints and floats go as one run each (4-byte values stay aligned once the
// first is); elements beyond a block made smaller by setSize are zeros.
void sxArray::write(sxEntry* entry) const {
  DATA_TYPE type = getType();
  int es = getElemSize();
  if (!entry || es < 1) return;
  int stored = getNumStored();
  if (type == TYPE_INT && stored > 0) {
    entry->writeInts(reinterpret_cast<const int*>(data), stored);
  } else if (int k = floatsPerElement(type); k && stored > 0) {
    entry->writeFloats(reinterpret_cast<const float*>(data), stored * k);
  } else {
    for (int i = 0; i < stored; ++i)
      writeElement(entry, type, data + std::size_t(i) * std::size_t(es));
  }
  for (int i = stored; i < count; ++i) writeElement(entry, type, nullptr);
}

void sxArray::read(sxEntry* entry) {
  DATA_TYPE type = getType();
  int es = getElemSize();
  if (!entry || es < 1) return;
  int stored = getNumStored();
  if (type == TYPE_INT && stored > 0) {
    entry->readInts(reinterpret_cast<int*>(data), stored);
  } else if (int k = floatsPerElement(type); k && stored > 0) {
    entry->readFloats(reinterpret_cast<float*>(data), stored * k);
  } else {
    for (int i = 0; i < stored; ++i)
      readElement(entry, type, data + std::size_t(i) * std::size_t(es));
  }
  for (int i = stored; i < count; ++i) {
    int at = entry->getCursor();
    readElement(entry, type, nullptr);
    if (entry->getCursor() == at) break;
  }
}

sxEntry* sxArray::writeRef(sxFile* file, sxEntry* entry) const {
  if (!file) return nullptr;
  sxEntry* own = file->findEntry(static_cast<const void*>(this));
  if (!own) {
    own = file->newEntry(file->newTag("sxArray"));
    if (own) {
      own->setHandle(this);
      own->setVersion(sxGetVersion());
      own->writeShort(short(typeWord));
      own->writeInt(count);
      write(own);
      sxiFileAccess::entryComplete(own);
    }
  }
  if (entry) entry->writeRef(own ? own->getDirNum() : -1);
  return own;
}

sxArray* sxArray::readRef(sxFile* file, sxEntry* entry) {
  if (!file || !entry) return nullptr;
  int n = entry->readInt();
  sxEntry* target = n >= 0 ? file->getEntry(n) : nullptr;
  // Only an array's own entry stands for an array.
  if (!target || !sxiFileAccess::isArrayTag(file, target->getTag())) return nullptr;
  if (const void* h = target->getHandle())
    return const_cast<sxArray*>(static_cast<const sxArray*>(h));
  if (!file->readEntry(target)) return nullptr;
  std::uint16_t word = std::uint16_t(target->readShort());
  int num = target->readInt();
  DATA_TYPE type = DATA_TYPE(word & typeMask);
  int es = getElemSize(type);
  if (es < 1 || num < 0) return nullptr;
  // The elements must be in the entry before they are allocated.
  if (std::int64_t(num) * es > std::int64_t(target->getDataSize()) - target->getCursor())
    return nullptr;
  auto* array = new sxArray(num, type);
  if (!array) return nullptr;
  sxiFileAccess::hold(file, array);
  target->setHandle(array);
  array->read(target);
  if (word & dynamicBit) array->enableDynamic(true);
  return array;
}
