#include <gtest/gtest.h>

#include <utility>

#include "support/sxThreadTestSupport.h"

using namespace sxtest;
using Link = std::pair<sxThread*, sxThread*>;
using Upstream = std::pair<sxThread*, int>;

TEST(sxThreadLinks, LinksAreCountedAndRefusedWhereTheyMustBe) {
  const int links = sxThread::getTotalNumDownstreamThreads();
  Pipeline p;
  sxThread* a = p.add();
  sxThread* b = p.add();
  sxThread* c = p.add();
  sxThread* dead = p.add();
  dead->kill();
  ASSERT_TRUE(p.link(a, b));
  ASSERT_TRUE(p.link(b, c));
  // None, itself, a dead thread either way, a link already made, a cycle.
  for (auto [up, down] : {Link{a, nullptr}, {a, a}, {a, dead}, {dead, a}, {a, b}, {c, a}, {b, a}})
    EXPECT_FALSE(up->addDownstreamThread(down));
  EXPECT_EQ(sxThread::getTotalNumDownstreamThreads(), links + 2);
  EXPECT_EQ(a->getNumDownstreamThreads(), 1);
  EXPECT_EQ(a->getDownstreamThread(0), b);
  EXPECT_EQ(a->getDownstreamThread(1), nullptr);
  EXPECT_EQ(a->getDownstreamThread(-1), nullptr);
  EXPECT_TRUE(c->hasAncestor(a) && c->hasAncestor(b));
  for (auto [t, ancestor] : {Link{a, c}, {a, a}, {c, nullptr}})
    EXPECT_FALSE(t->hasAncestor(ancestor));
  EXPECT_FALSE(a->removeDownstreamThread(c));  // not a direct link
  EXPECT_FALSE(a->removeDownstreamThread(nullptr));
  EXPECT_EQ(sxThread::getTotalNumDownstreamThreads(), links + 2);
}

TEST(sxThreadLinks, UpstreamIsTheFirstFeederAndMovesOnWhenItLeaves) {
  Pipeline p;
  sxThread* first = p.add();
  sxThread* second = p.add();
  sxThread* fed = p.addBelow(first);
  ASSERT_TRUE(p.link(second, fed));
  sxThread* sibling = p.addBelow(first);
  sxThread* stranger = p.add();
  EXPECT_EQ(std::pair(fed->getUpstreamThread(), fed->getNumUpstreamThreads()), Upstream(first, 2));
  EXPECT_TRUE(fed->shareCommonAncestor(sibling) && sibling->shareCommonAncestor(fed));
  // Not with an unlinked thread, nor where neither is fed, nor with none.
  for (auto [x, y] : {Link{fed, stranger}, {first, second}, {fed, nullptr}})
    EXPECT_FALSE(x->shareCommonAncestor(y));
  EXPECT_TRUE(first->removeDownstreamThread(fed));
  EXPECT_EQ(fed->getUpstreamThread(), second);
  EXPECT_FALSE(fed->shareCommonAncestor(sibling));
  EXPECT_TRUE(second->removeDownstreamThread(fed));
  EXPECT_EQ(std::pair(fed->getUpstreamThread(), fed->getNumUpstreamThreads()),
            Upstream(nullptr, 0));
  // Now the former cycle is allowed the other way round.
  EXPECT_TRUE(fed->addDownstreamThread(first) && fed->removeDownstreamThread(first));
}
