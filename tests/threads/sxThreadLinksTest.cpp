#include <gtest/gtest.h>

#include <tuple>
#include <utility>

#include "support/sxThreadTestSupport.h"

using namespace sxtest;
using Link = std::pair<sxThread*, sxThread*>;

TEST(sxThreadLinks, LinksAreCountedRefusedAndFollowedUpstream) {
  const int links = sxThread::getTotalNumDownstreamThreads();
  Pipeline p;
  sxThread* a = p.chain(3);
  ASSERT_TRUE(a);
  sxThread *b = p.threads[1], *c = p.threads[2], *dead = p.add();
  dead->kill();
  // None, itself, a dead thread either way, a link already made, a cycle.
  for (auto [up, down] : {Link{a, nullptr}, {a, a}, {a, dead}, {dead, a}, {a, b}, {c, a}, {b, a}})
    EXPECT_FALSE(up->addDownstreamThread(down));
  EXPECT_EQ(
      std::tuple(sxThread::getTotalNumDownstreamThreads(), a->getNumDownstreamThreads(),
                 a->getDownstreamThread(0), a->getDownstreamThread(1), a->getDownstreamThread(-1)),
      std::tuple(links + 2, 1, b, nullptr, nullptr));
  EXPECT_TRUE(c->hasAncestor(a) && c->hasAncestor(b));
  for (auto [t, ancestor] : {Link{a, c}, {a, a}, {c, nullptr}})
    EXPECT_FALSE(t->hasAncestor(ancestor));
  // Not a direct link, not a thread.
  EXPECT_FALSE(a->removeDownstreamThread(c) || a->removeDownstreamThread(nullptr));
  EXPECT_EQ(sxThread::getTotalNumDownstreamThreads(), links + 2);
  // The upstream thread is the first feeder and moves on when it leaves.
  sxThread *first = p.add(), *second = p.add();
  sxThread* fed = p.addBelow(first);
  ASSERT_TRUE(p.link(second, fed));
  sxThread *sibling = p.addBelow(first), *stranger = p.add();
  EXPECT_EQ(std::tuple(fed->getUpstreamThread(), fed->getNumUpstreamThreads()),
            std::tuple(first, 2));
  EXPECT_TRUE(fed->shareCommonAncestor(sibling) && sibling->shareCommonAncestor(fed));
  // Not with an unlinked thread, nor where neither is fed, nor with none.
  for (auto [x, y] : {Link{fed, stranger}, {first, second}, {fed, nullptr}})
    EXPECT_FALSE(x->shareCommonAncestor(y));
  EXPECT_TRUE(first->removeDownstreamThread(fed));
  EXPECT_EQ(fed->getUpstreamThread(), second);
  EXPECT_FALSE(fed->shareCommonAncestor(sibling));
  EXPECT_TRUE(second->removeDownstreamThread(fed));
  EXPECT_EQ(std::tuple(fed->getUpstreamThread(), fed->getNumUpstreamThreads()),
            std::tuple(nullptr, 0));
  // Now the former cycle is allowed the other way round.
  EXPECT_TRUE(fed->addDownstreamThread(first) && fed->removeDownstreamThread(first));
}
