#include <sx/math/sxMatrixStack.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include <sx/object/sxMemory.h>

namespace {

constexpr int maxCapacity = std::numeric_limits<std::int16_t>::max();

sxMatrix* allocate(sxMatrix* old, int count) {
  void* p = sxMemory::realloc(old, sizeof(sxMatrix) * count);
  if (!p) sxMemory::outOfMemory();
  return static_cast<sxMatrix*>(p);
}

}  // namespace

sxMatrixStack::sxMatrixStack(int n)
    : stack(nullptr),
      top(nullptr),
      capacity(static_cast<std::int16_t>(std::clamp(n, 1, maxCapacity))),
      id(0) {
  stack = allocate(nullptr, capacity);
  top = stack;
  top->makeIdent();
}

sxMatrixStack::sxMatrixStack(const sxMatrixStack& other)
    : stack(allocate(nullptr, other.capacity)),
      top(stack + other.getDepth()),
      capacity(other.capacity),
      id(other.id) {
  std::memcpy(stack, other.stack, sizeof(sxMatrix) * (other.getDepth() + 1));
}

sxMatrixStack& sxMatrixStack::operator=(const sxMatrixStack& other) {
  if (this == &other) return *this;
  const int depth = other.getDepth();
  if (capacity < other.capacity) {
    stack = allocate(stack, other.capacity);
    capacity = other.capacity;
  }
  std::memcpy(stack, other.stack, sizeof(sxMatrix) * (depth + 1));
  top = stack + depth;
  ++id;
  return *this;
}

sxMatrixStack::~sxMatrixStack() {
  sxMemory::free(stack);
}

void sxMatrixStack::reset() {
  top = stack;
  changed().makeIdent();
}

void sxMatrixStack::grow() {
  const int depth = getDepth();
  capacity = static_cast<std::int16_t>(std::min(2 * capacity, maxCapacity));
  stack = allocate(stack, capacity);
  top = stack + depth;
  ++id;
}

void sxMatrixStack::push() {
  if (getDepth() >= capacity - 1) {
    // The 16-bit capacity ends the growth; a full stack refuses the push.
    if (capacity == maxCapacity) return;
    grow();
  }
  top[1] = top[0];
  ++top;
  ++id;
}

void sxMatrixStack::pushIdent() {
  push();
  top->makeIdent();
}

void sxMatrixStack::pushLoad(const sxMatrix& m) {
  push();
  *top = m;
}

void sxMatrixStack::pushMult(const sxMatrix& m) {
  push();
  top->postMult(m);
}

void sxMatrixStack::pop() {
  if (top == stack) return;
  --top;
  ++id;
}

void sxMatrixStack::load(const sxMatrix& m) {
  changed() = m;
}
void sxMatrixStack::preMult(const sxMatrix& m) {
  changed().preMult(m);
}
void sxMatrixStack::postMult(const sxMatrix& m) {
  changed().postMult(m);
}
void sxMatrixStack::preTrans(float x, float y, float z) {
  changed().preTrans(x, y, z);
}
void sxMatrixStack::postTrans(float x, float y, float z) {
  changed().postTrans(x, y, z);
}
void sxMatrixStack::preRot(float a, float x, float y, float z) {
  changed().preRot(a, x, y, z);
}
void sxMatrixStack::postRot(float a, float x, float y, float z) {
  changed().postRot(a, x, y, z);
}
void sxMatrixStack::preScale(float x, float y, float z) {
  changed().preScale(x, y, z);
}
void sxMatrixStack::postScale(float x, float y, float z) {
  changed().postScale(x, y, z);
}
