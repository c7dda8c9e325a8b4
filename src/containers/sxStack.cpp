#include <sx/containers/sxStack.h>
#include <sx/object/sxMemory.h>

#include <cstring>

sxStack::sxStack(int cap) : data(nullptr), capacity(cap < 1 ? 1 : cap), top(-1), id(0) {
  if (capacity > maxElements) capacity = maxElements;
  data = static_cast<void**>(sxMemory::malloc(std::size_t(capacity) * sizeof(void*)));
  if (!data) capacity = 0;
}

sxStack::sxStack(const sxStack& other) : sxStack(other.capacity) {
  *this = other;
}

sxStack& sxStack::operator=(const sxStack& other) {
  if (this == &other) return *this;
  if (capacity < other.capacity) {
    void** fresh =
        static_cast<void**>(sxMemory::malloc(std::size_t(other.capacity) * sizeof(void*)));
    if (!fresh) return *this;
    sxMemory::free(data);
    data = fresh;
    capacity = other.capacity;
  }
  if (other.top >= 0) std::memcpy(data, other.data, std::size_t(other.top + 1) * sizeof(void*));
  top = other.top;
  bump();
  return *this;
}

sxStack::~sxStack() {
  sxMemory::free(data);
}

bool sxStack::grow(int next) {
  if (next >= maxElements) return false;
  int cap = capacity ? capacity * 2 : 1;
  if (cap > maxElements) cap = maxElements;
  void** fresh = static_cast<void**>(sxMemory::malloc(std::size_t(cap) * sizeof(void*)));
  if (!fresh) return false;
  if (data && capacity) std::memcpy(fresh, data, std::size_t(capacity) * sizeof(void*));
  sxMemory::free(data);
  data = fresh;
  capacity = cap;
  return true;
}

void sxStack::setTop(void* p) {
  bump();
  if (top >= 0) data[top] = p;
}

void sxStack::reset() {
  top = -1;
  bump();
}
