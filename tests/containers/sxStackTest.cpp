#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <cstdint>

namespace {
void* P(std::intptr_t v) {
  return reinterpret_cast<void*>(v);
}
}  // namespace

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
