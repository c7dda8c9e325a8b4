#include <sx/containers/sxList.h>
#include <sx/object/sxArena.h>

#include <cstring>

namespace {
constexpr int arenaShift = 22;
constexpr int maxArenaNumber = 1023;
}  // namespace

sxList::sxList(int n, sxArena* arena) {
  // The arena's number is its index plus one, so that 0 keeps meaning "heap".
  // An arena beyond the 10-bit range cannot own lists; they use the heap.
  if (arena) {
    int idx = arena->getIndex();
    if (idx >= 0 && idx + 1 <= maxArenaNumber) countArena = std::uint32_t(idx + 1) << arenaShift;
  }
  if (n > 0) {
    if (n > maxCount) n = maxCount;
    data = allocSlots(n);
    if (data) capacity = n;
  }
}

sxList::sxList(const sxList& other) {
  *this = other;
}

sxList::~sxList() {
  if (!isArenaList()) sxMemory::free(data);
  data = nullptr;
  countArena = 0;
  capacity = 0;
}

sxArena* sxList::getArena() const {
  int number = int(countArena >> arenaShift);
  return number ? sxArena::get(number - 1) : nullptr;
}

void** sxList::allocSlots(int n) {
  std::size_t bytes = std::size_t(n) * sizeof(void*);
  if (isArenaList()) {
    sxArena* a = getArena();
    return a ? static_cast<void**>(a->malloc(unsigned(bytes))) : nullptr;
  }
  return static_cast<void**>(sxMemory::malloc(bytes));
}

bool sxList::increasePhysicalSize(int n) {
  if (n <= capacity) return true;
  if (n > maxCount) return false;
  int cap = capacity;
  if (cap == 0) {
    cap = n < 2 ? 2 : n;
  } else {
    while (cap < n) cap *= 2;
  }
  if (isArenaList()) {
    void** fresh = allocSlots(cap);
    if (!fresh) return false;
    if (data) std::memcpy(fresh, data, std::size_t(capacity) * sizeof(void*));
    data = fresh;  // the old block stays with the arena
  } else {
    void** fresh = static_cast<void**>(sxMemory::realloc(data, std::size_t(cap) * sizeof(void*)));
    if (!fresh) return false;
    data = fresh;
  }
  capacity = cap;
  return true;
}

int sxList::add(void* p) {
  int n = getNum();
  if (!increasePhysicalSize(n + 1)) return -1;
  data[n] = p;
  setCount(n + 1);
  return n;
}

bool sxList::addUnique(void* p) {
  if (getIndex(p) >= 0) return false;
  return add(p) >= 0;
}

bool sxList::insert(int i, void* p) {
  int n = getNum();
  if (i < 0 || i >= maxCount || n >= maxCount) return false;
  if (!increasePhysicalSize(i < capacity ? n + 1 : i + 1)) return false;
  if (i < n) std::memmove(data + i + 1, data + i, std::size_t(n - i) * sizeof(void*));
  clearGap(n, i);
  data[i] = p;
  setCount(n + 1 > i + 1 ? n + 1 : i + 1);
  return true;
}

bool sxList::set(int i, void* p) {
  if (i < 0 || i >= maxCount) return false;
  if (!increasePhysicalSize(i + 1)) return false;
  clearGap(getNum(), i);
  data[i] = p;
  if (i + 1 > getNum()) setCount(i + 1);
  return true;
}

int sxList::getIndex(const void* p) const {
  for (int i = getNum() - 1; i >= 0; --i)
    if (data[i] == p) return i;
  return -1;
}

void sxList::replace(void* o, void* n) {
  data[getIndex(o)] = n;
}

bool sxList::checkReplace(void* o, void* n) {
  int i = getIndex(o);
  if (i < 0) return false;
  data[i] = n;
  return true;
}

void sxList::removeIndex(int i) {
  int n = getNum() - 1;
  data[i] = data[n];
  setCount(n);
}

bool sxList::checkRemoveIndex(int i) {
  if (!indexInRange(i)) return false;
  removeIndex(i);
  return true;
}

void sxList::remove(void* p) {
  removeIndex(getIndex(p));
}

bool sxList::checkRemove(void* p) {
  return checkRemoveIndex(getIndex(p));
}

void sxList::removeOrderedIndex(int i) {
  int n = getNum();
  std::memmove(data + i, data + i + 1, std::size_t(n - i - 1) * sizeof(void*));
  setCount(n - 1);
}

bool sxList::checkRemoveOrderedIndex(int i) {
  if (!indexInRange(i)) return false;
  removeOrderedIndex(i);
  return true;
}

void sxList::removeOrdered(void* p) {
  removeOrderedIndex(getIndex(p));
}

bool sxList::checkRemoveOrdered(void* p) {
  return checkRemoveOrderedIndex(getIndex(p));
}

void* sxList::removeLast() {
  int n = getNum() - 1;
  setCount(n);
  return data[n];
}

void* sxList::checkRemoveLast() {
  // An empty list stays as it is: decrementing its count would corrupt the
  // arena bits that share the word.
  if (getNum() == 0) return nullptr;
  return removeLast();
}

void sxList::setSize(int n) {
  if (n < 1) {
    if (!isArenaList()) sxMemory::free(data);
    data = nullptr;
    capacity = 0;
    setCount(0);
    return;
  }
  if (n > maxCount) n = maxCount;
  if (isArenaList()) {
    if (n > capacity) {
      void** fresh = allocSlots(n);
      if (!fresh) return;
      if (data) std::memcpy(fresh, data, std::size_t(capacity) * sizeof(void*));
      data = fresh;
      capacity = n;
    }
  } else if (n != capacity) {
    // A fresh block of exactly n slots: the accounted realloc never shrinks.
    void** fresh = static_cast<void**>(sxMemory::malloc(std::size_t(n) * sizeof(void*)));
    if (!fresh) return;
    int keep = getNum() < n ? getNum() : n;
    if (data && keep) std::memcpy(fresh, data, std::size_t(keep) * sizeof(void*));
    sxMemory::free(data);
    data = fresh;
    capacity = n;
  }
  if (getNum() > n) setCount(n);
}

sxList& sxList::operator=(const sxList& other) {
  if (this == &other) return *this;
  int n = other.getNum();
  if (!increasePhysicalSize(n)) return *this;
  if (n) std::memcpy(data, other.data, std::size_t(n) * sizeof(void*));
  setCount(n);
  return *this;
}

bool sxList::operator==(const sxList& other) const {
  int n = getNum();
  if (n != other.getNum()) return false;
  return n == 0 || std::memcmp(data, other.data, std::size_t(n) * sizeof(void*)) == 0;
}
