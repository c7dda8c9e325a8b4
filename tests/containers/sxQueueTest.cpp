#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <vector>

namespace {
std::vector<int> drain(sxQueue& q) {
  std::vector<int> out;
  int v;
  while (q.get(&v)) out.push_back(v);
  return out;
}
sxQueue* make(int capacity, sxQueue::MODE mode) {
  auto* q = new sxQueue(sizeof(int), capacity);
  q->ref();
  q->setMode(mode);
  return q;
}
}  // namespace

// Growing queues, which double and keep their order across the wrap, are
// tested between two threads (threads/sxThreadQueueTest).
TEST(sxQueue, BoundedHoldsOneLessThanCapacity) {
  sxQueue* q = make(4, sxQueue::BOUNDED);
  for (int i = 1; i <= 3; ++i) EXPECT_TRUE(q->put(&i));
  int four = 4;
  EXPECT_FALSE(q->put(&four));
  EXPECT_EQ(q->getCount(), 3);
  EXPECT_EQ(drain(*q), (std::vector<int>{1, 2, 3}));
  EXPECT_FALSE(q->put(nullptr));
  int v = 0;
  EXPECT_FALSE(q->get(&v));
  EXPECT_FALSE(q->get(nullptr));
  // Wrapping around the buffer keeps the order.
  for (int round = 0; round < 5; ++round) {
    for (int i = 0; i < 3; ++i) q->put(&i);
    EXPECT_EQ(drain(*q), (std::vector<int>{0, 1, 2}));
  }
  q->unRef();
}

TEST(sxQueue, OverwriteDropsTheOldest) {
  sxQueue* q = make(4, sxQueue::OVERWRITE);
  for (int i = 1; i <= 4; ++i) EXPECT_TRUE(q->put(&i));
  EXPECT_EQ(q->getCount(), 4);
  int five = 5, six = 6;
  EXPECT_TRUE(q->put(&five));
  EXPECT_EQ(q->getCount(), 4);
  int first = 0;
  EXPECT_TRUE(q->sample(&first));
  EXPECT_EQ(first, 2);
  EXPECT_TRUE(q->put(&six));
  EXPECT_EQ(drain(*q), (std::vector<int>{3, 4, 5, 6}));
  q->unRef();
}

TEST(sxQueue, CopiesHoldTheSourceRecordsOldestFirst) {
  sxQueue* q = make(3, sxQueue::OVERWRITE);
  for (int i = 1; i <= 5; ++i) q->put(&i);  // holds 3 4 5, wrapped
  sxQueue copy(*q);
  EXPECT_EQ(copy.getMode(), sxQueue::OVERWRITE);
  EXPECT_EQ(copy.getCapacity(), 3);
  EXPECT_EQ(drain(copy), (std::vector<int>{3, 4, 5}));
  EXPECT_EQ(q->getCount(), 3);  // the source is untouched
  sxQueue assigned(8, 1);
  assigned = *q;
  EXPECT_EQ(assigned.getElementSize(), int(sizeof(int)));
  EXPECT_EQ(drain(assigned), (std::vector<int>{3, 4, 5}));
  q->reset();
  EXPECT_EQ(q->getCount(), 0);
  int v;
  EXPECT_FALSE(q->sample(&v));
  q->unRef();
  sxQueue tiny(0, 0);
  EXPECT_EQ(tiny.getElementSize(), 1);
  EXPECT_EQ(tiny.getCapacity(), 1);
}
