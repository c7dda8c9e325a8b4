#include <sx/containers/sxList.h>
#include <sx/object/sxArena.h>

#include <cstring>
#include "object/sxModuleStatic.h"

namespace {
constexpr unsigned headerSize = sizeof(sxArena::Block);
constinit unsigned defaultSize = 8192;
constinit sxiModuleStatic<sxTList<sxArena*>> arenas;

inline unsigned roundUp8(unsigned n) {
  return (n + 7u) & ~7u;
}
inline char* startOf(sxArena::Block* b) {
  return reinterpret_cast<char*>(b);
}
// Room left in a block; may be negative for blocks made for a large request.
inline std::int64_t room(const sxArena::Block* b) {
  return std::int64_t(b->end) - std::int64_t(b->nextFree);
}
}  // namespace

sxArena::sxArena() : sxArena(defaultSize) {}

sxArena::sxArena(unsigned s)
    : size(s < 64 ? 64 : s), blocks(nullptr), listed(true), ownsBlocks(true) {
  blocks = newBlock(size);
  initHints();
  arenas->add(this);
}

sxArena::sxArena(const sxArena& o)
    : sxMemory(), size(o.size), blocks(o.blocks), listed(false), ownsBlocks(false) {
  initHints();
}

sxArena& sxArena::operator=(const sxArena& o) {
  if (this == &o) return *this;
  freeBlocks();
  size = o.size;
  blocks = o.blocks;
  ownsBlocks = false;
  initHints();
  return *this;
}

void sxArena::freeBlocks() {
  if (ownsBlocks) {
    for (Block* b = blocks; b;) {
      Block* next = b->next;
      sxMemory::free(b);
      b = next;
    }
  }
  blocks = nullptr;
}

sxArena::~sxArena() {
  freeBlocks();
  if (listed) {
    int i = getIndex();
    if (i >= 0) arenas->set(i, nullptr);
  }
}

sxArena::Block* sxArena::newBlock(unsigned bytes) {
  // A block made for a request that does not fit behind the header gets the
  // header's 16 bytes extra, so the whole request lies inside the allocation.
  std::size_t alloc =
      std::size_t(bytes) + headerSize > size ? std::size_t(bytes) + headerSize : size;
  Block* b = static_cast<Block*>(sxMemory::malloc(alloc));
  if (!b) return nullptr;
  b->end = size;
  b->nextFree = headerSize;
  b->next = nullptr;
  return b;
}

void sxArena::initHints() {
  for (Block*& h : hints) h = blocks;
}

void* sxArena::mallocSlow(unsigned n) {
  if (n > 0xFFFFFFF0u - headerSize) return nullptr;  // would wrap the 32-bit offsets
  n = roundUp8(n);
  // Walk from the hint for this size: every block before it is known to be
  // too full. Requests of 0 walk from the first block; requests above the
  // largest hinted size start at that size's hint, which is a lower bound.
  int k = n == 0 ? -1 : (n <= 8u * numHints ? int(n / 8) - 1 : numHints - 1);
  Block* b = k < 0 ? blocks : hints[k];
  Block* last = nullptr;
  for (; b; b = b->next) {
    if (room(b) > std::int64_t(n)) {
      if (k >= 0 && n <= 8u * numHints) hints[k] = b;
      void* p = startOf(b) + b->nextFree;
      b->nextFree += n;
      return p;
    }
    last = b;
  }
  if (!last)  // the hint was at the end: find the real last block
    for (last = blocks; last && last->next; last = last->next) {
    }
  Block* fresh = newBlock(n > size ? n : size);
  if (!fresh) return nullptr;
  if (last)
    last->next = fresh;
  else
    blocks = fresh;
  if (k >= 0 && n <= 8u * numHints) hints[k] = fresh;
  void* p = startOf(fresh) + fresh->nextFree;
  fresh->nextFree += n;
  return p;
}

void sxArena::reset() {
  for (Block* b = blocks; b; b = b->next) b->nextFree = headerSize;
  initHints();
}

bool sxArena::inRange(const void* p) const {
  const char* c = static_cast<const char*>(p);
  for (Block* b = blocks; b; b = b->next)
    if (c >= startOf(b) && c < startOf(b) + b->end) return true;
  return false;
}

int sxArena::getIndex() const {
  for (int i = arenas->getNum() - 1; i >= 0; --i)
    if ((*arenas)[i] == this) return i;
  return -1;
}

int sxArena::getNumBlocks() const {
  int n = 0;
  for (Block* b = blocks; b; b = b->next) ++n;
  return n;
}

int sxArena::getNum() {
  return arenas->getNum();
}
sxArena* sxArena::get(int i) {
  return arenas->indexInRange(i) ? (*arenas)[i] : nullptr;
}
void sxArena::setDefaultSize(int s) {
  defaultSize = s < 64 ? 64u : unsigned(s);
}
unsigned sxArena::getDefaultSize() {
  return defaultSize;
}
void sxArena::cleanUpClass() {
  arenas->setSize(0);
}
