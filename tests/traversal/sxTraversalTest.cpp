#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <cstdint>
#include <map>
#include <string>
#include <thread>
#include <vector>

// A visual trait with a stack of its own, to see whether a style pushed it.
class sxTestVisualTrait : public sxVisualTrait {
 public:
  SX_CLASS(sxTestVisualTrait, sxVisualTrait)
  sxTestVisualTrait() = default;
};

namespace {

// Records every group it is asked about, the cull bits in force there, and
// answers preApply and apply from tables by name (the break points of the
// base class apply where the table has no entry).
class Recorder : public sxTraverser {
 public:
  TRAV_STATE preApply(sxGroup* g) override { return lookup(preStates, g, TRAV_CONTINUE); }
  TRAV_STATE apply(sxGroup* g) override {
    visited += g->getName();
    ++applied;
    cull[g->getName()] = getTravContext()->anyFlags(sxTravContext::FLAG_CULL_MASK);
    return lookup(states, g, sxTraverser::apply(g));
  }
  std::map<std::string, TRAV_STATE> preStates, states;
  std::string visited;
  int applied = 0;
  std::map<std::string, unsigned> cull;

 private:
  static TRAV_STATE lookup(const std::map<std::string, TRAV_STATE>& m, sxGroup* g,
                           TRAV_STATE otherwise) {
    auto it = m.find(g->getName());
    return it == m.end() ? otherwise : it->second;
  }
};

template <class G = sxGroup>
sxRef<G> node(const char* name, std::vector<sxGroup*> children = {}) {
  sxRef<G> g(new G);
  g->setName(name);
  for (sxGroup* c : children) g->addChild(c);
  return g;
}

sxRef<sxTraverser> recorderWith(sxTraitStack* ts, sxStats* stats) {
  sxRef<sxTraverser> t(new Recorder);
  sxRef<sxTravContext> ctx(new sxTravContext);
  ctx->setTraitStack(ts);
  ctx->setStats(stats);
  t->setTravContext(ctx.get());
  return t;
}

// Two nested styles U (above) and W (below) carry a cull trait each:
// R -> [U -> [W -> [L], M], N]. The cull bits seen at L (inside W), M
// (after W) and N (after U) show which trait won and what each pop put
// back; 0 marks a group not visited.
TEST(sxTraitStack, ApplyModesDefaultsAndPrune) {
  using M = sxTrait::MODE;
  constexpr unsigned A = 0x0100, B = 0x0400, D = 0x1500;
  struct Case {
    M upper, lower;
    bool sameObject, defaults, lowerPrunes;
    unsigned atL, atM, atN;
  } cases[] = {
      {M::MODE_NORMAL, M::MODE_NORMAL, false, false, false, B, A, A},
      {M::MODE_NORMAL, M::MODE_NORMAL, false, true, false, B, A, D},
      {M::MODE_OVERRIDE, M::MODE_NORMAL, false, false, false, A, A, A},
      {M::MODE_OVERRIDE, M::MODE_FORCE, false, true, false, B, A, D},
      {M::MODE_OVERRIDE, M::MODE_OVERRIDE, true, true, false, A, A, D},
      {M::MODE_OFF, M::MODE_NORMAL, false, false, false, B, B, B},
      {M::MODE_OFF, M::MODE_NORMAL, false, true, false, B, D, D},
      {M::MODE_NORMAL, M::MODE_NORMAL, false, false, true, 0, A, A},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "modes " << c.upper << "/" << c.lower << " same "
                                    << c.sameObject << " defaults " << c.defaults);
    sxRef<sxCull> upper(new sxCull), lower(new sxCull);
    upper->setMask(A);
    upper->setApplyMode(c.upper);
    lower->setMask(B);
    lower->setApplyMode(c.lower);
    sxRef<sxTestVisualTrait> visual(new sxTestVisualTrait);
    sxRef<sxAudioLevelScale> level(new sxAudioLevelScale);
    sxRef<sxPrune> prune(new sxPrune);
    prune->enable(true);
    auto leaf = node("L");
    auto w = node<sxStyle>("W", {leaf.get()});
    auto u = node<sxStyle>("U", {w.get(), node("M").get()});
    auto root = node("R", {u.get(), node("N").get()});
    u->addTrait(upper.get());
    w->addTrait(c.sameObject ? upper.get() : lower.get());
    if (c.lowerPrunes) {
      w->addTrait(prune.get());
      w->addTrait(visual.get());
      w->addTrait(level.get());
    }
    sxRef<sxTraitStack> ts(new sxTraitStack(sxTraitStack::STACK_ALL, c.defaults));
    sxRef<sxStats> stats(new sxStats);
    auto t = recorderWith(ts.get(), stats.get());
    t->traverse(root.get());
    auto& r = static_cast<Recorder&>(*t);
    EXPECT_EQ(r.visited, c.lowerPrunes ? "RUMN" : "RUWLMN");
    EXPECT_EQ(r.cull["L"], c.atL);
    EXPECT_EQ(r.cull["M"], c.atM);
    EXPECT_EQ(r.cull["N"], c.atN);
    EXPECT_EQ(t->getTravContext()->getTravStackID(), 0u) << "every push was popped";
    // A pruning style pushes neither its visual nor its audio traits.
    EXPECT_EQ(ts->getVisualChangeCounter(), 0);
    EXPECT_EQ(stats->getCount(static_cast<sxAudioTraitType*>(level->getType())), 0);
    EXPECT_EQ(ts->getTop(static_cast<sxTravTraitType*>(upper->getType())),
              c.defaults ? ts->getAppliedTrait(static_cast<sxTravTraitType*>(upper->getType()))
                         : nullptr);
  }
}

