#pragma once

#include <sx/object/sxMemory.h>

#include <cstdint>
#include <unordered_set>
#include <vector>

#include "persist/sxHandleIndex.h"

class sxArray;
class sxBase;
class sxEntry;
class sxEntryObserver;
class sxFile;
class sxType;

// The on-disk records of a scene file.
struct sxiFileHeader {
  std::uint32_t magic;
  std::uint32_t version;
  std::uint32_t reserved0;
  unsigned char reserved1[60];
  std::int32_t numEntries;
  std::int32_t numTags;
  unsigned char reserved2[16];
};
static_assert(sizeof(sxiFileHeader) == 96, "the header is 96 bytes");

struct sxiFileTag {
  std::uint32_t index;
  char name[64];
};
static_assert(sizeof(sxiFileTag) == 68, "a tag record is 68 bytes");

// Private bookkeeping of an sxFile.
struct sxiFileState {
  // Entries by handle. Built on the first search by handle and kept up to
  // date afterwards; while two entries share a handle the search is linear,
  // so that the last of them is found.
  sxiHandleIndex byHandle;
  bool indexed = false;
  bool ambiguous = false;

  // What each tag names, resolved on first use while reading.
  struct TagInfo {
    sxType* type = nullptr;
    bool resolved = false;
  };
  std::vector<TagInfo, sxAllocator<TagInfo>> tagInfo;
  int arrayTag = -2;  // the tag of shared arrays; -2 until looked up

  // Read-ahead over the data blocks, which readers visit nearly in file
  // order, so that loading an entry rarely costs a system call.
  unsigned char* buffer = nullptr;
  std::int64_t bufferStart = 0;
  std::size_t bufferLength = 0;
  std::int64_t fileSize = 0;

  // Entry data read from the file, in bytes, against a budget that grows
  // with the file: run-length data expand at most 127.5 times and every
  // byte of a sound file belongs to one entry, so a file that is read
  // entry by entry never reaches the budget, while one whose entries share
  // their bytes or claim more than they hold cannot make the reader large.
  static constexpr std::uint64_t budgetFloor = std::uint64_t(32) << 20;
  static constexpr std::uint64_t budgetFactor = 128;
  std::uint64_t decoded = 0;
  // Entries read so far, for the progress reports.
  std::int64_t entriesRead = 0;
  bool overBudget = false;
  std::uint64_t budget() const {
    std::uint64_t scaled = budgetFactor * std::uint64_t(fileSize > 0 ? fileSize : 0);
    return scaled > budgetFloor ? scaled : budgetFloor;
  }

  // A file without a disk file behind it: entries keep their data.
  bool inMemory = false;
  sxEntryObserver* observer = nullptr;

  // What the last failure was about, beyond its code (empty: nothing more).
  char errorDetail[160] = {};

  // Everything made while reading is held by the file until it closes, so
  // that no entry's handle can outlive its object while reading goes on,
  // however the classes' readers treat what they get. Closing gives the
  // holds back without destroying anything: objects belong to whoever
  // takes a reference, before or after the close. Only an object whose
  // record could not be read is released for good, so that it is destroyed
  // unless something read meanwhile (a cycle) took it.
  // A failed object's hold moves from heldObjects (leaving null) to
  // failedObjects.
  std::vector<sxBase*, sxAllocator<sxBase*>> heldObjects;
  std::vector<sxBase*, sxAllocator<sxBase*>> failedObjects;
  std::vector<sxArray*, sxAllocator<sxArray*>> heldArrays;
  // Arrays a reader refused (see sxiFileAccess::drop), each with a
  // reference of its own that closing gives back for good.
  std::vector<sxArray*, sxAllocator<sxArray*>> droppedArrays;
  // Objects a reader dropped (see sxiFileAccess::drop), so that dropping
  // one again costs no search.
  std::unordered_set<const sxBase*> dropped;

  // Objects are written and read depth-first, one level of recursion per
  // reference. Past maxNesting levels an object's entry is still made (or
  // its instance, when reading) where it is first reached, so that entry
  // numbers and sharing stay as they are, but its fields are written (or
  // read) afterwards by the outermost reference, so that a deep chain of
  // references cannot exhaust the stack.
  static constexpr int maxNesting = 1000;
  int writeNesting = 0;
  int readNesting = 0;
  std::vector<std::pair<const sxBase*, sxEntry*>, sxAllocator<std::pair<const sxBase*, sxEntry*>>>
      deferredWrites;
  struct DeferredRead {
    sxBase* obj;
    sxEntry* entry;
    std::size_t held;  // its place in heldObjects
  };
  std::vector<DeferredRead, sxAllocator<DeferredRead>> deferredReads;

  // Entries are carved from blocks that live until the file is closed,
  // rather than allocated one by one: a scene has an entry per object.
  std::vector<void*, sxAllocator<void*>> entryBlocks;
  std::size_t entriesInBlock = 0;
  static constexpr std::size_t entriesPerBlock = 1024;

  void* allocateEntry(std::size_t size) {
    if (entryBlocks.empty() || entriesInBlock == entriesPerBlock) {
      void* block = sxMemory::malloc(size * entriesPerBlock);
      if (!block) return nullptr;
      entryBlocks.push_back(block);
      entriesInBlock = 0;
    }
    return static_cast<char*>(entryBlocks.back()) + size * entriesInBlock++;
  }
  void releaseEntryBlocks() {
    for (void* b : entryBlocks) sxMemory::free(b);
    entryBlocks.clear();
    entriesInBlock = 0;
  }

  ~sxiFileState() {
    sxMemory::free(buffer);
    releaseEntryBlocks();
  }
  void dropBuffer() { bufferLength = 0; }
};

// Counts one level of nesting for its lifetime.
class sxiNesting {
 public:
  explicit sxiNesting(int& counter) : counter(counter) { ++counter; }
  ~sxiNesting() { --counter; }
  sxiNesting(const sxiNesting&) = delete;
  sxiNesting& operator=(const sxiNesting&) = delete;
  bool outermost() const { return counter == 1; }
  bool tooDeep() const { return counter > sxiFileState::maxNesting; }

 private:
  int& counter;
};

// Library-internal services of sxFile for the object and array readers.
struct sxiFileAccess {
  // True when `tag` is the tag of shared arrays ("sxArray").
  static bool isArrayTag(sxFile* file, int tag);
  // A new instance of the class that `tag` names, or null; the class is
  // looked up once per tag.
  static sxBase* createForTag(sxFile* file, int tag);
  // Called when an entry has been written completely: its buffer shrinks
  // to its data, so that a file of many entries holds no unused room.
  static void entryComplete(sxEntry* entry);
  // Records an object or array made while reading (see heldObjects); an
  // object's hold is numbered, for failed().
  static std::size_t hold(sxFile* file, sxBase* obj);
  static void hold(sxFile* file, sxArray* array);
  // The object of that hold could not be read: closing releases it for good.
  static void failed(sxFile* file, std::size_t held);
  // A reader got obj but does not keep it (a reference of the wrong kind):
  // closing releases the file's hold for good, as for a failed object.
  static void drop(sxFile* file, sxBase* obj);
  // A reader got array but does not keep it: closing frees it unless
  // something else took a reference.
  static void drop(sxFile* file, sxArray* array);

  // True once an entry was refused for passing the budget: the file is
  // hostile, and nothing read from it should be used.
  static bool overBudget(sxFile* file);
  static sxiFileState& state(sxFile* file);
};
