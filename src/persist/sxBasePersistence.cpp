// The persistence hooks of sxBase: an object's record in a scene file and
// references between objects by directory number.

#include <sx/object/sxBase.h>
#include <sx/object/sxType.h>
#include <sx/persist/sxEntry.h>
#include <sx/persist/sxFile.h>

#include <cstring>

#include "persist/sxFileState.h"

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

// A new entry for obj, tagged with its class's name.
sxEntry* newEntryFor(const sxBase* obj, sxFile* file) {
  sxType* type = obj->getType();
  sxEntry* entry = type ? file->newEntry(file->newTag(type->getName())) : nullptr;
  if (!entry) return nullptr;
  entry->setHandle(obj);
  entry->setVersion(type->getVersion());
  return entry;
}

}  // namespace

sxEntry* sxBase::write(sxFile* file, sxEntry* entry) const {
  if (!file) return nullptr;
  sxEntry* created = nullptr;
  if (!entry) {
    created = entry = newEntryFor(this, file);
    if (!entry) return nullptr;
  }
  if (const char* name = getName()) {
    int length = int(std::strlen(name)) + 1;
    entry->writeInt(length);
    entry->writeString(name);
  } else {
    entry->writeInt(0);
  }
  entry->writeShort(short(flags));
  int count = 0;
  const sxTList<sxBase*>* attributes = getAttribList();
  if (attributes)
    for (sxBase* a : *attributes)
      if (isWritableObject(a)) ++count;
  entry->writeInt(count);
  if (attributes)
    for (sxBase* a : *attributes)
      if (isWritableObject(a)) a->writeRef(file, entry);
  return created;
}

// Writes the fields of objects whose entries were made too deep down.
static void writeDeferred(sxFile* file, sxiFileState& s) {
  for (std::size_t i = 0; i < s.deferredWrites.size(); ++i) {
    auto [obj, entry] = s.deferredWrites[i];
    obj->write(file, entry);
    sxiFileAccess::entryComplete(entry);
  }
  s.deferredWrites.clear();
}

sxEntry* sxBase::writeRef(sxFile* file, sxEntry* entry) const {
  if (!file) return nullptr;
  if (!isWritableObject(this)) {
    if (entry) entry->writeRef(-1);
    return nullptr;
  }
  sxiFileState& s = sxiFileAccess::state(file);
  sxiNesting nesting(s.writeNesting);
  sxEntry* own = file->findEntry(static_cast<const void*>(this));
  if (!own && nesting.tooDeep()) {
    own = newEntryFor(this, file);
    if (own) s.deferredWrites.emplace_back(this, own);
  } else if (!own) {
    own = write(file, nullptr);
    sxiFileAccess::entryComplete(own);
  }
  if (entry) entry->writeRef(own ? own->getDirNum() : -1);
  if (nesting.outermost()) writeDeferred(file, s);
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

// Reads the fields of objects that were made too deep down.
static void readDeferred(sxFile* file, sxiFileState& s) {
  for (std::size_t i = 0; i < s.deferredReads.size(); ++i) {
    sxiFileState::DeferredRead d = s.deferredReads[i];
    if (!d.obj->read(file, d.entry)) sxiFileAccess::failed(file, d.held);
  }
  s.deferredReads.clear();
}

sxBase* sxBase::readRef(sxFile* file, sxEntry* entry) {
  if (!file || !entry) return nullptr;
  int n = entry->readInt();
  sxEntry* target = n >= 0 ? file->getEntry(n) : nullptr;
  // An array's entry never stands for an object.
  if (!target || sxiFileAccess::isArrayTag(file, target->getTag())) return nullptr;
  if (const void* h = target->getHandle())
    return const_cast<sxBase*>(static_cast<const sxBase*>(h));
  sxBase* obj = sxiFileAccess::createForTag(file, target->getTag());
  if (!obj) return nullptr;
  const std::size_t held = sxiFileAccess::hold(file, obj);
  target->setHandle(obj);
  sxiFileState& s = sxiFileAccess::state(file);
  sxiNesting nesting(s.readNesting);
  if (nesting.tooDeep()) {
    s.deferredReads.push_back({obj, target, held});
    return obj;
  }
  bool ok = obj->read(file, target) != nullptr;
  // A record that cannot be read gives no object; the half-read one goes
  // when the file closes, unless something read meanwhile (a cycle) took it.
  if (!ok) {
    target->setHandle(nullptr);
    sxiFileAccess::failed(file, held);
  }
  if (nesting.outermost()) readDeferred(file, s);
  return ok ? obj : nullptr;
}
