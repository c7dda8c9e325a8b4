#pragma once

/// @file
/// The standard class operations, generated once for every class.
///
/// A class names itself and its parent once, in its body (public section):
/// @code
///   class sxCamera : public sxBase {
///    public:
///     SX_CLASS(sxCamera, sxBase)
///     sxCamera() = default;  // the arena copy constructor hides the implicit one
///     ...
///   };
/// @endcode
/// and in exactly one source file:
/// @code
///   SX_DEFINE_CLASS(sxCamera)               // type record of class sxType
///   SX_DEFINE_CLASS(sxGroup, sxGroupType)   // or of a typed record class
/// @endcode
/// The source file proves at compile time that the named parent is the C++
/// base of the class. Every object is listed under its class by the class
/// itself, whatever constructor builds it: constructors need no call for it,
/// and the implicit copy constructor serves a class that adds no fields.
/// A class whose objects cannot be copied uses SX_CLASS_NOCOPY; its copies
/// are then null.
///
/// Generated members: classType, registerClass, initClass, removeClass,
/// getClassType, getClassName, getType, createInstance, createCopy,
/// createDisposableCopy, get, getNum, find, import and the arena copy
/// constructor. Allocation operators come from sxBase (sxMemory).
///
/// Superseded forms, kept for code written against them: SX_DECLARE_CLASS,
/// SX_DECLARE_CLASS_NOCOPY (in the body), SX_IMPLEMENT_CLASS and
/// SX_IMPLEMENT_CLASS_NOCOPY (class, parent, record class; in the source),
/// SX_DEFAULT_CONSTRUCTORS, and constructors that call initInstance(),
/// which now does nothing.

#include <atomic>
#include <cstddef>
#include <type_traits>
#if defined(__GNUC__) && !defined(__clang__)
#include <tr2/type_traits>
#endif

#include <sx/object/sxArena.h>
#include <sx/object/sxType.h>

class sxPlugIn;
class sxBase;

/// Lists obj under type (library use: the generated class listing).
SX_API void sxiListInstance(sxBase* obj, sxType* type);

/// True when P is a direct base of C (where the compiler can tell; any base
/// otherwise).
template <class C, class P>
constexpr bool sxiIsDirectBase() {
#if defined(__GNUC__) && !defined(__clang__)
  using Bases = typename std::tr2::direct_bases<C>::type;
  return []<class... B>(std::tr2::__reflection_typelist<B...>*) {
    return (std::is_same_v<B, P> || ...);
  }(static_cast<Bases*>(nullptr));
#else
  return std::is_base_of_v<P, C> && !std::is_same_v<P, C>;
#endif
}

/// An empty member of every class that lists the object under that class
/// when the class's part of it is built, by any constructor, including an
/// implicit copy constructor. It finds its object from its own place in it.
template <class C>
struct sxiClassListing {
  sxiClassListing() noexcept { list(); }
  sxiClassListing(const sxiClassListing&) noexcept { list(); }
  sxiClassListing& operator=(const sxiClassListing&) noexcept { return *this; }

 private:
  void list() noexcept;
};

#if defined(__GNUC__)
#pragma GCC diagnostic push
// Every class here has single, non-virtual bases, where the offset of a
// member is fixed; that is all the listing needs.
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
#endif
template <class C>
void sxiClassListing<C>::list() noexcept {
  C* owner = reinterpret_cast<C*>(reinterpret_cast<char*>(this) - offsetof(C, sxiListing));
  sxType* type = C::getClassType();
  if (!type) {
    sxType::initClass(C::getClassName(), &C::initClass);
    type = C::getClassType();
  }
  sxiListInstance(static_cast<sxBase*>(owner), type);
}
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

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
  /* Superseded: objects are listed without it. Kept for constructors that call it. */         \
  void initInstance() {}                                                                       \
  template <class, class, class>                                                               \
  friend struct ::sxClassImpl;                                                                 \
                                                                                               \
 public:

#define SX_DECLARE_CLASS_COMMON(Class)                         \
  SX_DECLARE_CLASS_STATICS(Class)                              \
  using sxBase::operator new;                                  \
  static void* operator new(std::size_t size) noexcept {       \
    return sxBase::newListed(size, getClassType());            \
  }                                                            \
  sxType* getType() const override;                            \
  sxBase* createCopy() const override;                         \
  sxBase* createDisposableCopy(sxArena* arena) const override; \
                                                               \
 private:                                                      \
  friend struct ::sxiClassListing<Class>;                      \
  [[no_unique_address]] sxiClassListing<Class> sxiListing;     \
                                                               \
 public:

/// Names the class and its parent class: the first line of a class body.
#define SX_CLASS(Class, Parent)                                                                 \
  SX_DECLARE_CLASS_COMMON(Class)                                                                \
  using sxParentClass = Parent;                                                                 \
  /* Built through the class's own copy constructor while the arena is marked on the calling */ \
  /* thread: the copy is then not listed, and constructors may place their storage in the */    \
  /* arena (sxBase::getCopyArena()). */                                                         \
  Class(const Class& source, sxArena* arena) : Class((sxBase::beginArenaCopy(arena), source)) { \
    sxBase::endArenaCopy();                                                                     \
  }

/// SX_CLASS for a class whose objects cannot be copied.
#define SX_CLASS_NOCOPY(Class, Parent)            \
  SX_DECLARE_CLASS_COMMON(Class)                  \
  using sxParentClass = Parent;                   \
  Class(const Class& source) = delete;            \
  Class& operator=(const Class& source) = delete; \
  Class(const Class& source, sxArena* arena) = delete;

/// Superseded by SX_CLASS, which also names the parent.
#define SX_DECLARE_CLASS(Class)  \
  SX_DECLARE_CLASS_COMMON(Class) \
  Class(const Class& source, sxArena* arena);

/// Superseded by SX_CLASS_NOCOPY.
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
  }

#define SX_DEFINE_CLASS_WITH(Class, Record, ...)                                  \
  static_assert(sxiIsDirectBase<Class, Class::sxParentClass>(),                   \
                "the parent that SX_CLASS names is not the C++ base of " #Class); \
  SX_IMPLEMENT_CLASS_COMMON(Class, Class::sxParentClass, Record)

/// The generated members of a class declared with SX_CLASS or
/// SX_CLASS_NOCOPY, in one source file. The optional second argument is the
/// class of its type record (sxType by default).
#define SX_DEFINE_CLASS(...) SX_DEFINE_CLASS_WITH(__VA_ARGS__, sxType, )

/// Superseded by SX_DEFINE_CLASS.
#define SX_IMPLEMENT_CLASS(Class, Parent, Record)        \
  SX_IMPLEMENT_CLASS_NOCOPY(Class, Parent, Record)       \
  Class::Class(const Class& source, sxArena* arena)      \
      : Class((sxBase::beginArenaCopy(arena), source)) { \
    sxBase::endArenaCopy();                              \
  }

/// Superseded by SX_DEFINE_CLASS.
#define SX_IMPLEMENT_CLASS_NOCOPY(Class, Parent, Record)                                      \
  static_assert(sxiIsDirectBase<Class, Parent>(), #Parent " is not the C++ base of " #Class); \
  SX_IMPLEMENT_CLASS_COMMON(Class, Parent, Record)

/// Superseded: with SX_CLASS, a class that adds no fields needs no
/// constructors of its own.
#define SX_DEFAULT_CONSTRUCTORS(Class, Parent)  \
  Class() : Parent() {                          \
    initInstance();                             \
  }                                             \
  Class(const Class& source) : Parent(source) { \
    initInstance();                             \
  }
