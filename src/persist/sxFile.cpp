#include <sx/containers/sxArray.h>
#include <sx/kernel/sxKernel.h>
#include <sx/object/sxBase.h>
#include <sx/object/sxType.h>
#include <sx/persist/sxEntry.h>
#include <sx/persist/sxFile.h>
#include <sx/persist/sxLoader.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <new>

#include "kernel/sxKernelInternal.h"
#include "persist/sxByteOrder.h"
#include "persist/sxFileState.h"
#include "persist/sxRunLength.h"
#include "platform/sxPlatform.h"

namespace {

using sxiKernel::copyString;

constexpr int readOnlyFlags = 0;
constexpr int readWriteFlags = 1;
constexpr int createFlags = 2;
constexpr std::size_t transferBufferSize = 256 * 1024;
// Progress is reported once per 1024 entries read or written (a mask).
constexpr long long progressInterval = 1023;

// Collects small writes into large ones. Remembers a failure, after which
// nothing more is written.
class BufferedWriter {
 public:
  explicit BufferedWriter(int fd)
      : fd(fd), buffer(static_cast<unsigned char*>(sxMemory::malloc(transferBufferSize))) {}
  ~BufferedWriter() { sxMemory::free(buffer); }
  BufferedWriter(const BufferedWriter&) = delete;
  BufferedWriter& operator=(const BufferedWriter&) = delete;

  void put(const void* p, std::size_t n) {
    if (failed || n == 0) return;
    if (!buffer || n >= transferBufferSize) {
      flush();
      failed = failed || sxPlatform::fileWrite(fd, p, n) != n;
    } else {
      if (used + n > transferBufferSize) flush();
      std::memcpy(buffer + used, p, n);
      used += n;
    }
    position += std::int64_t(n);
  }
  void put32(std::uint32_t v) { put(&v, 4); }
  bool seek(std::int64_t at) {
    flush();
    failed = failed || !sxPlatform::fileSeek(fd, at);
    position = at;
    return !failed;
  }
  bool flush() {
    if (used && !failed) failed = sxPlatform::fileWrite(fd, buffer, used) != used;
    used = 0;
    return !failed;
  }
  std::int64_t tell() const { return position; }

 private:
  int fd;
  unsigned char* buffer;
  std::size_t used = 0;
  std::int64_t position = 0;
  bool failed = false;
};

}  // namespace

sxFile::sxFile()
    : fd(-1),
      openFlags(-1),
      fileName(nullptr),
      lastError(ERR_NONE),
      byteSwapped(false),
      header(nullptr),
      state(sxNew<sxiFileState>()) {}

sxFile::~sxFile() {
  close();
  sxDelete(state);
}

bool sxFile::fail(FILE_ERROR code, const char* detail) {
  lastError = code;
  if (state) {
    std::snprintf(state->errorDetail, sizeof state->errorDetail, "%s", detail ? detail : "");
  }
  return false;
}

const char* sxFile::getErrorMessage() const {
  if (state && state->errorDetail[0]) return state->errorDetail;
  switch (lastError) {
    case ERR_NONE:
      return "";
    case ERR_OPEN:
      return "the file could not be opened or created";
    case ERR_NOT_OPEN:
      return "no file is open, or its header could not be written";
    case ERR_READ:
      return "the file is damaged or could not be read";
    case ERR_READ_ONLY:
      return "the file is open for reading only";
    case ERR_EMPTY:
      return "the file is empty";
    case ERR_MAGIC:
      return "the file is not a scene file";
    case ERR_NO_DATA:
      return "the entry has no data";
    case ERR_WRITE:
      return "a data block could not be written";
  }
  return "unknown error";
}

void sxFile::cleanUp() {
  releaseHolds();
  if (fd >= 0) sxPlatform::fileClose(fd);
  fd = -1;
  openFlags = -1;
  byteSwapped = false;
  sxMemory::free(fileName);
  fileName = nullptr;
  sxMemory::free(header);
  header = nullptr;
  for (sxEntry* e : entries) {
    e->owner = nullptr;
    e->~sxEntry();
  }
  entries.setSize(0);
  for (sxiFileTag* t : tags) sxMemory::free(t);
  tags.setSize(0);
  if (state) {
    state->byHandle.clear();
    state->indexed = state->ambiguous = false;
    state->tagInfo.clear();
    state->arrayTag = -2;
    state->dropBuffer();
    state->fileSize = 0;
    state->decoded = 0;
    state->overBudget = false;
    state->releaseEntryBlocks();
    state->deferredWrites.clear();
    state->deferredReads.clear();
    state->inMemory = false;
    state->observer = nullptr;
  }
}

