#pragma once

// The standard class operations, generated once for every class.
//
// In the class body (public section, first line):
//     SX_DECLARE_CLASS(sxCamera)
// and in exactly one source file:
//     SX_IMPLEMENT_CLASS(sxCamera, sxBase, sxType)
// (class, parent class, type-record class). Every constructor of the class
// calls initInstance() last, which lists the object under its class. A class
// whose objects cannot be copied uses SX_DECLARE_CLASS_NOCOPY; its copies
// are then null.
//
// Generated members: classType, registerClass, initClass, removeClass,
// getClassType, getClassName, getType, createInstance, createCopy,
// createDisposableCopy, get, getNum, find, import, initInstance and the arena
// copy constructor. Allocation operators come from sxBase (sxMemory).

#include <atomic>
#include <type_traits>

#include <sx/object/sxArena.h>
#include <sx/object/sxType.h>

class sxPlugIn;
class sxBase;

// The static half of the standard operations (sxBase declares its virtual
// half by hand, since it introduces those virtual functions).
#define SX_DECLARE_CLASS_STATICS(Class)                                                        \
 public:                                                                                       \
  static void registerClass(sxPlugIn* plugIn = nullptr);                                       \
  static void initClass(sxPlugIn* plugIn = nullptr);                                           \
  static void removeClass();                                                                   \
  static sxType* getClassType() {                                                              \
    return classType.load(std::memory_order_acquire);                                          \
  }                                                                                            \
  static const char* getClassName() {                                                          \
    return #Class;                                                                             \
  }                                                                                            \
  /* Null source: a new default object; otherwise a copy of source, which must be of */        \
  /* this class (null otherwise). Null for abstract classes. */                                \
  static sxBase* createInstance(const sxBase* source = nullptr);                               \
  /* Precondition for recursive == false: 0 <= i < getNum(false). */                           \
  static Class* get(int i, bool recursive = false);                                            \
  static int getNum(bool recursive = false);                                                   \
  static Class* find(const char* name, const sxBase* start = nullptr, bool recursive = false); \
  static Class* import(const char* fileName);                                                  \
                                                                                               \
 private:                                                                                      \
  /* Read by any thread, written under the type registry lock. */                              \
  static std::atomic<sxType*> classType;                                                       \
  void initInstance();                                                                         \
  template <class, class, class>                                                               \
  friend struct sxClassImpl;                                                                   \
                                                                                               \
 public:

#define SX_DECLARE_CLASS_COMMON(Class) \
  SX_DECLARE_CLASS_STATICS(Class)      \
  sxType* getType() const override;    \
  sxBase* createCopy() const override; \
  sxBase* createDisposableCopy(sxArena* arena) const override;

#define SX_DECLARE_CLASS(Class)  \
  SX_DECLARE_CLASS_COMMON(Class) \
  Class(const Class& source, sxArena* arena);

#define SX_DECLARE_CLASS_NOCOPY(Class)            \
  SX_DECLARE_CLASS_COMMON(Class)                  \
  Class(const Class& source) = delete;            \
  Class& operator=(const Class& source) = delete; \
  Class(const Class& source, sxArena* arena) = delete;

// Shared implementation of the generated members.
template <class C, class P, class R>
struct sxClassImpl {
  static constexpr bool copyable = std::is_copy_constructible_v<C> && !std::is_abstract_v<C>;

  static void initClass(sxPlugIn* plugIn) {
    sxTypeRegistryLock lock;
    if (C::getClassType()) return;
    sxType* parent = nullptr;
    if constexpr (!std::is_void_v<P>) {
      if (!P::getClassType()) sxType::initClass(P::getClassName(), &P::initClass);
      parent = P::getClassType();
    }
    if (C::getClassType()) return;
    C::classType.store(new R(parent, C::getClassName(), factory(), &C::removeClass, plugIn),
                       std::memory_order_release);
  }

  static sxType::CreateFunc factory() {
    if constexpr (std::is_abstract_v<C> || !std::is_default_constructible_v<C>)
      return nullptr;
    else
      return &C::createInstance;
  }

  static sxType* type() {
    sxType* t = C::getClassType();
    if (t) return t;
    sxType::initClass(C::getClassName(), &C::initClass);
    return C::getClassType();
  }

  static sxBase* create(const sxBase* source) {
    if constexpr (std::is_abstract_v<C> || !std::is_default_constructible_v<C>) {
      return nullptr;
    } else {
      if (!source) return new C();
      if constexpr (copyable) {
        if (sxType::instanceIsOfType(source, type())) return new C(*static_cast<const C*>(source));
      }
      return nullptr;
    }
  }

