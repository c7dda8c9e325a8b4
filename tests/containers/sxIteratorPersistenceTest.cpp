#include <gtest/gtest.h>
#include <sx/sxCore.h>

namespace {

TEST(IteratorPersistence, RecordRoundTrip) {
  sxIterator it;
  it.setNumItems(3);
  it.setItemTime(0.25f);
  it.setMode(sxIterator::FRAMES);
  it.setCycle(sxIterator::SWING);
  it.setDirection(sxIterator::BACKWARD);
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
  EXPECT_EQ(e->getData()[1], sxIterator::SWING);
  e->reset();
  sxIterator back;
  back.read(e);
  EXPECT_TRUE(back.isPaused());
  EXPECT_EQ(back.getCycle(), sxIterator::SWING);
  EXPECT_EQ(back.getMode(), sxIterator::FRAMES);
  EXPECT_EQ(back.getDirection(), sxIterator::BACKWARD);
  EXPECT_EQ(back.getNumItems(), 3);
  EXPECT_EQ(back.getSelectedItem(), 2);
  EXPECT_EQ(back.getFrameCount(), 9);
  EXPECT_EQ(back.getItemFrameCount(1), 3) << "refilled from the total";
  EXPECT_EQ(back.getItemTime(2), 0.25f);
  EXPECT_EQ(e->getCursor(), e->getDataSize());
}

TEST(IteratorPersistence, DamagedRecordsStayInBounds) {
  sxFile f;
  sxEntry* e = f.newEntry(f.newTag("T"));
  for (int i = 0; i < 4; ++i) e->writeByte(0);
  e->writeInt(0);
  e->writeInt(1);
  e->writeFloat(0);
  e->writeFloat(1);
  e->writeInt(0x7FFFFFFF);  // item times: far more than the entry holds
  e->writeFloat(2.0f);
  e->reset();
  sxIterator it;
  it.read(e);
  EXPECT_EQ(it.getItemTime(0), 2.0f);
  EXPECT_EQ(it.getItemTime(1), 0.0f);
}

}  // namespace
