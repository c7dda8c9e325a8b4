#pragma once

#include <sx/sxCore.h>

#include <gtest/gtest.h>

// A matrix built in one expression by the library's own builders, e.g.
// Built().rot(90, 0, 0, 1).thenTrans(1, 2, 3).
struct Built : sxMatrix {
  Built& hpr(float h, float p, float r) { return makeHPR(h, p, r), *this; }
  Built& rot(float angle, float x, float y, float z) { return makeRot(angle, x, y, z), *this; }
  Built& scale(float x, float y, float z) { return makeScale(x, y, z), *this; }
  Built& xyz(float x, float y, float z) { return makeXYZ(sxVec3(x, y, z)), *this; }
  Built& thenRot(float angle, float x, float y, float z) { return postRot(angle, x, y, z), *this; }
  Built& thenScale(float x, float y, float z) { return postScale(x, y, z), *this; }
  Built& thenTrans(float x, float y, float z) { return postTrans(x, y, z), *this; }
};

// Tests of values whose square roots go through the hardware.
class sxHardwareSqrtTest : public testing::Test {
 protected:
  void SetUp() override { sxSetSqrtMethod(SXSQRT_HARDWARE); }
};
