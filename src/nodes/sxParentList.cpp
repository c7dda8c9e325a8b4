#include <sx/nodes/sxParentList.h>
#include <sx/object/sxMemory.h>

#include <cstddef>
#include <cstring>

namespace {

std::size_t blockBytes(int capacity) {
  return sizeof(std::int32_t) * 2 + sizeof(sxGroup*) * std::size_t(capacity);
}

}  // namespace

int sxParentList::getIndex(const sxGroup* p) const {
  if (!word) return -1;
  if (!isBlock()) return single() == p ? 0 : -1;
  const Block* b = block();
  for (int i = b->num - 1; i >= 0; --i)
    if (b->items[i] == p) return i;
  return -1;
}

bool sxParentList::add(sxGroup* p) {
  if (!word) {
    word = reinterpret_cast<std::uintptr_t>(p);
    return true;
  }
  Block* b = isBlock() ? block() : nullptr;
  if (!b || b->num == b->capacity) {
    int capacity = b ? b->capacity * 2 : 4;
    auto* grown = static_cast<Block*>(sxMemory::malloc(blockBytes(capacity)));
    if (!grown) return false;
    grown->capacity = capacity;
    if (b) {
      grown->num = b->num;
      std::memcpy(grown->items, b->items, sizeof(sxGroup*) * std::size_t(b->num));
      sxMemory::free(b);
    } else {
      grown->num = 1;
      grown->items[0] = single();
    }
    b = grown;
    word = reinterpret_cast<std::uintptr_t>(b) | blockTag;
  }
  b->items[b->num++] = p;
  return true;
}

void sxParentList::removeAt(int i, bool ordered) {
  if (!isBlock()) {
    word = 0;
    return;
  }
  Block* b = block();
  int last = b->num - 1;
  if (ordered)
    std::memmove(b->items + i, b->items + i + 1, sizeof(sxGroup*) * std::size_t(last - i));
  else
    b->items[i] = b->items[last];
  b->num = last;
  // Back to the single form, so that a node that stops being shared costs
  // nothing again.
  if (last == 1) {
    sxGroup* only = b->items[0];
    sxMemory::free(b);
    word = reinterpret_cast<std::uintptr_t>(only);
  } else if (last == 0) {
    clear();
  }
}

void sxParentList::removeOrdered(const sxGroup* p) {
  int i = getIndex(p);
  if (i >= 0) removeAt(i, true);
}

void sxParentList::removeUnordered(const sxGroup* p) {
  int i = getIndex(p);
  if (i >= 0) removeAt(i, false);
}

void sxParentList::copyTo(sxGroup** out) const {
  for (int i = 0, n = getNum(); i < n; ++i) out[i] = get(i);
}

void sxParentList::clear() {
  if (isBlock()) sxMemory::free(block());
  word = 0;
}
