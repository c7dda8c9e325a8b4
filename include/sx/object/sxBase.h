#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include <sx/containers/sxList.h>
#include <sx/object/sxClass.h>
#include <sx/object/sxMemory.h>
#include <sx/sxExport.h>

class sxArena;
class sxEntry;
class sxFile;
class sxRenderContext;
class sxType;

// The root of every named, reference-counted object of the library.
//
// Objects are created with a count of 0; whoever keeps one calls ref() and
// later unRef(). The release of the last reference destroys the object at
// once, or, while downstream threads run, once every thread has passed a
// point where it no longer uses it. Every object is listed under its own
// class, and through it under sxBase, so it can be counted, enumerated and
// found by name.
class SX_API sxBase : public sxMemory {
  SX_DECLARE_CLASS_STATICS(sxBase)

  // With unlisted true the object is not entered in the sxBase list (arena
  // copies use this).
  explicit sxBase(bool unlisted = false);
  // Copies the flags and the name; the count starts at 0 and attributes are
  // not copied.
  sxBase(const sxBase& source);
  // Assigns the flags and the name; count and attributes stay.
  sxBase& operator=(const sxBase& source);
  // An unlisted copy, for objects built in an arena.
  sxBase(const sxBase& source, sxArena* arena);

  // The virtual operations, in their fixed order.
  ~sxBase() override;
  // A new heap copy made by the class's copy constructor.
  virtual sxBase* createCopy() const;
  virtual sxType* getType() const;
  virtual void ref();
  // Releases a reference; see the class comment for when the object dies.
  virtual void unRef();
  virtual void enableDynamic(bool enable);
  // A copy allocated in arena and never listed; it must not be deleted.
  virtual sxBase* createDisposableCopy(sxArena* arena) const;
  virtual void initRenderContext(sxRenderContext* context) const;
  // Persistence: write stores the object's fields in a file entry (a new one
  // when entry is null, which is then returned), read restores them and
  // returns the entry, writeRef stores a reference to the object.
  virtual sxEntry* read(sxFile* file, sxEntry* entry);
  virtual sxEntry* write(sxFile* file, sxEntry* entry) const;
  virtual sxEntry* writeRef(sxFile* file, sxEntry* entry) const;
  static sxBase* readRef(sxFile* file, sxEntry* entry);

  /// Names of up to 15 characters are kept in the object itself, longer
  /// ones in the heap. name may be (part of) the current name.
  void setName(const char* name);
  /// Null when the object has no name.
  const char* getName() const { return (state & shortNameBit) ? shortName : heapName; }
  int getRefCount() const { return refCount.load(std::memory_order_relaxed); }
  /// Releases a reference but never destroys the object, even when the
  /// count reaches 0: for a holder that hands the object on to whoever takes
  /// it next (a file reader giving back what it held while reading). An
  /// object left at 0 is destroyed by the next release of a reference that
  /// someone takes. One atomic operation, like ref() and unRef().
  void unRefNoDelete() { refCount.fetch_sub(1, std::memory_order_acq_rel); }
  bool isDynamic() const { return (flags & dynamicFlag) != 0; }
  unsigned short getFlags() const { return flags; }

  // Keeps a reference on attribute; null is ignored.
  void addAttribute(sxBase* attribute);
  const sxTList<sxBase*>* getAttribList() const {
    return (state & attributesBit) ? findAttributes() : nullptr;
  }

  bool isOfType(const sxType* type) const;
  bool isOfType(const sxBase* other) const;
  bool isOfExactType(const sxType* type) const;
  bool isOfExactType(const sxBase* other) const;

  // Equal flag words and equal names (both null, or the same bytes).
  bool operator==(const sxBase& other) const;
  bool operator!=(const sxBase& other) const { return !(*this == other); }

  // Objects released while downstream threads ran whose deletion has not
  // been carried out yet.
  static int getNumPendingDeletions();
  // True while obj is a copy made in an arena (never listed, never freed).
  bool isDisposable() const { return slot.load(std::memory_order_relaxed) == disposableSlot; }

  /// Objects come from the library's object pool: slots of fixed sizes cut
  /// from large slabs, handed out by a per-thread cache, accounted in
  /// sxMemory::getSize() by slot size. Slots are 8-aligned, and 16-aligned
  /// for sizes that are multiples of 16 (every 16-aligned class). Slabs are
  /// kept for the objects made next rather than given back to the system.
  /// Null when memory is exhausted.
  static void* operator new(std::size_t size) noexcept;
  /// Allocation in an arena: released only with the arena.
  static void* operator new(std::size_t size, sxArena* arena) noexcept;
  static void* operator new(std::size_t, void* place) noexcept { return place; }
  /// Sized: the deleting destructor passes the size of the object's own
  /// class, which names its slot's size.
  static void operator delete(void* p, std::size_t size) noexcept;

  /// The allocation behind SX_CLASS's operator new: a pool slot, noted on
  /// the calling thread as an object of type's class, so that it is listed
  /// once, by that class's listing, instead of by every class of its chain
  /// in turn (each listing takes a lock). Library use.
  static void* newListed(std::size_t size, const sxType* type) noexcept;
  static void operator delete(void*, sxArena*) noexcept {}
  static void operator delete(void*, void*) noexcept {}

  // Used by the generated arena copy constructors: while a copy is being
  // built in an arena, getCopyArena() names that arena.
  static void beginArenaCopy(sxArena* arena);
  static void endArenaCopy();
  static sxArena* getCopyArena();

 protected:
  // Takes the object out of its class's instance list (once).
  void deleteInstance();
  // Lists the object under type, moving it from the list of the class whose
  // constructor listed it before (each constructor of a class chain lists
  // it; it ends listed under its most derived class only).
  void listInstance(sxType* type);

  static constexpr unsigned short dynamicFlag = 0x0001;

  unsigned short flags = 0;

 private:
  friend class sxType;
  friend void sxiListInstance(sxBase* obj, sxType* type);
  friend struct sxiDeletion;
  static constexpr std::int32_t unlistedSlot = -1;
  static constexpr std::int32_t disposableSlot = -2;
  // Made by newListed and not listed yet: listId names the class whose
  // listing will list it.
  static constexpr std::int32_t pendingSlot = -3;
  static constexpr std::uint16_t shortNameBit = 1;
  static constexpr std::uint16_t attributesBit = 2;
  static constexpr std::size_t shortNameSize = 16;

  void markDeleted(sxBase* obj);
  // True when newListed made this object: it is then marked pending.
  bool takePendingListing();
  // Names an object that has no name yet; the copy goes to the arena when
  // one is given and the name is too long to be kept in place.
  void initName(const char* source, sxArena* arena);
  void freeName();
  const sxTList<sxBase*>* findAttributes() const;

  // The count is 32-bit (the padding after the flags leaves room for it at
  // no cost), so heavily shared objects cannot wrap it.
  std::atomic<std::int32_t> refCount{0};
  // The name: in place when short (shortNameBit), otherwise a heap copy
  // (in an arena copy, one in the arena) or null.
  union {
    char* heapName = nullptr;
    char shortName[shortNameSize];
  };
  // Bookkeeping. The attribute list, rarely used, is kept aside, keyed by
  // the object (attributesBit). The instance list the object is in is that
  // of the record with its list id, at its slot, so that listing and
  // unlisting cost O(1). Atomic: another thread that removes some other
  // object may move this one in the list (under the list's lock) while this
  // thread asks whether it is disposable (without it).
  std::atomic<std::int32_t> slot{unlistedSlot};
  std::atomic<std::uint16_t> listId{0};
  std::uint16_t state = 0;
};