  static sxBase* copy(const C& self) {
    if constexpr (copyable)
      return new C(self);
    else
      return nullptr;
  }

  static sxBase* disposableCopy(const C& self, sxArena* arena) {
    if constexpr (copyable) {
      if (!arena) return nullptr;
      return new (arena) C(self, arena);
    } else {
      return nullptr;
    }
  }

  static C* get(int i, bool recursive) {
    sxType* t = C::getClassType();
    return t ? static_cast<C*>(t->get(i, recursive)) : nullptr;
  }
  static int getNum(bool recursive) {
    sxType* t = C::getClassType();
    return t ? t->getNum(recursive) : 0;
  }
  static C* find(const char* name, const sxBase* start, bool recursive) {
    sxType* t = C::getClassType();
    return t ? static_cast<C*>(t->find(name, start, recursive)) : nullptr;
  }
  static C* import(const char* fileName) {
    return static_cast<C*>(sxType::importAs(type(), fileName));
  }
};

#define SX_IMPLEMENT_CLASS_STATICS(Class, Parent, Record)                          \
  std::atomic<sxType*> Class::classType{nullptr};                                  \
  void Class::registerClass(sxPlugIn* plugIn) {                                    \
    if (!getClassType()) sxType::registerClass(#Class, &Class::initClass, plugIn); \
  }                                                                                \
  void Class::initClass(sxPlugIn* plugIn) {                                        \
    sxClassImpl<Class, Parent, Record>::initClass(plugIn);                         \
  }                                                                                \
  void Class::removeClass() {                                                      \
    classType.store(nullptr, std::memory_order_release);                           \
  }                                                                                \
  sxBase* Class::createInstance(const sxBase* source) {                            \
    return sxClassImpl<Class, Parent, Record>::create(source);                     \
  }                                                                                \
  Class* Class::get(int i, bool recursive) {                                       \
    return sxClassImpl<Class, Parent, Record>::get(i, recursive);                  \
  }                                                                                \
  int Class::getNum(bool recursive) {                                              \
    return sxClassImpl<Class, Parent, Record>::getNum(recursive);                  \
  }                                                                                \
  Class* Class::find(const char* name, const sxBase* start, bool recursive) {      \
    return sxClassImpl<Class, Parent, Record>::find(name, start, recursive);       \
  }                                                                                \
  Class* Class::import(const char* fileName) {                                     \
    return sxClassImpl<Class, Parent, Record>::import(fileName);                   \
  }

#define SX_IMPLEMENT_CLASS_COMMON(Class, Parent, Record)                     \
  SX_IMPLEMENT_CLASS_STATICS(Class, Parent, Record)                          \
  sxType* Class::getType() const {                                           \
    return sxClassImpl<Class, Parent, Record>::type();                       \
  }                                                                          \
  sxBase* Class::createCopy() const {                                        \
    return sxClassImpl<Class, Parent, Record>::copy(*this);                  \
  }                                                                          \
  sxBase* Class::createDisposableCopy(sxArena* arena) const {                \
    return sxClassImpl<Class, Parent, Record>::disposableCopy(*this, arena); \
  }                                                                          \
  void Class::initInstance() {                                               \
    listInstance(sxClassImpl<Class, Parent, Record>::type());                \
  }

// The arena copy constructor builds the copy through the class's own copy
// constructor while the arena is marked on the calling thread: the object is
// then not listed, and constructors may place their storage in the arena
// (sxBase::getCopyArena()).
#define SX_IMPLEMENT_CLASS(Class, Parent, Record)        \
  SX_IMPLEMENT_CLASS_COMMON(Class, Parent, Record)       \
  Class::Class(const Class& source, sxArena* arena)      \
      : Class((sxBase::beginArenaCopy(arena), source)) { \
    sxBase::endArenaCopy();                              \
  }

#define SX_IMPLEMENT_CLASS_NOCOPY(Class, Parent, Record) \
  SX_IMPLEMENT_CLASS_COMMON(Class, Parent, Record)

// Constructors of a class that adds no fields to its parent.
#define SX_DEFAULT_CONSTRUCTORS(Class, Parent)  \
  Class() : Parent() {                          \
    initInstance();                             \
  }                                             \
  Class(const Class& source) : Parent(source) { \
    initInstance();                             \
  }
