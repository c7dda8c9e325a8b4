#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <cstdint>
#include <tuple>
#include <vector>

namespace {

using Values = std::vector<std::intptr_t>;

void* P(std::intptr_t v) {
  return reinterpret_cast<void*>(v);
}

Values values(const sxList& l) {
  Values out;
  for (int i = 0; i < l.getNum(); ++i) out.push_back(reinterpret_cast<std::intptr_t>(l[i]));
  return out;
}

sxRef<sxQueue> makeQueue(int capacity, sxQueue::MODE mode) {
  sxRef<sxQueue> q(new sxQueue(sizeof(int), capacity));
  q->setMode(mode);
  return q;
}

// Puts each value and returns how many went in.
int put(sxQueue& q, std::initializer_list<int> values) {
  int n = 0;
  for (int v : values) n += q.put(&v);
  return n;
}

std::vector<int> drain(sxQueue& q) {
  std::vector<int> out;
  int v;
  while (q.get(&v)) out.push_back(v);
  return out;
}

}  // namespace

TEST(sxList, SearchesFindTheHighestIndexAndRemovalsKeepOrWaiveOrder) {
  sxList l;
  EXPECT_EQ(l.getCapacity(), 0);
  for (std::intptr_t v : {10, 20, 30, 40, 20, 60}) l.add(P(v));
  EXPECT_EQ(l.getCapacity(), 8) << "two slots at first, then doubling";
  EXPECT_EQ(l.getIndex(P(20)), 4);
  EXPECT_TRUE(l.checkRemove(P(20)));
  EXPECT_EQ(values(l), (Values{10, 20, 30, 40, 60})) << "the last element moves into the hole";
  EXPECT_EQ(l.getIndex(P(20)), 1);
  EXPECT_FALSE(l.checkRemove(P(99)));
  EXPECT_FALSE(l.addUnique(P(30)));
  EXPECT_TRUE(l.checkRemoveOrdered(P(20)));
  EXPECT_TRUE(l.checkReplace(P(40), P(41)));
  EXPECT_FALSE(l.checkReplace(P(40), P(42)));
  EXPECT_EQ(values(l), (Values{10, 30, 41, 60}));
  EXPECT_FALSE(l.checkRemoveOrderedIndex(l.getNum()));
  EXPECT_FALSE(l.checkRemoveIndex(-1));
  EXPECT_EQ(l.checkRemoveLast(), P(60));
  sxList empty;
  EXPECT_EQ(empty.checkRemoveLast(), nullptr);
  EXPECT_EQ(empty.getNum(), 0);  // the count word stays intact
}

TEST(sxList, InsertSetAndSetSizeChangeTheCountAndCopiesCompare) {
  sxList l;
  EXPECT_TRUE(l.insert(10, P(7)));
  EXPECT_EQ(std::tuple(l.getNum(), l[10]), std::tuple(11, P(7)));
  EXPECT_TRUE(l.insert(0, P(1)));
  EXPECT_EQ(std::tuple(l.getNum(), l[11]), std::tuple(12, P(7)));
  EXPECT_FALSE(l.insert(-1, P(1)));
  EXPECT_TRUE(l.insert(1, P(2)));
  EXPECT_EQ(l[12], P(7));
  EXPECT_TRUE(l.set(20, P(6)));
  EXPECT_EQ(l.getNum(), 21);
  EXPECT_TRUE(l.set(0, P(0)));
  EXPECT_EQ(l.getNum(), 21);
  sxList big(0);
  big.set(20, P(9));  // from capacity 0: exactly what is needed
  EXPECT_EQ(big.getCapacity(), 21);

  // setSize cuts; copies assign and compare.
  l.setSize(0);
  for (int i = 1; i <= 6; ++i) l.add(P(i));
  l.setSize(3);
  EXPECT_EQ(l.getCapacity(), 3);
  EXPECT_EQ(values(l), (Values{1, 2, 3}));
  sxList copy(l);
  EXPECT_TRUE(copy == l);
  copy.add(P(4));
  EXPECT_TRUE(copy != l);
  sxList target;
  for (int i = 0; i < 10; ++i) target.add(P(100));
  int capacity = target.getCapacity();
  target = l;
  EXPECT_TRUE(target == l);
  EXPECT_EQ(target.getCapacity(), capacity);  // never shrinks
  l.setSize(0);
  EXPECT_EQ(std::tuple(l.getNum(), l.getCapacity()), std::tuple(0, 0));
}