// R -> [A -> [A1, A2], B (a scene) -> [B1]]: prune, stop, preApply and a
// type break point on a base type, each on a fresh walk of one context.
TEST(sxTraverser, PruneStopPreApplyAndTypeBreakPoints) {
  using S = sxTraverser::TRAV_STATE;
  auto a1 = node("A1");
  auto a = node("A", {a1.get(), node("A2").get()});
  auto b = node<sxScene>("B", {node("B1").get()});
  auto root = node("R", {a.get(), b.get()});
  struct Case {
    const char* name;
    std::map<std::string, S> pre, states;
    const sxType* isOfType;
    std::string visited;
    std::vector<const sxGroup*> stoppedAt;
  } cases[] = {
      {"prune A", {}, {{"A", S::TRAV_PRUNE}}, nullptr, "RABB1", {}},
      {"stop A1", {}, {{"A1", S::TRAV_STOP}}, nullptr, "RAA1", {root.get(), a.get(), a1.get()}},
      {"preApply A", {{"A", S::TRAV_PRUNE}}, {}, nullptr, "RBB1", {}},
      {"style type", {}, {}, sxStyle::getClassType(), "RAA1A2B", {root.get(), b.get()}},
  };
  sxRef<sxStats> stats(new sxStats);
  auto t = recorderWith(nullptr, stats.get());
  auto& r = static_cast<Recorder&>(*t);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    r.visited.clear();
    r.applied = 0;
    r.preStates = c.pre;
    r.states = c.states;
    t->setIsOfTypeBreakPoint(c.isOfType);
    stats->reset();
    t->traverse(root.get());
    EXPECT_EQ(r.visited, c.visited);
    const sxTravContext* ctx = t->getTravContext();
    std::uintptr_t id = 0;
    for (const sxGroup* g : c.stoppedAt) id ^= std::uintptr_t(g);
    EXPECT_EQ(ctx->getTravStackID(), id);
    EXPECT_EQ(ctx->getGroup(), c.stoppedAt.empty() ? nullptr : c.stoppedAt.back());
    sxTravPath path(*ctx->getTravStack());
    ASSERT_EQ(path.getLength(), int(c.stoppedAt.size()));
    for (std::size_t i = 0; i < c.stoppedAt.size(); ++i)
      EXPECT_EQ(path.get(int(i)), c.stoppedAt[i]);
    // Groups left out by preApply are not counted.
    int counted = stats->getCount(static_cast<sxGroupType*>(sxGroup::getClassType())) +
                  stats->getCount(static_cast<sxGroupType*>(sxScene::getClassType()));
    EXPECT_EQ(counted, r.applied);
  }
  t->traverse(nullptr);
  EXPECT_EQ(t->getTravContext()->getGroup(), b.get()) << "a null root leaves the context alone";
}