// Every hold goes back without destroying anything first; then the objects
// that could not be read are released for good. Their destructors may
// release other objects of the file, which by then hold only what others
// gave them.
void sxFile::releaseHolds() {
  if (!state) return;
  decltype(state->heldObjects) objects, failed;
  decltype(state->heldArrays) arrays, droppedArrays;
  objects.swap(state->heldObjects);
  failed.swap(state->failedObjects);
  arrays.swap(state->heldArrays);
  droppedArrays.swap(state->droppedArrays);
  for (sxBase* obj : objects)
    if (obj) obj->unRefNoDelete();
  for (sxArray* a : arrays) a->unRefNoDelete();
  for (sxBase* obj : failed) obj->unRef();
  for (sxArray* a : droppedArrays) a->unRef();
}

void sxFile::close() {
  cleanUp();
}

bool sxFile::open(const char* path, const char* mode) {
  cleanUp();
  if (!path || !mode || !state) return fail(ERR_OPEN);
  sxPlatform::FileMode m;
  if (std::strcmp(mode, "r") == 0) {
    m = sxPlatform::FileMode::readOnly;
    openFlags = readOnlyFlags;
  } else if (std::strcmp(mode, "rw") == 0) {
    m = sxPlatform::FileMode::readWrite;
    openFlags = readWriteFlags;
  } else {
    return fail(ERR_OPEN);
  }
  fd = sxPlatform::fileOpen(path, m);
  if (fd < 0) {
    cleanUp();
    return fail(ERR_OPEN);
  }
  state->fileSize = sxPlatform::fileSize(fd);
  if (state->fileSize < 1) {
    cleanUp();
    return fail(ERR_EMPTY);
  }
  fileName = copyString(path);
  if (!fileName || !readTables()) {
    if (lastError == ERR_NONE || !fileName) lastError = ERR_READ;
    cleanUp();
    return false;
  }
  return true;
}

bool sxFile::readTables() {
  header = static_cast<sxiFileHeader*>(sxMemory::calloc(1, sizeof(sxiFileHeader)));
  if (!header || !readAt(0, header, sizeof(sxiFileHeader))) return fail(ERR_READ);
  if (header->magic == sxiByteOrder::swap32(magic)) {
    byteSwapped = true;
    header->magic = sxiByteOrder::swap32(header->magic);
    header->version = sxiByteOrder::swap32(header->version);
    header->numEntries = std::int32_t(sxiByteOrder::swap32(std::uint32_t(header->numEntries)));
    header->numTags = std::int32_t(sxiByteOrder::swap32(std::uint32_t(header->numTags)));
  } else if (header->magic != magic) {
    return fail(ERR_MAGIC);
  }
  std::int64_t n = header->numEntries, t = header->numTags;
  // The counts must fit the lists and the tables must fit the file, so
  // that a damaged header never makes us allocate what is not there.
  if (n <= 0 || t < 0 || n > sxList::maxCount || t > sxList::maxCount) return fail(ERR_READ);
  if (headerSize + tagRecordSize * t + directoryRecordSize * n > state->fileSize)
    return fail(ERR_READ);

  std::size_t tagBytes = std::size_t(t) * tagRecordSize;
  std::size_t dirBytes = std::size_t(n) * directoryRecordSize;
  auto* raw =
      static_cast<unsigned char*>(sxMemory::malloc(tagBytes > dirBytes ? tagBytes : dirBytes));
  if (!raw) return fail(ERR_READ);
  bool ok = readAt(headerSize, raw, tagBytes);
  tags.setSize(int(t));
  for (int i = 0; ok && i < t; ++i) {
    auto* tag = static_cast<sxiFileTag*>(sxMemory::malloc(sizeof(sxiFileTag)));
    if (!tag) {
      ok = false;
      break;
    }
    std::memcpy(tag, raw + std::size_t(i) * tagRecordSize, sizeof(sxiFileTag));
    if (byteSwapped) tag->index = sxiByteOrder::swap32(tag->index);
    tag->name[tagNameSize - 1] = 0;
    tags.add(tag);
    ok = tag->index == std::uint32_t(i);
  }
  ok = ok && readAt(headerSize + std::int64_t(tagBytes), raw, dirBytes);
  entries.setSize(int(n));
  for (int i = 0; ok && i < n; ++i) {
    const unsigned char* r = raw + std::size_t(i) * directoryRecordSize;
    void* place = state->allocateEntry(sizeof(sxEntry));
    if (!place) {
      ok = false;
      break;
    }
    auto* e = ::new (place) sxEntry(int(sxiByteOrder::load32(r + 4, byteSwapped)));
    std::memcpy(&e->magic, r, 4);
    e->byteSwapped = e->magic == sxEntry::swappedMagic;
    e->offset = int(sxiByteOrder::load32(r + 8, byteSwapped));
    e->compression = sxEntry::COMPRESSION(sxiByteOrder::load32(r + 12, byteSwapped));
    e->dataSize = int(sxiByteOrder::load32(r + 16, byteSwapped));
    e->version = sxiByteOrder::load32(r + 20, byteSwapped);
    e->owner = this;
    e->slot = entries.add(e);
    if (e->offset == 0) {
      const char* name = getTagDesc(e->tag);
      std::printf("Bad Directory Entry: %d tag: %s\n", i, name ? name : "(null)");
    }
  }
  sxMemory::free(raw);
  return ok || fail(ERR_READ);
}

