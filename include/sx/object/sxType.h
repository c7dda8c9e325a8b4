#pragma once

#include <cstdint>
#include <vector>

#include <sx/containers/sxList.h>
#include <sx/object/sxInstanceLock.h>
#include <sx/object/sxMemory.h>
#include <sx/sxExport.h>

class sxBase;
class sxPlugIn;

// The run-time type record of one class: its name, parent, factory, the
// module that supplied it and the list of its live instances. The registry
// of all records lets a loader, a script or a plug-in create an object from
// a class name, find an object by name and enumerate the objects of a class.
// Class names are compared ignoring case everywhere.
//
// Every listed object is in exactly one list, that of its class. The sxBase
// record lists no object of another class itself: its own instances are the
// objects of all classes, read list by list, each object once.
//
// Classes may be announced first (registerClass) and get their record only
// when first needed (findType, createInstance, getType of an instance).
class SX_API sxType : public sxMemory {
 public:
  using CreateFunc = sxBase* (*)(const sxBase* source);
  using RemoveFunc = void (*)();
  using InitFunc = void (*)(sxPlugIn* plugIn);

  sxType(sxType* parent, const char* name, CreateFunc create, RemoveFunc remove, sxPlugIn* plugIn);
  ~sxType() override;

  virtual void addInstance(sxBase* obj);
  // True when obj was listed. The record destroys itself when it was asked
  // to (deleteType) and its last instance goes.
  virtual bool removeInstance(sxBase* obj);
  virtual void setWritable(bool writable);
  // Destroys the record now when it has no instances (true); otherwise it
  // goes with its last instance (false).
  virtual bool deleteType();
  // The name of the record's own class ("sxType", "sxGroupType", ...).
  virtual const char* getRecordClassName() const { return "sxType"; }

  const char* getName() const { return name; }
  std::uint32_t getNameHash() const { return nameHash; }
  sxType* getParent() const { return parent; }
  sxPlugIn* getPlugIn() const { return plugIn; }
  int getIndex() const { return index; }
  // The supplying plug-in's version, or the library's for built-in classes.
  unsigned getVersion() const;
  bool isWritable() const { return (flags & writableFlag) != 0; }
  bool isDeletePending() const { return (flags & deletePendingFlag) != 0; }
  bool isAbstract() const { return createFunc == nullptr; }
  // Same type or an ancestor of this one.
  bool isOfType(const sxType* other) const;
  bool isOfExactType(const sxType* other) const { return this == other; }
  sxBase* createClassInstance(const sxBase* source) const;
  int getNumChildren() const;
  sxType* getChild(int i) const;

  // Instances. With recursive true, the instances of derived classes follow
  // the class's own, child type by child type.
  // Precondition for recursive == false: 0 <= i < getNum(false); an index
  // outside yields null rather than undefined behaviour.
  sxBase* get(int i, bool recursive) const;
  int getNum(bool recursive) const;
  // The first instance named `name` (ignoring case) in get() order; with
  // start, the first such instance after start, which must itself be one of
  // them (otherwise null). A null name finds nothing.
  sxBase* find(const char* name, const sxBase* start, bool recursive) const;
  // Holds the registry lock across several calls, and with it the instance
  // lists that this record's enumerations read: its own and those of the
  // classes derived from it (for sxBase, all). Other threads then neither
  // list nor unlist objects of those classes; the holding thread may.
  void lockInstanceList() const;
  void unlockInstanceList() const;

  // The registry.
  static int getNumTypes();
  static sxType* getType(int i);  // null outside 0..getNumTypes()-1
  static sxType* findType(const char* name);
  static sxBase* createInstance(const char* name);
  static void registerClass(const char* name, InitFunc init, sxPlugIn* plugIn);
  static void initClass(const char* name, InitFunc init);
  static void initAllRegisteredClasses();
  // Announced classes that have no record yet.
  static int getNumRegisteredClasses();
  static const char* getRegisteredClassName(int i);
  static sxPlugIn* getRegisteredClassPlugIn(int i);

  // Support for the generated import(): loads a file and keeps the result
  // only when it is of `type` (or derived from it).
  static sxBase* importAs(sxType* type, const char* fileName);
  // obj is not null and its class is type or derives from it.
  static bool instanceIsOfType(const sxBase* obj, const sxType* type);

  // Module-wide set-up and clean-up, called by the kernel's initialiser.
  static void initRegistry();
  static void cleanUpRegistry();

  static void* operator new(std::size_t size) noexcept { return sxMemory::malloc(size); }
  static void operator delete(void* p) noexcept { sxMemory::free(p); }

 protected:
  static void remove(sxType* type);

 private:
  friend class sxBase;
  friend class sxPlugIn;
  static void removeRegisteredClasses(sxPlugIn* plugIn);
  static void removeRegisteredClassData();
  static constexpr std::uint32_t writableFlag = 1;
  static constexpr std::uint32_t deletePendingFlag = 2;

  // The record whose list holds the objects that carry list id `id`.
  static sxType* fromListId(std::uint16_t id);
  void removeAt(std::size_t i);
  bool listsAll() const;
  int countOwn() const;
  int countListed() const;
  int countRecursive() const;
  sxBase* getOwn(int& i) const;
  sxBase* getListed(int& i) const;
  sxBase* getRecursive(int& i) const;
  template <class Visit>
  void forEachCoveredList(Visit visit) const;
  void deleteIfOrphaned();

  char* name;
  std::uint32_t nameHash;
  sxType* parent;
  sxPlugIn* plugIn;
  std::vector<sxBase*, sxAllocator<sxBase*>> instances;
  sxTList<sxType*> children;
  std::uint32_t flags;
  std::int32_t index;
  CreateFunc createFunc;
  RemoveFunc removeFunc;
  // Bookkeeping: the id that objects in the instance list carry (0 when
  // the ids ran out: they are then found by search), and the list's lock.
  std::uint16_t listId = 0;
  mutable sxiInstanceLock instanceLock;
};

// Holds the type registry lock (re-entrant) for a scope, when it exists.
class SX_API sxTypeRegistryLock {
 public:
  sxTypeRegistryLock();
  ~sxTypeRegistryLock();
  sxTypeRegistryLock(const sxTypeRegistryLock&) = delete;
  sxTypeRegistryLock& operator=(const sxTypeRegistryLock&) = delete;

 private:
  void* lock;
};
