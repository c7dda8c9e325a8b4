#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

/// A counted reference to a library object (an sxBase or anything with the
/// same ref() / unRef() pair): it calls ref() when it takes the object and
/// unRef() when it lets go, on destruction, reassignment or reset().
///
/// @code
///   sxRef<sxGroup> root(new sxGroup);           // count 1
///   sxRef<sxGroup> also = root;                 // count 2
///   sxRef<sxBase> loaded(sxLoader::importFile("scene.sx"));
///   if (!loaded) ...                            // null: see sxLoader::getError()
/// @endcode
///
/// Objects are created with a count of 0, so wrapping a new object gives it
/// its first reference. An sxRef is as thread-safe as the counts it
/// changes: two threads may copy and drop sxRefs to one object at once, but
/// not assign to the same sxRef.
template <class T>
class sxRef {
 public:
  sxRef() noexcept = default;
  sxRef(std::nullptr_t) noexcept {}
  /// Takes a reference on obj (null stays null).
  sxRef(T* obj) noexcept : ptr(obj) { acquire(); }
  sxRef(const sxRef& other) noexcept : ptr(other.ptr) { acquire(); }
  /// Takes over the other's reference; the other becomes null.
  sxRef(sxRef&& other) noexcept : ptr(std::exchange(other.ptr, nullptr)) {}
  /// From a reference to a derived class.
  template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
  sxRef(const sxRef<U>& other) noexcept : ptr(other.get()) {
    acquire();
  }
  ~sxRef() { drop(); }

  sxRef& operator=(const sxRef& other) noexcept { return *this = other.ptr; }
  sxRef& operator=(sxRef&& other) noexcept {
    if (this != &other) {
      T* old = std::exchange(ptr, std::exchange(other.ptr, nullptr));
      if (old) old->unRef();
    }
    return *this;
  }
  /// The new object is referenced before the old one is released, so that
  /// assigning an object that only the old one kept alive is safe.
  sxRef& operator=(T* obj) noexcept {
    if (obj) obj->ref();
    T* old = std::exchange(ptr, obj);
    if (old) old->unRef();
    return *this;
  }

  /// Releases the object (destroying it when this was its last reference).
  void reset() noexcept { *this = nullptr; }
  /// Gives the reference up without ever destroying the object, and returns
  /// it: for handing a new object to a caller that takes its own reference.
  T* release() noexcept {
    T* obj = std::exchange(ptr, nullptr);
    if (obj) obj->unRefNoDelete();
    return obj;
  }

  T* get() const noexcept { return ptr; }
  T* operator->() const noexcept { return ptr; }
  T& operator*() const noexcept { return *ptr; }
  explicit operator bool() const noexcept { return ptr != nullptr; }

  friend bool operator==(const sxRef& a, const sxRef& b) noexcept { return a.ptr == b.ptr; }
  friend bool operator==(const sxRef& a, const T* b) noexcept { return a.ptr == b; }
  friend bool operator==(const sxRef& a, std::nullptr_t) noexcept { return a.ptr == nullptr; }

 private:
  void acquire() noexcept {
    if (ptr) ptr->ref();
  }
  void drop() noexcept {
    if (ptr) ptr->unRef();
    ptr = nullptr;
  }

  T* ptr = nullptr;
};
