#pragma once

// Bounds the nesting of references followed while reading a file. Objects
// and arrays are read depth-first, each reference one level deeper; a
// damaged or hostile file can chain references deeply enough to exhaust
// the stack, so references beyond the bound read as none.
class sxiReadDepth {
 public:
  static constexpr int maxDepth = 2000;

  sxiReadDepth() { ++depth; }
  ~sxiReadDepth() { --depth; }
  sxiReadDepth(const sxiReadDepth&) = delete;
  sxiReadDepth& operator=(const sxiReadDepth&) = delete;
  bool allowed() const { return depth <= maxDepth; }

 private:
  static thread_local int depth;
};
