#pragma once

#include <cstdint>

#include <sx/math/sxMatrix.h>
#include <sx/sxExport.h>

// A stack of matrices that grows by doubling, with a 16-bit change counter
// (the ID) that every change of the top advances, so that a consumer can
// tell cheaply whether the stack changed since it last looked.
class SX_API sxMatrixStack {
 public:
  // Room for capacity matrices (at least 1); the bottom entry is the
  // identity.
  explicit sxMatrixStack(int capacity);
  sxMatrixStack(const sxMatrixStack& other);
  sxMatrixStack& operator=(const sxMatrixStack& other);
  ~sxMatrixStack();

  // Back to the bottom entry, made the identity.
  void reset();
  // Duplicates the top.
  void push();
  void pushIdent();
  void pushLoad(const sxMatrix& m);
  // Pushes top * m.
  void pushMult(const sxMatrix& m);
  // Does nothing at depth 0.
  void pop();

  void load(const sxMatrix& m);
  void preMult(const sxMatrix& m);
  void postMult(const sxMatrix& m);
  void preTrans(float x, float y, float z);
  void postTrans(float x, float y, float z);
  void preRot(float angle, float x, float y, float z);
  void postRot(float angle, float x, float y, float z);
  void preScale(float x, float y, float z);
  void postScale(float x, float y, float z);

  const sxMatrix& getTop() const { return *top; }
  int getDepth() const { return static_cast<int>(top - stack); }
  int getStackSize() const { return capacity; }
  std::uint16_t getID() const { return id; }

 private:
  // The top after a change: advances the ID.
  sxMatrix& changed() {
    ++id;
    return *top;
  }
  void grow();

  sxMatrix* stack;
  sxMatrix* top;
  std::int16_t capacity;
  std::uint16_t id;
};
