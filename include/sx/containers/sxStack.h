#pragma once

#include <cstdint>

#include <sx/sxExport.h>

// A growable stack of pointers with a 16-bit top index and a 16-bit change
// counter that every push, pop, setTop and reset advances (wrapping), so
// that a traversal can tell cheaply whether a stack changed. It holds at
// most 32767 elements; a push beyond that is ignored.
class SX_API sxStack {
 public:
  static constexpr int maxElements = 0x7FFF;

  explicit sxStack(int capacity = 8);  // below 1 becomes 1
  sxStack(const sxStack& other);
  sxStack& operator=(const sxStack& other);
  ~sxStack();

  // False (nothing pushed) when the stack is full or memory is exhausted.
  // Inline: traversals push and pop at every group.
  bool push(void* p) {
    const int next = top + 1;
    if (next >= capacity && !grow(next)) return false;
    top = std::int16_t(next);
    data[top] = p;
    bump();
    return true;
  }
  void* pop() {  // null when empty
    bump();
    if (top < 0) return nullptr;
    return data[top--];
  }
  void* getTop() const { return top >= 0 ? data[top] : nullptr; }
  // Replaces the top element; an empty stack keeps no data.
  void setTop(void* p);
  int getTopIndex() const { return top; }
  int getNum() const { return top + 1; }
  bool isEmpty() const { return top < 0; }
  int getCapacity() const { return capacity; }
  short getID() const { return id; }
  void reset();
  // Element i from the bottom; precondition 0 <= i < getNum().
  void* get(int i) const { return data[i]; }

 private:
  void bump() { id = short(std::uint16_t(id) + 1u); }
  // Room for element `next`; false when the stack is full or memory is out.
  bool grow(int next);

  void** data;
  std::int32_t capacity;
  std::int16_t top;
  std::int16_t id;
};