// The same groups in another order: equal ids, unequal paths; a stored
// path equals the live stack until the stack changes.
TEST(sxTravPath, OrderMattersThoughIdsAgree) {
  auto x = node("x"), y = node("y"), z = node("z");
  sxTravStack xy(1), yx(1);
  for (sxGroup* g : {x.get(), y.get(), z.get()}) xy.push(g);
  for (sxGroup* g : {y.get(), x.get(), z.get()}) yx.push(g);
  EXPECT_EQ(xy.getID(), yx.getID());
  EXPECT_FALSE(xy == yx);
  sxTravPath saved(xy), other(yx);
  EXPECT_TRUE(saved == xy && xy == saved);
  EXPECT_FALSE(saved == other || saved == yx);
  EXPECT_TRUE(saved.contains(z.get()));
  EXPECT_EQ(saved.get(3), nullptr);
  xy.pop();
  EXPECT_FALSE(saved == xy);
  xy.push(z.get());
  EXPECT_TRUE(saved == xy);
  saved = sxTravPath();
  EXPECT_EQ(saved.getLength(), 0);
}

// Counts every group it enters.
class Counter : public sxTraverser {
 public:
  TRAV_STATE apply(sxGroup*) override {
    ++count;
    return TRAV_CONTINUE;
  }
  long count = 0;
};

// Four threads walk one graph of styles with shared traits at once, each
// with its own context, trait stack and statistics: the same counts.
TEST(sxTraverser, ConcurrentWalksOfOneGraphAgree) {
  sxRef<sxCull> cull(new sxCull);
  sxRef<sxPrune> prune(new sxPrune);
  prune->enable(true);
  std::vector<sxRef<sxGroup>> level{sxRef<sxGroup>(new sxStyle)};
  sxRef<sxGroup> root = level[0];
  for (int depth = 0; depth < 4; ++depth) {
    std::vector<sxRef<sxGroup>> next;
    for (auto& parent : level)
      for (int i = 0; i < 6; ++i) {
        sxRef<sxGroup> g(i % 2 ? new sxGroup : new sxStyle);
        if (i % 2 == 0)
          static_cast<sxStyle*>(g.get())->addTrait(i == 4 ? static_cast<sxTravTrait*>(prune.get())
                                                          : cull.get());
        parent->addChild(g.get());
        next.push_back(g);
      }
    level.swap(next);
  }
  constexpr int threads = 4, walks = 20;
  std::vector<long> counts(threads), statsCounts(threads);
  std::vector<std::thread> pool;
  for (int k = 0; k < threads; ++k)
    pool.emplace_back([&, k] {
      sxRef<Counter> t(new Counter);
      sxRef<sxStats> stats(new sxStats);
      sxRef<sxTravContext> ctx(new sxTravContext);
      ctx->setTraitStack(new sxTraitStack(sxTraitStack::STACK_ALL, true));
      ctx->setStats(stats.get());
      t->setTravContext(ctx.get());
      for (int w = 0; w < walks; ++w) t->traverse(root.get());
      counts[std::size_t(k)] = t->count;
      statsCounts[std::size_t(k)] = stats->getCount(static_cast<sxTravTraitType*>(cull->getType()));
    });
  for (auto& th : pool) th.join();
  // Per level of 6: 3 plain groups and 2 cull styles are entered, the prune
  // style is left out with everything below it.
  long perWalk = 0, entered = 1;
  for (int depth = 0; depth < 4; ++depth) {
    perWalk += entered * 5;
    entered *= 5;
  }
  EXPECT_EQ(counts[0], (perWalk + 1) * walks);
  for (int k = 1; k < threads; ++k) {
    EXPECT_EQ(counts[std::size_t(k)], counts[0]);
    EXPECT_EQ(statsCounts[std::size_t(k)], statsCounts[0]);
  }
}

}  // namespace

SX_DEFINE_CLASS(sxTestVisualTrait, sxVisualTraitType)
