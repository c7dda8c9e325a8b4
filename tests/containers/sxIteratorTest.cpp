#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <tuple>
#include <vector>

namespace {

using It = sxIterator;

template <class Iterator>
std::vector<int> run(Iterator&& it, int updates) {
  std::vector<int> out;
  for (int i = 0; i < updates; ++i) out.push_back(it.update());
  return out;
}

// A reset iterator over items that each last `each` updates or seconds.
It make(int items, It::CYCLE cycle, It::DIRECTION direction, It::MODE mode = It::FRAMES,
        float each = 1) {
  It it;
  it.setMode(mode);
  it.setCycle(cycle);
  it.setDirection(direction);
  if (mode == It::FRAMES)
    it.setItemFrameCount(int(each));
  else
    it.setItemTime(each);
  it.setNumItems(items);
  it.reset();
  return it;
}

}  // namespace

TEST(sxIterator, CyclesFrameCountsAndPausingStepThroughTheItems) {
  EXPECT_EQ(run(make(3, It::LOOP, It::FORWARD), 4), (std::vector<int>{0, 1, 2, 0}));
  EXPECT_EQ(run(make(3, It::SWING, It::FORWARD), 6), (std::vector<int>{0, 1, 2, 1, 0, 1}));
  EXPECT_EQ(run(make(3, It::ONCE, It::BACKWARD), 3), (std::vector<int>{2, 1, -1}));
  EXPECT_EQ(run(make(2, It::ONCE, It::FORWARD), 3), (std::vector<int>{0, 1, -1}));
  EXPECT_EQ(run(make(1, It::SWING, It::FORWARD), 3), (std::vector<int>{0, 0, 0}));
  EXPECT_EQ(run(make(3, It::LOOP, It::BACKWARD), 4), (std::vector<int>{2, 1, 0, 2}));
  // Items of no duration step once per update instead of spinning, in
  // either mode; long ones hold.
  EXPECT_EQ(run(make(3, It::LOOP, It::FORWARD, It::FRAMES, 0), 4), (std::vector<int>{0, 1, 2, 0}));
  EXPECT_EQ(run(make(3, It::ONCE, It::FORWARD, It::TIME, 0), 4), (std::vector<int>{0, 1, 2, -1}));
  EXPECT_EQ(run(make(2, It::LOOP, It::FORWARD, It::TIME, 1000), 3), (std::vector<int>{0, 0, 0}));
  EXPECT_EQ(It().update(), -1) << "no items: current stays";
  // Frame counts per item, and pausing.
  It it = make(3, It::LOOP, It::FORWARD);
  it.setItemFrameCount(1, 3);  // item 1 lasts three updates
  EXPECT_EQ(run(it, 6), (std::vector<int>{0, 1, 1, 1, 2, 0}));
  it.pause();
  EXPECT_EQ(run(it, 2), (std::vector<int>{0, 0}));
  it.resume();
  EXPECT_EQ(it.update(), 1);
}

TEST(sxIterator, TotalsAreSharedByTheItems) {
  It it;
  it.setNumItems(4);
  it.setTime(2.0f);
  EXPECT_FLOAT_EQ(it.getItemTime(3), 0.5f);
  EXPECT_EQ(it.getItemTime(4), 0.0f);
  it.setItemTime(0.25f);
  EXPECT_EQ(it.getTime(), 0.0f);
  EXPECT_FLOAT_EQ(it.getItemTime(0), 0.25f);
  it.setItemTime(6, 1.0f);  // grows the per-item array
  EXPECT_FLOAT_EQ(it.getItemTime(6), 1.0f);
  it.setMode(It::FRAMES);
  it.setFrameCount(10);
  EXPECT_EQ(it.getItemFrameCount(0), 2);  // 10 / 4, integer division
  it.setNumItems(3);
  EXPECT_EQ(it.getItemFrameCount(2), 3);
  It copy(it);
  copy.setItemFrameCount(0, 9);
  EXPECT_EQ(std::tuple(it.getItemFrameCount(0), copy.getItemFrameCount(0)), std::tuple(3, 9))
      << "copies own their arrays";
}

TEST(IteratorPersistence, RecordsRoundTripAndDamagedOnesStayInBounds) {
  It it;
  it.setNumItems(3);
  it.setItemTime(0.25f);
  it.setMode(It::FRAMES);
  it.setCycle(It::SWING);
  it.setDirection(It::BACKWARD);
  it.setFrameCount(9);
  it.setItemFrameCount(1, 7);  // set individually: not kept by a file
  it.update();
  it.pause();

  sxFile f;
  sxEntry* e = f.newEntry(f.newTag("T"));
  it.write(e);
  // bytes paused, cycle, mode, direction; ints current, step; two floats;
  // 3 item times; 2 ints; 3 frame counts; the item count.
  EXPECT_EQ(e->getDataSize(), 4 + 8 + 8 + 4 + 12 + 8 + 4 + 12 + 4);
  EXPECT_EQ(e->getData()[1], It::SWING);
  e->reset();
  It back;
  back.read(e);
  EXPECT_EQ(std::tuple(back.isPaused(), back.getCycle(), back.getMode(), back.getDirection()),
            std::tuple(true, It::SWING, It::FRAMES, It::BACKWARD));
  EXPECT_EQ(std::tuple(back.getNumItems(), back.getSelectedItem(), back.getFrameCount(),
                       back.getItemTime(2)),
            std::tuple(3, 2, 9, 0.25f));
  EXPECT_EQ(back.getItemFrameCount(1), 3) << "refilled from the total";
  EXPECT_EQ(e->getCursor(), e->getDataSize());

  // A damaged record: far more item times than the entry holds.
  sxEntry* d = f.newEntry(f.newTag("T"));
  for (int i = 0; i < 4; ++i) d->writeByte(0);
  for (int v : {0, 1}) d->writeInt(v);
  for (float v : {0.0f, 1.0f}) d->writeFloat(v);
  d->writeInt(0x7FFFFFFF);
  d->writeFloat(2.0f);
  d->reset();
  It damaged;
  damaged.read(d);
  EXPECT_EQ(damaged.getItemTime(0), 2.0f);
  EXPECT_EQ(damaged.getItemTime(1), 0.0f);
}
