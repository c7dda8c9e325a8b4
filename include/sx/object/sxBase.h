#pragma once

#include <atomic>
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
// point where it no longer uses it. Every object is listed under sxBase and
// under its own class, so it can be counted, enumerated and found by name.
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

  void setName(const char* name);
  const char* getName() const { return name; }
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
  const sxTList<sxBase*>* getAttribList() const { return attributes; }

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
  bool isDisposable() const { return baseSlot.load(std::memory_order_relaxed) == disposableSlot; }

  // Allocation goes through the accounted heap or an arena.
  static void* operator new(std::size_t size) noexcept { return sxMemory::malloc(size); }
  static void* operator new(std::size_t size, sxArena* arena) noexcept;
  static void* operator new(std::size_t, void* place) noexcept { return place; }
  static void operator delete(void* p) noexcept { sxMemory::free(p); }
  static void operator delete(void*, sxArena*) noexcept {}
  static void operator delete(void*, void*) noexcept {}

  // Used by the generated arena copy constructors: while a copy is being
  // built in an arena, getCopyArena() names that arena.
  static void beginArenaCopy(sxArena* arena);
  static void endArenaCopy();
  static sxArena* getCopyArena();

 protected:
  // Takes the object out of its own class's instance list (once).
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

  void markDeleted(sxBase* obj);
  void copyName(const char* source);

  // The count is 32-bit (the padding after the flags leaves room for it at
  // no cost), so heavily shared objects cannot wrap it.
  std::atomic<std::int32_t> refCount{0};
  char* name = nullptr;
  sxTList<sxBase*>* attributes = nullptr;
  // Bookkeeping of the instance lists, so that listing and unlisting cost
  // O(1): the class list the object is in and its positions there and in
  // the sxBase list.
  sxType* listedType = nullptr;
  std::int32_t ownSlot = unlistedSlot;
  // Atomic: another thread that removes some other object may move this one
  // in the sxBase list (under the type lock) while this thread asks whether
  // it is disposable (without it).
  std::atomic<std::int32_t> baseSlot{unlistedSlot};
};