bool sxFile::readAt(std::int64_t at, void* out, std::size_t n) {
  if (n == 0) return true;
  if (at < 0 || at > state->fileSize || std::int64_t(n) > state->fileSize - at) return false;
  sxiFileState& s = *state;
  if (at >= s.bufferStart && at + std::int64_t(n) <= s.bufferStart + std::int64_t(s.bufferLength)) {
    std::memcpy(out, s.buffer + (at - s.bufferStart), n);
    return true;
  }
  if (!s.buffer) s.buffer = static_cast<unsigned char*>(sxMemory::malloc(transferBufferSize));
  if (!s.buffer || n >= transferBufferSize / 2) {
    return sxPlatform::fileSeek(fd, at) && sxPlatform::fileRead(fd, out, n) == n;
  }
  s.dropBuffer();
  if (!sxPlatform::fileSeek(fd, at)) return false;
  std::size_t want = transferBufferSize;
  if (std::int64_t(want) > s.fileSize - at) want = std::size_t(s.fileSize - at);
  s.bufferLength = sxPlatform::fileRead(fd, s.buffer, want);
  s.bufferStart = at;
  if (s.bufferLength < n) return false;
  std::memcpy(out, s.buffer, n);
  return true;
}

bool sxFile::create(const char* path) {
  cleanUp();
  if (!path || !state) return fail(ERR_OPEN);
  fd = sxPlatform::fileOpen(path, sxPlatform::FileMode::create);
  if (fd < 0) return fail(ERR_OPEN);
  openFlags = createFlags;
  return startWriting(path);
}

bool sxFile::createInMemory(const char* name) {
  cleanUp();
  if (!name || !state || !startWriting(name)) return fail(ERR_OPEN);
  state->inMemory = true;
  return true;
}

bool sxFile::startWriting(const char* name) {
  fileName = copyString(name);
  header = static_cast<sxiFileHeader*>(sxMemory::calloc(1, sizeof(sxiFileHeader)));
  if (!fileName || !header) {
    cleanUp();
    return fail(ERR_OPEN);
  }
  header->magic = magic;
  header->version = sxGetVersion();
  return true;
}

void sxFile::setObserver(sxEntryObserver* observer) {
  if (state) state->observer = observer;
}

bool sxFile::isOpen() const {
  return fd >= 0 || (state && state->inMemory);
}

bool sxFile::isSolmaxFormat(const char* path) {
  int f = sxPlatform::fileOpen(path, sxPlatform::FileMode::readOnly);
  if (f < 0) return false;
  std::uint32_t word = 0;
  bool ok = sxPlatform::fileSize(f) >= headerSize + 1 && sxPlatform::fileRead(f, &word, 4) == 4 &&
            (word == magic || word == sxiByteOrder::swap32(magic));
  sxPlatform::fileClose(f);
  return ok;
}

