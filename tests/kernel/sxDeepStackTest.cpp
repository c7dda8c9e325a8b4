#include <gtest/gtest.h>

#include <cstdint>

#include "platform/sxDeepStack.h"

namespace {

thread_local int depth = 0;
int depthAtLeaf = -1;

// A pass-like recursion with a sizeable frame: each level parks a byte in
// its frame, recurses through the guard and reads the byte back, so a frame
// damaged by a segment switch shows in the sum. The depth counter checks
// that thread_local variables are the same on every segment.
std::uint64_t sumDown(int n) {
  volatile unsigned char frame[256];
  frame[n & 255] = static_cast<unsigned char>(n);
  ++depth;
  std::uint64_t below = 0;
  if (n == 0)
    depthAtLeaf = depth;
  else
    below = sxiDeepCall([n] { return sumDown(n - 1); });
  --depth;
  return below + std::uint64_t(n) + frame[n & 255];
}

std::uint64_t expectedSum(int levels) {
  std::uint64_t sum = 0;
  for (int n = 0; n <= levels; ++n) sum += std::uint64_t(n) + std::uint64_t(n & 255);
  return sum;
}

struct Recursion {
  int levels;
  std::uint64_t sum = 0;
  int leafDepth = -1;

  void run() {
    depthAtLeaf = -1;
    sum = sumDown(levels);
    leafDepth = depthAtLeaf;
  }
};

}  // namespace

// A million levels need hundreds of megabytes of stack: far more than the
// main thread has, and a small thread far less still, so both succeed only
// by moving to new segments, segment after nested segment.
TEST(sxDeepStack, RecursesFarBeyondTheThreadStack) {
  Recursion onMain{1000000};
  onMain.run();
  EXPECT_EQ(onMain.sum, expectedSum(onMain.levels));
  EXPECT_EQ(onMain.leafDepth, onMain.levels + 1);
  EXPECT_EQ(depth, 0);

  Recursion onSmallThread{200000};
  ASSERT_TRUE(sxiStack::runOnThread(
      std::size_t(256) << 10, [](void* p) { static_cast<Recursion*>(p)->run(); }, &onSmallThread));
  EXPECT_EQ(onSmallThread.sum, expectedSum(onSmallThread.levels));
  EXPECT_EQ(onSmallThread.leafDepth, onSmallThread.levels + 1);
}
