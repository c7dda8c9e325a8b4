#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <vector>

namespace {
std::vector<int> run(sxIterator& it, int updates) {
  std::vector<int> out;
  for (int i = 0; i < updates; ++i) out.push_back(it.update());
  return out;
}
sxIterator frames(int items, sxIterator::CYCLE cycle, sxIterator::DIRECTION direction) {
  sxIterator it;
  it.setMode(sxIterator::FRAMES);
  it.setCycle(cycle);
  it.setDirection(direction);
  it.setItemFrameCount(1);
  it.setNumItems(items);
  it.reset();
  return it;
}
}  // namespace

TEST(sxIterator, CyclesStepThroughTheItems) {
  sxIterator loop = frames(3, sxIterator::LOOP, sxIterator::FORWARD);
  EXPECT_EQ(run(loop, 4), (std::vector<int>{0, 1, 2, 0}));
  sxIterator swing = frames(3, sxIterator::SWING, sxIterator::FORWARD);
  EXPECT_EQ(run(swing, 6), (std::vector<int>{0, 1, 2, 1, 0, 1}));
  sxIterator back = frames(3, sxIterator::ONCE, sxIterator::BACKWARD);
  EXPECT_EQ(run(back, 3), (std::vector<int>{2, 1, -1}));
  sxIterator once = frames(2, sxIterator::ONCE, sxIterator::FORWARD);
  EXPECT_EQ(run(once, 3), (std::vector<int>{0, 1, -1}));
  sxIterator single = frames(1, sxIterator::SWING, sxIterator::FORWARD);
  EXPECT_EQ(run(single, 3), (std::vector<int>{0, 0, 0}));
  sxIterator backLoop = frames(3, sxIterator::LOOP, sxIterator::BACKWARD);
  EXPECT_EQ(run(backLoop, 4), (std::vector<int>{2, 1, 0, 2}));
}

TEST(sxIterator, FrameCountsPerItemAndPausing) {
  sxIterator it = frames(3, sxIterator::LOOP, sxIterator::FORWARD);
  it.setItemFrameCount(1, 3);  // item 1 lasts three updates
  EXPECT_EQ(run(it, 6), (std::vector<int>{0, 1, 1, 1, 2, 0}));
  it.pause();
  EXPECT_EQ(run(it, 2), (std::vector<int>{0, 0}));
  it.resume();
  EXPECT_EQ(it.update(), 1);
  // Items that last no frames step once per update instead of spinning.
  sxIterator zero = frames(3, sxIterator::LOOP, sxIterator::FORWARD);
  zero.setItemFrameCount(0);
  EXPECT_EQ(run(zero, 4), (std::vector<int>{0, 1, 2, 0}));
  sxIterator none;
  EXPECT_EQ(none.update(), -1);  // no items: current stays
}

TEST(sxIterator, TotalsAreSharedByTheItems) {
  sxIterator it;
  it.setNumItems(4);
  it.setTime(2.0f);
  EXPECT_FLOAT_EQ(it.getItemTime(3), 0.5f);
  EXPECT_EQ(it.getItemTime(4), 0.0f);
  it.setItemTime(0.25f);
  EXPECT_EQ(it.getTime(), 0.0f);
  EXPECT_FLOAT_EQ(it.getItemTime(0), 0.25f);
  it.setItemTime(6, 1.0f);  // grows the per-item array
  EXPECT_FLOAT_EQ(it.getItemTime(6), 1.0f);
  it.setMode(sxIterator::FRAMES);
  it.setFrameCount(10);
  EXPECT_EQ(it.getItemFrameCount(0), 2);  // 10 / 4, integer division
  it.setNumItems(3);
  EXPECT_EQ(it.getItemFrameCount(2), 3);
  sxIterator copy(it);
  copy.setItemFrameCount(0, 9);
  EXPECT_EQ(it.getItemFrameCount(0), 3);  // copies own their arrays
  EXPECT_EQ(copy.getItemFrameCount(0), 9);
}

TEST(sxIterator, TimeModeAdvancesWithTheClock) {
  sxIterator it;
  it.setCycle(sxIterator::ONCE);
  it.setItemTime(0.0f);
  it.setNumItems(3);
  it.reset();
  // Items of no duration step once per update.
  EXPECT_EQ(run(it, 4), (std::vector<int>{0, 1, 2, -1}));
  sxIterator slow;
  slow.setItemTime(1000.0f);
  slow.setNumItems(2);
  slow.reset();
  EXPECT_EQ(run(slow, 3), (std::vector<int>{0, 0, 0}));
}