// --- tags

int sxFile::newTag(const char* typeName) {
  if (!typeName) return -1;
  // Compared as stored, so that a long name finds its own shortened tag.
  for (int i = 0; i < tags.getNum(); ++i)
    if (std::strncmp(tags[i]->name, typeName, tagNameSize - 1) == 0) return i;
  auto* tag = static_cast<sxiFileTag*>(sxMemory::calloc(1, sizeof(sxiFileTag)));
  if (!tag) return -1;
  tag->index = std::uint32_t(tags.getNum());
  std::strncpy(tag->name, typeName, tagNameSize - 1);
  if (tags.add(tag) < 0) {
    sxMemory::free(tag);
    return -1;
  }
  return int(tag->index);
}

int sxFile::findTag(const char* typeName) const {
  if (!typeName) return -1;
  for (int i = 0; i < tags.getNum(); ++i)
    if (std::strncmp(tags[i]->name, typeName, tagNameSize) == 0) return i;
  return -1;
}

const char* sxFile::getTagDesc(int tag) const {
  return tags.indexInRange(tag) ? tags[tag]->name : nullptr;
}

// --- entries

int sxFile::addEntry(sxEntry* entry) {
  if (!entry || entry->owner) return -1;
  int slot = entries.add(entry);
  if (slot < 0) return -1;
  entry->owner = this;
  entry->slot = slot;
  entry->dirNum = slot;
  if (entry->handle) handleChanged(entry, nullptr);
  return slot;
}

sxEntry* sxFile::newEntry(int tag) {
  if (!tags.indexInRange(tag)) return nullptr;
  void* place = state->allocateEntry(sizeof(sxEntry));
  if (!place) return nullptr;
  auto* e = ::new (place) sxEntry(tag);
  e->observer = state->observer;
  if (addEntry(e) < 0) {
    e->~sxEntry();
    return nullptr;
  }
  return e;
}

sxEntry* sxFile::getEntry(int dirNum) const {
  return entries.indexInRange(dirNum) ? entries[dirNum] : nullptr;
}

sxEntry* sxFile::findEntry(int tag) const {
  return findNextEntry(tag, nullptr);
}

sxEntry* sxFile::findEntry(const char* typeName) const {
  if (!typeName) return nullptr;
  for (int i = 0; i < tags.getNum(); ++i)
    if (std::strcmp(tags[i]->name, typeName) == 0) return findEntry(i);
  return nullptr;
}

sxEntry* sxFile::findNextEntry(int tag, const sxEntry* after) const {
  if (!tags.indexInRange(tag)) return nullptr;
  int from = 0;
  if (after) {
    if (after->owner != this) return nullptr;
    from = after->slot + 1;
  }
  for (int i = from; i < entries.getNum(); ++i)
    if (entries[i]->tag == tag) return entries[i];
  return nullptr;
}

void sxFile::handleChanged(sxEntry* entry, const void* old) {
  sxiFileState& s = *state;
  if (!s.indexed || s.ambiguous) return;
  if (old) s.byHandle.remove(old, entry);
  if (entry->handle && !s.byHandle.add(entry->handle, entry) &&
      s.byHandle.find(entry->handle) != entry)
    s.ambiguous = true;
}

sxEntry* sxFile::findEntry(const void* handle) const {
  sxiFileState& s = *state;
  if (handle && !s.indexed) {
    s.byHandle.reserve(std::size_t(entries.getNum()));
    for (sxEntry* e : entries)
      if (e->handle && !s.byHandle.add(e->handle, e)) s.ambiguous = true;
    s.indexed = true;
  }
  if (handle && !s.ambiguous) return s.byHandle.find(handle);
  for (int i = entries.getNum() - 1; i >= 0; --i)
    if (entries[i]->handle == handle) return entries[i];
  return nullptr;
}

bool sxFile::removeEntry(sxEntry* entry) {
  if (!entry) return true;
  // An entry is destroyed even when it is not in this file; it then leaves
  // the file that does list it, which would otherwise keep a dangling one.
  if (sxFile* f = entry->owner) {
    if (f->state->indexed && entry->handle) f->state->byHandle.remove(entry->handle, entry);
    int slot = entry->slot;
    f->entries.removeIndex(slot);
    if (f->entries.indexInRange(slot)) f->entries[slot]->slot = slot;
  }
  // Its memory goes with the blocks of the file that made it.
  entry->owner = nullptr;
  entry->~sxEntry();
  return true;
}

