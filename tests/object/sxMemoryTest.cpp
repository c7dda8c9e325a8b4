#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <set>
#include <thread>
#include <tuple>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
#define SX_TEST_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SX_TEST_ASAN 1
#endif
#endif

TEST(sxMemory, TotalFollowsAllocationsAndReleasesCompareOnlyTellsEquality) {
  const std::size_t before = sxMemory::getSize();
  void* p = sxMemory::malloc(100);
  ASSERT_NE(p, nullptr);
  std::size_t usable = sxMemory::getSize(p);
  EXPECT_GE(usable, 100u);
  EXPECT_EQ(sxMemory::getSize(), before + usable);
  p = sxMemory::realloc(p, 5000);
  ASSERT_NE(p, nullptr);
  EXPECT_EQ(sxMemory::getSize(), before + sxMemory::getSize(p));
  EXPECT_EQ(sxMemory::realloc(p, 16), p) << "realloc never shrinks";
  sxMemory::free(p);
  EXPECT_EQ(sxMemory::getSize(), before);
  sxMemory::free(nullptr);  // ignored
  EXPECT_EQ(sxMemory::getSize(nullptr), 0u);
  EXPECT_EQ(sxMemory::realloc(nullptr, 0), nullptr);
  // malloc32 keeps whole words only; calloc clears.
  p = sxMemory::malloc32(7);  // gets 4 bytes
  EXPECT_TRUE(p && sxMemory::getSize(p) >= 4u);
  sxMemory::free(p);
  auto* z = static_cast<unsigned char*>(sxMemory::calloc(10, 10));
  ASSERT_NE(z, nullptr);
  EXPECT_EQ(std::count(z, z + 100, 0), 100);
  sxMemory::free(z);
  EXPECT_EQ(sxMemory::getSize(), before);
  // Comparison reports only equality.
  const char a[] = "abcdefghij";
  char b[sizeof a];
  std::memcpy(b, a, sizeof a);
  b[10] = 'x';  // in the tail after the whole words
  EXPECT_EQ(std::tuple(sxMemory::compare(a, b, 11), sxMemory::compare(a, b, 10),
                       sxMemory::compare32(a, b, 8)),
            std::tuple(1, 0, 0));
  b[0] = '0';  // lower than 'a': still 1, no ordering
  EXPECT_EQ(std::tuple(sxMemory::compare(a, b, 4), sxMemory::compare32(a, b, 4)), std::tuple(1, 1));
}

