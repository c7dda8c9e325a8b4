#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <cstdint>
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

TEST(sxList, InsertPastTheEndAndSetGrowTheCount) {
  sxList l;
  EXPECT_TRUE(l.insert(10, P(7)));
  EXPECT_EQ(l.getNum(), 11);
  EXPECT_EQ(l[10], P(7));
  EXPECT_TRUE(l.insert(0, P(1)));
  EXPECT_EQ(l.getNum(), 12);
  EXPECT_EQ(l[11], P(7));
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
}

TEST(sxList, SetSizeCutsAndCopiesAssignAndCompare) {
  sxList l;
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
  EXPECT_EQ(l.getNum(), 0);
  EXPECT_EQ(l.getCapacity(), 0);
}

TEST(sxList, ArenaListsKeepTheirArena) {
  sxArena arena(1024);
  sxList l(4, &arena);
  ASSERT_TRUE(l.isArenaList());
  EXPECT_EQ(l.getArena(), &arena);
  Values expected;
  for (int i = 1; i <= 20; ++i) expected.push_back(l.add(P(i)) + 1);
  EXPECT_EQ(values(l), expected);
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

TEST(sxStack, GrowsByDoublingAndCountsEveryChange) {
  sxStack s(0);
  EXPECT_EQ(s.getCapacity(), 1);
  EXPECT_TRUE(s.isEmpty());
  short id = s.getID();
  s.push(P(1));
  s.push(P(2));
  EXPECT_EQ(s.getCapacity(), 2);
  EXPECT_EQ(s.getNum(), 2);
  EXPECT_EQ(s.getTop(), P(2));
  s.setTop(P(3));
  EXPECT_EQ(s.pop(), P(3));
  EXPECT_EQ(s.pop(), P(1));
  EXPECT_EQ(s.pop(), nullptr);  // harmless on empty
  EXPECT_EQ(s.getTopIndex(), -1);
  s.setTop(P(9));  // empty: no data
  EXPECT_EQ(s.getTop(), nullptr);
  s.reset();
  EXPECT_EQ(short(s.getID() - id), 8);  // two pushes, setTop, three pops, setTop, reset
}

TEST(sxStack, CounterWrapsAndTheTopIndexIsBounded) {
  sxStack s(4);
  for (int i = 0; i < 70000; ++i) s.reset();
  EXPECT_EQ(std::uint16_t(s.getID()), std::uint16_t(70000));
  for (int i = 0; i < sxStack::maxElements; ++i) ASSERT_TRUE(s.push(P(i + 1)));
  EXPECT_FALSE(s.push(P(1)));
  EXPECT_EQ(s.getNum(), sxStack::maxElements);
  EXPECT_EQ(s.getTop(), P(sxStack::maxElements));
  sxStack copy(s);
  EXPECT_EQ(copy.getNum(), s.getNum());
  EXPECT_EQ(copy.get(100), P(101));
}
