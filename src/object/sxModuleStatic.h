#pragma once

// Module-wide state whose destructor must not run on its own at process
// exit: the library's unload clean-ups release it explicitly, in the reverse
// order of the load-time set-up, which an independent static destructor
// would race (the order of static destructors across files is unspecified).
template <class T>
union sxiModuleStatic {
  constexpr sxiModuleStatic() : value() {}
  ~sxiModuleStatic() {}
  T* operator->() { return &value; }
  const T* operator->() const { return &value; }
  T& operator*() { return value; }
  const T& operator*() const { return value; }

  T value;
};
