// The persistence hooks of sxBase: an object's record in a scene file and
// references between objects by directory number.

#include <sx/object/sxBase.h>
#include <sx/object/sxType.h>
#include <sx/persist/sxEntry.h>
#include <sx/persist/sxFile.h>

#include <cstring>

#include "persist/sxFileState.h"
#include "persist/sxReadDepth.h"

namespace {

// Names up to this length are read without a heap buffer.
constexpr int shortName = 256;

bool isWritableObject(const sxBase* obj) {
  sxType* t = obj->getType();
  return t && t->isWritable();
}

// Restores the name from a record (length with the NUL, then the text).
// False when the length reaches past the entry.
bool readName(sxBase* obj, sxEntry* entry) {
  int length = entry->readInt();
  if (length <= 0) {
    obj->setName(nullptr);
    return true;
  }
  if (length > entry->getDataSize() - entry->getCursor()) return false;
  char local[shortName + 1];
  char* text =
      length <= shortName ? local : static_cast<char*>(sxMemory::malloc(std::size_t(length) + 1));
  if (!text) return false;
  entry->readString(text, length);
  text[length] = 0;
  obj->setName(text);
  if (text != local) sxMemory::free(text);
  return true;
}

}  // namespace

sxEntry* sxBase::write(sxFile* file, sxEntry* entry) const {
  if (!file) return nullptr;
  sxEntry* created = nullptr;
  if (!entry) {
    sxType* type = getType();
    if (!type) return nullptr;
    created = entry = file->newEntry(file->newTag(type->getName()));
    if (!entry) return nullptr;
    entry->setHandle(this);
    entry->setVersion(type->getVersion());
  }
  if (name) {
    int length = int(std::strlen(name)) + 1;
    entry->writeInt(length);
    entry->writeString(name);
  } else {
    entry->writeInt(0);
  }
  entry->writeShort(short(flags));
  int count = 0;
  if (attributes)
    for (sxBase* a : *attributes)
      if (isWritableObject(a)) ++count;
  entry->writeInt(count);
  if (attributes)
    for (sxBase* a : *attributes)
      if (isWritableObject(a)) a->writeRef(file, entry);
  return created;
}

sxEntry* sxBase::writeRef(sxFile* file, sxEntry* entry) const {
  if (!file) return nullptr;
  if (!isWritableObject(this)) {
    if (entry) entry->writeInt(-1);
    return nullptr;
  }
  sxEntry* own = file->findEntry(static_cast<const void*>(this));
  if (!own) {
    own = write(file, nullptr);
    sxiFileAccess::entryComplete(own);
  }
  if (entry) entry->writeInt(own ? own->getDirNum() : -1);
  return own;
}

sxEntry* sxBase::read(sxFile* file, sxEntry* entry) {
  if (!file) return nullptr;
  if (!entry) {
    sxType* type = getType();
    entry = type ? file->findEntry(type->getName()) : nullptr;
    if (!entry) return nullptr;
  }
  if (!file->readEntry(entry) || !readName(this, entry)) return nullptr;
  flags = static_cast<unsigned short>(entry->readShort());
  int count = entry->readInt();
  // A damaged count ends with the data: once a reference can no longer be
  // read, the rest would only be reads past the end.
  for (int i = 0; i < count; ++i) {
    int at = entry->getCursor();
    sxBase* attribute = readRef(file, entry);
    if (entry->getCursor() == at) break;
    addAttribute(attribute);
  }
  return entry;
}

sxBase* sxBase::readRef(sxFile* file, sxEntry* entry) {
  if (!file || !entry) return nullptr;
  int n = entry->readInt();
  sxEntry* target = n >= 0 ? file->getEntry(n) : nullptr;
  // An array's entry never stands for an object.
  if (!target || sxiFileAccess::isArrayTag(file, target->getTag())) return nullptr;
  if (const void* h = target->getHandle())
    return const_cast<sxBase*>(static_cast<const sxBase*>(h));
  sxiReadDepth depth;
  if (!depth.allowed()) return nullptr;
  sxBase* obj = sxiFileAccess::createForTag(file, target->getTag());
  if (!obj) return nullptr;
  sxiFileAccess::hold(file, obj);
  target->setHandle(obj);
  if (obj->read(file, target)) return obj;
  // A record that cannot be read gives no object; the half-read one goes
  // when the file closes, unless something read meanwhile (a cycle) took it.
  target->setHandle(nullptr);
  return nullptr;
}
