#pragma once

// Classes defined the way a plug-in defines them, for tests of the object
// model: one with a field, one derived from it, and an abstract one.

#include <sx/object/sxBase.h>

class sxTestNode : public sxBase {
 public:
  SX_DECLARE_CLASS(sxTestNode)
  sxTestNode() { initInstance(); }
  sxTestNode(const sxTestNode& s) : sxBase(s), value(s.value) { initInstance(); }
  ~sxTestNode() override { ++destroyed; }
  int value = 0;
  static inline int destroyed = 0;
};

class sxTestLeaf : public sxTestNode {
 public:
  SX_DECLARE_CLASS(sxTestLeaf)
  SX_DEFAULT_CONSTRUCTORS(sxTestLeaf, sxTestNode)
};

class sxTestAbstract : public sxBase {
 public:
  SX_DECLARE_CLASS(sxTestAbstract)
  SX_DEFAULT_CONSTRUCTORS(sxTestAbstract, sxBase)
  virtual int kind() const = 0;
};