TEST(sxList, ArenaListsKeepTheirArena) {
  sxArena arena(1024);
  sxList l(4, &arena);
  ASSERT_TRUE(l.isArenaList());
  EXPECT_EQ(l.getArena(), &arena);
  Values expected;
  for (int i = 1; i <= 20; ++i) expected.push_back(l.add(P(i)) + 1);
  EXPECT_EQ(values(l), expected) << "add returns the new index";
  EXPECT_TRUE(arena.inRange(&l[0]));
  l.setSize(0);
  EXPECT_EQ(l.getArena(), &arena);
  l.add(P(5));
  l.setSize(1);  // arena lists never shrink their storage
  EXPECT_GE(l.getCapacity(), 2);
  l.checkRemoveLast();
  EXPECT_EQ(l.checkRemoveLast(), nullptr);
  EXPECT_TRUE(l.isArenaList());
}

TEST(sxTList, TypedAccessForPointersIntegersAndFunctions) {
  sxTList<int> ints;
  ints.add(-5);
  ints.add(7);
  EXPECT_EQ(ints.getIndex(7), 1);
  int sum = 0;
  for (int v : ints) sum += v;
  EXPECT_EQ(sum, 2);
  using Fn = int (*)();
  sxTList<Fn> fns;
  fns.add([] { return 3; });
  EXPECT_EQ(fns[0](), 3);
  sxTList<const char*> names;
  names.add("x");
  EXPECT_STREQ(names.checkRemoveLast(), "x");
}

TEST(sxStack, GrowsByDoublingCountsEveryChangeAndIsBounded) {
  sxStack s(0);
  EXPECT_EQ(std::tuple(s.getCapacity(), s.isEmpty()), std::tuple(1, true));
  short id = s.getID();
  s.push(P(1));
  s.push(P(2));
  EXPECT_EQ(std::tuple(s.getCapacity(), s.getNum(), s.getTop()), std::tuple(2, 2, P(2)));
  s.setTop(P(3));
  EXPECT_EQ(s.pop(), P(3));
  EXPECT_EQ(s.pop(), P(1));
  EXPECT_EQ(s.pop(), nullptr);  // harmless on empty
  EXPECT_EQ(s.getTopIndex(), -1);
  s.setTop(P(9));  // empty: no data
  EXPECT_EQ(s.getTop(), nullptr);
  s.reset();
  EXPECT_EQ(short(s.getID() - id), 8);  // two pushes, setTop, three pops, setTop, reset
  for (int i = 0; i < 70000; ++i) s.reset();
  EXPECT_EQ(std::uint16_t(s.getID() - id), std::uint16_t(70008)) << "the counter wraps";

  for (int i = 0; i < sxStack::maxElements; ++i) ASSERT_TRUE(s.push(P(i + 1)));
  EXPECT_FALSE(s.push(P(1)));
  EXPECT_EQ(std::tuple(s.getNum(), s.getTop()),
            std::tuple(sxStack::maxElements, P(sxStack::maxElements)));
  sxStack copy(s);
  EXPECT_EQ(std::tuple(copy.getNum(), copy.get(100)), std::tuple(s.getNum(), P(101)));
}

// Growing queues, which double and keep their order across the wrap, are
// tested between two threads (threads/sxThreadQueueTest).
TEST(sxQueue, BoundedHoldsOneLessThanCapacityOverwriteDropsTheOldest) {
  sxRef<sxQueue> q = makeQueue(4, sxQueue::BOUNDED);
  EXPECT_EQ(put(*q, {1, 2, 3, 4}), 3);
  EXPECT_EQ(q->getCount(), 3);
  EXPECT_EQ(drain(*q), (std::vector<int>{1, 2, 3}));
  EXPECT_FALSE(q->put(nullptr));
  int v = 0;
  EXPECT_FALSE(q->get(&v));
  EXPECT_FALSE(q->get(nullptr));
  // Wrapping around the buffer keeps the order.
  for (int round = 0; round < 5; ++round) {
    put(*q, {0, 1, 2});
    EXPECT_EQ(drain(*q), (std::vector<int>{0, 1, 2}));
  }
  // Overwriting queues hold all four and drop the oldest.
  q = makeQueue(4, sxQueue::OVERWRITE);
  EXPECT_EQ(put(*q, {1, 2, 3, 4, 5}), 5);
  EXPECT_EQ(q->getCount(), 4);
  int first = 0;
  EXPECT_TRUE(q->sample(&first));
  EXPECT_EQ(first, 2);
  EXPECT_EQ(put(*q, {6}), 1);
  EXPECT_EQ(drain(*q), (std::vector<int>{3, 4, 5, 6}));
}

TEST(sxQueue, CopiesHoldTheSourceRecordsOldestFirst) {
  sxRef<sxQueue> q = makeQueue(3, sxQueue::OVERWRITE);
  put(*q, {1, 2, 3, 4, 5});  // holds 3 4 5, wrapped
  sxQueue copy(*q);
  EXPECT_EQ(std::tuple(copy.getMode(), copy.getCapacity()), std::tuple(sxQueue::OVERWRITE, 3));
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
  sxQueue tiny(0, 0);
  EXPECT_EQ(std::tuple(tiny.getElementSize(), tiny.getCapacity()), std::tuple(1, 1));
}