unsigned sxFile::getVersion() const {
  return header ? header->version : 0;
}

// --- reading entry data

bool sxFile::readEntry(sxEntry* entry) {
  if (state->inMemory) {
    // The data are where their writer put them: reading starts over.
    if (!entry || !entry->data || entry->dataSize < 1) return fail(ERR_NO_DATA);
    entry->cursor = 0;
    return true;
  }
  if (fd < 0) return fail(ERR_NOT_OPEN);
  if (!entry) return fail(ERR_NO_DATA);
  if (entry->dataSize < 1) return fail(ERR_NO_DATA);
  entry->freeData();
  std::size_t size = std::size_t(entry->dataSize);
  if (state->decoded + size > state->budget()) {
    char detail[sizeof state->errorDetail];
    std::snprintf(detail, sizeof detail,
                  "entry data pass %llu MiB, more than a file of %lld bytes can hold",
                  static_cast<unsigned long long>(state->budget() >> 20),
                  static_cast<long long>(state->fileSize));
    state->overBudget = true;
    return fail(ERR_READ, detail);
  }
  state->decoded += size;
  if ((++state->entriesRead & progressInterval) == 0)
    sxLoader::reportProgress(state->entriesRead, entries.getNum());
  if (entry->compression != sxEntry::RUN_LENGTH) {
    if (std::int64_t(size) > state->fileSize) return fail(ERR_READ);
    auto* data = static_cast<unsigned char*>(sxMemory::calloc(1, size));
    if (!data || !readAt(entry->offset, data, size)) {
      sxMemory::free(data);
      return fail(ERR_READ);
    }
    entry->data = data;
    entry->capacity = entry->dataSize;
    return true;
  }
  std::uint32_t count = 0;
  if (!readAt(entry->offset, &count, 4)) return fail(ERR_READ);
  if (entry->byteSwapped) count = sxiByteOrder::swap32(count);
  // The stream must be in the file, and able to fill the data it claims.
  if (std::int64_t(count) > state->fileSize || size > sxiRunLength::maxDecodedSize(count))
    return fail(ERR_READ);
  auto* stream = static_cast<unsigned char*>(sxMemory::malloc(count ? count : 1));
  auto* data = static_cast<unsigned char*>(sxMemory::calloc(1, size));
  bool ok = stream && data && readAt(std::int64_t(entry->offset) + 4, stream, count) &&
            sxiRunLength::decode(stream, count, data, size);
  sxMemory::free(stream);
  if (!ok) {
    sxMemory::free(data);
    return fail(ERR_READ);
  }
  entry->data = data;
  entry->capacity = entry->dataSize;
  return true;
}

// --- writing

bool sxFile::write() {
  if (fd < 0) return fail(ERR_NOT_OPEN);
  if (openFlags != readWriteFlags && openFlags != createFlags) return fail(ERR_READ_ONLY);
  // Rewriting an opened file keeps all its entries: load those not in
  // memory. One that cannot be loaded is noted and written without data.
  for (sxEntry* e : entries)
    if (!e->data) readEntry(e);
  state->dropBuffer();
  if (!writeTagList()) {
    if (lastError == ERR_WRITE) cleanUp();
    return false;
  }
  if (!writeData() || !writeDirectory()) {
    cleanUp();
    return fail(ERR_WRITE);
  }
  std::int64_t size = sxPlatform::fileSize(fd);
  state->fileSize = size > 0 ? size : 0;
  return true;
}

// The header and the tag records.
bool sxFile::writeTagList() {
  header->magic = magic;
  header->version = sxGetVersion();
  header->numEntries = entries.getNum();
  header->numTags = tags.getNum();
  BufferedWriter out(fd);
  if (!out.seek(0)) return fail(ERR_NOT_OPEN);
  out.put(header, sizeof(sxiFileHeader));
  if (!out.flush()) return fail(ERR_NOT_OPEN);
  for (sxiFileTag* t : tags) out.put(t, sizeof(sxiFileTag));
  return out.flush() || fail(ERR_WRITE);
}

