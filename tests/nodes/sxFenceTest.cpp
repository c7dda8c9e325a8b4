#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "support/sxTestFiles.h"
#include "support/sxThroughFile.h"

namespace {

// A fence keeps its content bit whatever its children do, and so keeps the
// bit on its ancestors; setting its volume marks the bounds above; its
// volume is grown into the pass's volume placed by the top of the matrix
// stack.
TEST(sxFence, KeepsItsBitAndGrowsPlacedBounds) {
  sxRef<sxGroup> root(new sxGroup);
  auto* mid = new sxGroup;
  auto* box = new sxBoxFence;
  auto* inner = new sxSphereFence;
  root->addChild(mid);
  mid->addChild(box);
  box->addChild(inner);
  box->removeChild(inner);
  for (sxGroup* g : {root.get(), mid, static_cast<sxGroup*>(box)})
    EXPECT_TRUE(g->anyTravFlags(sxFence::CONTENT_FENCE)) << g->getTravFlags();

  sxBox placed;
  sxRef<sxTravContext> ctx(new sxTravContext);
  auto fencePass = [&] {
    placed.makeEmpty();
    ctx->reset();
    ctx->pushVolume(&placed);
    sxMatrix turn;
    turn.makeHPR(90, 0, 0);  // +X goes to +Y, +Y to -X
    ctx->pushMatrix(turn);
    root->updateFences(ctx.get());
    ctx->popVolume();
  };
  fencePass();
  EXPECT_TRUE(placed.isEmpty()) << "an empty fence bounds nothing";
  EXPECT_FALSE(root->anyTravFlags(sxGroup::TRAV_FLAG_FENCES));

  sxBox b;
  b.setMin(sxVec3(0, 0, 0));
  b.setMax(sxVec3(1, 2, 3));
  box->setBox(b);
  EXPECT_TRUE(root->anyTravFlags(sxGroup::TRAV_FLAG_FENCES));
  fencePass();
  const sxVec3 lo = placed.getMin(), hi = placed.getMax();
  const float expected[2][3] = {{-2, 0, 0}, {0, 1, 3}};
  for (int i = 0; i < 3; ++i) {
    EXPECT_NEAR(lo[i], expected[0][i], 1e-4f) << i;
    EXPECT_NEAR(hi[i], expected[1][i], 1e-4f) << i;
  }
}

// Records that are no sphere or box (not finite, negative radius, minimum
// above maximum) and flags that deny the content bit: the fence is read as
// an empty fence that still carries its bit.
TEST(sxFence, HostileRecordsGiveEmptyFences) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float inf = std::numeric_limits<float>::infinity();
  struct Case {
    const char* tag;
    std::vector<float> values;
  };
  const std::vector<Case> cases = {
      {"sxSphereFence", {nan, 0, 0, 1}},     {"sxSphereFence", {0, 0, 0, -5}},
      {"sxSphereFence", {0, 0, 0, inf}},     {"sxSphereFence", {0, 0, 0, nan}},
      {"sxBoxFence", {1, 0, 0, 0, 1, 1}},    {"sxBoxFence", {0, 0, 0, 1, nan, 1}},
      {"sxBoxFence", {-inf, 0, 0, 1, 1, 1}},
  };
  for (std::size_t i = 0; i < cases.size(); ++i) {
    SCOPED_TRACE(i);
    sxRef<sxBase> loaded = sxImportWritten([&](sxFile& f) {
      sxEntry* e = sxWriteGroup(f, cases[i].tag, "fence");  // no content bit
      for (float v : cases[i].values) e->writeFloat(v);
    });
    ASSERT_TRUE(loaded && loaded->isOfType(sxFence::getClassType()));
    auto* fence = static_cast<sxFence*>(loaded.get());
    EXPECT_TRUE(fence->anyTravFlags(sxFence::CONTENT_FENCE));
    if (loaded->isOfType(sxSphereFence::getClassType()))
      EXPECT_TRUE(static_cast<sxSphereFence*>(fence)->getSphere().isEmpty());
    else
      EXPECT_TRUE(static_cast<sxBoxFence*>(fence)->getBox().isEmpty());
    sxSphere bounds;
    fence->getBoundingVolume(bounds);
    EXPECT_TRUE(bounds.isEmpty());
  }
}

}  // namespace