TEST(sxArena, BlockSizesFitRulesFirstFitAndTheListOfArenas) {
  EXPECT_EQ(sxArena(10).getBlockSize(), 64u);
  sxArena a(64);
  auto* first = static_cast<char*>(a.malloc(40));  // 16 + 40 < 64
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(a.getNumBlocks(), 1);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(first) % 8, 0u);
  auto* second = static_cast<char*>(a.malloc(48));  // 16 + 48 is not below 64
  EXPECT_EQ(a.getNumBlocks(), 2);
  EXPECT_TRUE(a.inRange(first) && a.inRange(second));
  EXPECT_TRUE(a.inRange(first - 16) && !a.inRange(first - 17));  // a block starts with its header
  sxArena b(256);
  auto* p = static_cast<char*>(b.malloc(1));
  auto* q = static_cast<char*>(b.malloc(1));
  EXPECT_EQ(q - p, 8);  // malloc(1) advances by 8
  b.reset();
  EXPECT_EQ(b.malloc(8), p);  // the first block's start plus 16 again
  EXPECT_EQ(b.getNumBlocks(), 1);
  // A large request gets a full block of its own.
  sxArena big(64);
  auto* large = static_cast<char*>(big.malloc(200));
  ASSERT_NE(large, nullptr);
  std::memset(large, 0xAB, 200);  // the whole request is usable
  EXPECT_EQ(big.getNumBlocks(), 2);
  big.malloc(8);  // the large block is full at once: the first block serves
  EXPECT_EQ(big.getNumBlocks(), 2);
  big.malloc(40);  // no room in either: a third block
  EXPECT_EQ(big.getNumBlocks(), 3);
  // A request just above size - 16 also fits entirely in its block.
  sxArena c(64);
  c.malloc(40);
  auto* edge = static_cast<char*>(c.malloc(56));
  std::memset(edge, 0xCD, 56);
  EXPECT_EQ(c.getNumBlocks(), 2);
  // The size hints must return what a walk from the first block returns.
  sxArena walk(128);
  auto* x = static_cast<char*>(walk.malloc(96));  // block 1: 16 left
  auto* y = static_cast<char*>(walk.malloc(64));  // block 2: 48 left
  auto* z = static_cast<char*>(walk.malloc(8));   // fits block 1 (16 > 8)
  EXPECT_EQ(z, x + 96);
  auto* w = static_cast<char*>(walk.malloc(40));  // block 1 has 8 left, block 2 has 48
  EXPECT_EQ(w, y + 64);
  EXPECT_EQ(walk.getNumBlocks(), 2);
  auto* v = static_cast<char*>(walk.malloc(0));  // any block with room: block 1
  EXPECT_EQ(v, x + 104);
  walk.reset();
  EXPECT_EQ(walk.malloc(96), x);
  EXPECT_EQ(walk.malloc(64), y);
  // The list keeps the indices of destroyed arenas.
  int base = sxArena::getNum();
  auto *la = new sxArena, *lb = new sxArena, *lc = new sxArena;
  EXPECT_EQ(la->getIndex(), base);
  delete lb;
  EXPECT_EQ(sxArena::getNum(), base + 3);
  EXPECT_EQ(lc->getIndex(), base + 2);
  EXPECT_EQ(sxArena::get(base + 2), lc);
  for (int i : {base + 1, base + 3, -1}) EXPECT_EQ(sxArena::get(i), nullptr) << i;
  // A copy shares the blocks and is not listed.
  sxArena alias(*lc);
  EXPECT_EQ(alias.getIndex(), -1);
  EXPECT_TRUE(alias.inRange(lc->malloc(16)));
  delete lc;
  delete la;
}

// Objects live in fixed-size slots cached per thread. Made on one thread
// and destroyed on another that then ends, their slots must reach the next
// thread that makes objects (nothing lost at a thread's end, nothing handed
// out twice), with the total back where it was and 16-aligned classes on
// 16-aligned slots. (An AddressSanitizer build serves objects from the heap,
// so that it keeps catching use after free; reuse is not asked there.)
TEST(sxObjectPool, SlotsFreedOnAnEndedThreadServeTheNextThread) {
  constexpr int n = 6000;  // many batches of hand-back
  std::vector<sxGroup*> groups(n);
  std::vector<sxTransform*> transforms(n / 10);
  std::size_t before = 0;  // after the first round, which grows the instance lists
  std::set<void*> firstRound;
  for (int round = 0; round < 3; ++round) {
    std::thread([&] {
      for (auto& g : groups) (g = new sxGroup)->ref();
      for (auto& t : transforms) (t = new sxTransform)->ref();
    }).join();
    const std::set<void*> slots(groups.begin(), groups.end());
    ASSERT_EQ(slots.size(), std::size_t(n)) << "a slot handed out twice";
    for (auto* t : transforms)
      ASSERT_EQ(reinterpret_cast<std::uintptr_t>(t) % alignof(sxTransform), 0u);
    if (round > 0) {
      EXPECT_GE(sxMemory::getSize(), before + n * sizeof(sxGroup));
    }
    std::thread([&] {
      for (auto* g : groups) g->unRef();
      for (auto* t : transforms) t->unRef();
    }).join();
    if (round == 0) before = sxMemory::getSize();
    EXPECT_EQ(sxMemory::getSize(), before);
#if !defined(SX_TEST_ASAN)
    if (round == 0) {
      firstRound = slots;
    } else {
      const auto reused = std::count_if(groups.begin(), groups.end(),
                                        [&](sxGroup* g) { return firstRound.count(g) > 0; });
      EXPECT_EQ(reused, n) << "round " << round;
    }
#endif
  }
}