bool sxFile::writeData() {
  BufferedWriter out(fd);
  std::int64_t start = headerSize + std::int64_t(tagRecordSize) * tags.getNum() +
                       std::int64_t(reservedPerEntry) * entries.getNum();
  if (!out.seek(start)) return false;
  sxiRunLength::Encoder encoder;
  long long done = 0;
  for (sxEntry* e : entries) {
    if ((++done & progressInterval) == 0) sxLoader::reportProgress(done, entries.getNum());
    if (!e->data) {
      e->dataSize = 0;
      continue;
    }
    if (out.tell() > INT_MAX) return false;
    e->offset = int(out.tell());
    std::size_t size = std::size_t(e->dataSize);
    if (e->compression == sxEntry::RUN_LENGTH) {
      if (encoder.compressRLE(e->data, size)) {
        out.put32(std::uint32_t(encoder.size()));
        out.put(encoder.data(), encoder.size());
        continue;
      }
      e->compression = sxEntry::NO_COMPRESSION;
    }
    out.put(e->data, size);
  }
  return out.flush();
}

bool sxFile::writeDirectory() {
  BufferedWriter out(fd);
  if (!out.seek(headerSize + std::int64_t(tagRecordSize) * tags.getNum())) return false;
  for (sxEntry* e : entries) {
    std::uint32_t record[6] = {e->magic,
                               std::uint32_t(e->tag),
                               std::uint32_t(e->offset),
                               std::uint32_t(e->compression),
                               std::uint32_t(e->dataSize),
                               e->version};
    out.put(record, sizeof record);
  }
  return out.flush();
}

// --- services for the object and array readers

bool sxiFileAccess::isArrayTag(sxFile* file, int tag) {
  sxiFileState& s = *file->state;
  if (s.arrayTag == -2) s.arrayTag = file->findTag("sxArray");
  return tag >= 0 && tag == s.arrayTag;
}

sxBase* sxiFileAccess::createForTag(sxFile* file, int tag) {
  const char* name = file->getTagDesc(tag);
  if (!name) return nullptr;
  sxiFileState& s = *file->state;
  if (s.tagInfo.size() <= std::size_t(tag)) s.tagInfo.resize(std::size_t(tag) + 1);
  sxiFileState::TagInfo& info = s.tagInfo[std::size_t(tag)];
  if (info.resolved) return info.type ? info.type->createClassInstance(nullptr) : nullptr;
  sxBase* obj = sxType::createInstance(name);
  info.type = obj ? obj->getType() : nullptr;
  info.resolved = true;
  return obj;
}

std::size_t sxiFileAccess::hold(sxFile* file, sxBase* obj) {
  auto& held = file->state->heldObjects;
  // Reading makes at most one object per entry: room for all at once, taken
  // only by a file that reads objects (not by one opened to look up an entry).
  if (held.empty()) held.reserve(std::size_t(file->getNumEntries()) + 1);
  obj->ref();
  held.push_back(obj);
  return held.size() - 1;
}

bool sxiFileAccess::overBudget(sxFile* file) {
  return file->state->overBudget;
}

void sxiFileAccess::failed(sxFile* file, std::size_t held) {
  auto& objects = file->state->heldObjects;
  if (held >= objects.size() || !objects[held]) return;
  file->state->failedObjects.push_back(objects[held]);
  objects[held] = nullptr;
}

void sxiFileAccess::drop(sxFile* file, sxBase* obj) {
  if (!obj || !file->state->dropped.insert(obj).second) return;
  auto& objects = file->state->heldObjects;
  // The object was usually read just before its reader saw it.
  for (std::size_t i = objects.size(); i-- > 0;)
    if (objects[i] == obj) return failed(file, i);
}

void sxiFileAccess::drop(sxFile* file, sxArray* array) {
  if (!array) return;
  array->ref();
  file->state->droppedArrays.push_back(array);
}

void sxiFileAccess::hold(sxFile* file, sxArray* array) {
  array->ref();
  file->state->heldArrays.push_back(array);
}

sxiFileState& sxiFileAccess::state(sxFile* file) {
  return *file->state;
}

void sxiFileAccess::entryComplete(sxEntry* entry) {
  if (entry) entry->trim();
}
