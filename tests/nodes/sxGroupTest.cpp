#include <gtest/gtest.h>

#include <sx/sxCore.h>

#include <functional>
#include <map>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "support/sxTestFiles.h"
#include "support/sxThroughFile.h"

namespace {

// A graph of groups held by the test: every node keeps one test reference,
// so that a node's count is always its number of parents plus one.
struct Pool {
  std::vector<sxRef<sxGroup>> nodes;
  sxGroup* add(const char* name = nullptr) {
    nodes.emplace_back(new sxGroup);
    if (name) nodes.back()->setName(name);
    return nodes.back().get();
  }
  sxGroup* operator[](std::size_t i) const { return nodes[i].get(); }
};

int countOf(const sxGroup* node, const sxGroup* in, bool children) {
  int n = 0;
  const int num = children ? in->getNumChildren() : in->getNumParents();
  for (int i = 0; i < num; ++i) n += (children ? in->getChild(i) : in->getParent(i)) == node;
  return n;
}

// Every link of the graph below root is in both lists exactly once, and no
// node is its own descendant.
void expectConsistent(sxGroup* root) {
  std::set<sxGroup*> seen;
  std::vector<sxGroup*> todo{root};
  while (!todo.empty()) {
    sxGroup* g = todo.back();
    todo.pop_back();
    if (!seen.insert(g).second) continue;
    EXPECT_FALSE(g->hasDescendant(g));
    for (int i = 0; i < g->getNumChildren(); ++i) {
      sxGroup* c = g->getChild(i);
      EXPECT_EQ(countOf(c, g, true), 1) << g->getName();
      EXPECT_EQ(countOf(g, c, false), 1) << c->getName();
      todo.push_back(c);
    }
    for (int i = 0; i < g->getNumParents(); ++i)
      EXPECT_EQ(countOf(g, g->getParent(i), true), 1) << g->getName();
  }
}

// The shape of a graph with its sharing: nodes numbered in pre-order of
// their first visit, each with its name, node flags and children.
std::string shape(const sxGroup* root) {
  std::map<const sxGroup*, int> ids;
  std::string out;
  std::function<void(const sxGroup*)> visit = [&](const sxGroup* g) {
    auto [it, fresh] = ids.emplace(g, int(ids.size()));
    out += "#" + std::to_string(it->second);
    if (!fresh) return;
    out += std::string("(") + (g->getName() ? g->getName() : "-") + "/" +
           std::to_string(g->getNodeFlags());
    for (int i = 0; i < g->getNumChildren(); ++i) visit(g->getChild(i));
    out += ")";
  };
  visit(root);
  return out;
}

// The same graph with every path its own node: what copies produce.
std::string unfolded(const sxGroup* g) {
  std::string out = std::string("(") + (g->getName() ? g->getName() : "-");
  for (int i = 0; i < g->getNumChildren(); ++i) out += unfolded(g->getChild(i));
  return out + ")";
}

// A content bit owned by a leaf kind, as geometry owns 0x0200.
struct ContentLeaf : sxGroup {
  ContentLeaf() { addTravFlags(0x0200); }
  void cleanUp(unsigned bits) override { sxGroup::cleanUp(bits & ~0x0200u); }
  using sxGroup::addTravFlags;
};

TEST(sxGroup, EditsRefuseWhatWouldBreakTheGraph) {
  Pool p;
  sxGroup* root = p.add("root");
  sxGroup* a = p.add("a");
  sxGroup* b = p.add("b");
  sxGroup* loose = p.add("loose");
  ASSERT_TRUE(root->addChild(a));
  ASSERT_TRUE(a->addChild(b));
  const std::string before = shape(root);
  struct Case {
    const char* what;
    std::function<bool()> edit;
  } cases[] = {
      {"null child", [&] { return root->addChild(nullptr); }},
      {"itself", [&] { return a->addChild(a); }},
      {"duplicate", [&] { return root->addChild(a); }},
      {"parent below child", [&] { return a->addChild(root); }},
      {"ancestor below descendant", [&] { return b->addChild(root); }},
      {"insert past the end", [&] { return root->insertChild(2, loose); }},
      {"insert at -1", [&] { return root->insertChild(-1, loose); }},
      {"insert an ancestor", [&] { return b->insertChild(0, a); }},
      {"remove a non-child", [&] { return root->removeChild(b); }},
      {"replace by a child", [&] { return a->replace(b); }},
      {"replace by a parent", [&] { return a->replace(root); }},
      {"replace graph by an ancestor", [&] { return b->replaceGraph(root); }},
      {"insert its descendant above", [&] { return a->insertAbove(b); }},
      {"insert its ancestor below", [&] { return b->insertBelow(root); }},
      {"insert its descendant below", [&] { return root->insertBelow(b); }},
  };
  for (auto& c : cases) {
    EXPECT_FALSE(c.edit()) << c.what;
    EXPECT_EQ(shape(root), before) << c.what;
    EXPECT_EQ(loose->getNumParents(), 0) << c.what;
  }
  // Cycles through a shared instance are refused as well.
  sxGroup* other = p.add("other");
  ASSERT_TRUE(other->addChild(b));
  EXPECT_FALSE(b->addChild(other));
  for (sxGroup* g : {b, root, other}) EXPECT_TRUE(g->anyTravFlags(sxGroup::TRAV_FLAG_SHARED));
  expectConsistent(root);
}

// Where the children of a removed node go, and what the other edits move.
TEST(sxGroup, EditsReconnectTheGraph) {
  struct Case {
    const char* what;
    std::function<void(Pool&)> edit;
    const char* expected;  // unfolded shape below the root "r"
  };
  // r has children a, x, c; x has children y (and z when noted).
  const Case cases[] = {
      {"remove with one child", [](Pool& p) { p[2]->remove(); }, "(r(a)(y)(c))"},
      {"remove with two children",
       [](Pool& p) {
         p[2]->addChild(p.add("z"));
         p[2]->remove();
       },
       "(r(a)(c)(y)(z))"},
      {"replace", [](Pool& p) { p[2]->replace(p.add("n")); }, "(r(a)(n(y))(c))"},
      {"replace graph", [](Pool& p) { p[2]->replaceGraph(p.add("n")); }, "(r(a)(n)(c))"},
      {"insert below", [](Pool& p) { p[2]->insertBelow(p.add("n")); }, "(r(a)(x(n(y)))(c))"},
      {"insert above", [](Pool& p) { p[2]->insertAbove(p.add("n")); }, "(r(a)(n(x(y)))(c))"},
      {"detach", [](Pool& p) { p[2]->detach(); }, "(r(a)(c))"},
      {"insert child", [](Pool& p) { p[0]->insertChild(1, p.add("n")); }, "(r(a)(n)(x(y))(c))"},
  };
  for (const Case& c : cases) {
    Pool p;
    sxGroup* r = p.add("r");
    for (const char* n : {"a", "x", "c"}) r->addChild(p.add(n));
    p[2]->addChild(p.add("y"));
    c.edit(p);
    EXPECT_EQ(unfolded(r), c.expected) << c.what;
    expectConsistent(r);
    for (auto& n : p.nodes) EXPECT_EQ(n->getRefCount(), n->getNumParents() + 1) << c.what;
  }
  // replaceGraph with a node that keeps its place below: only the other
  // parent changes.
  Pool p;
  sxGroup* r = p.add("r");
  sxGroup* x = p.add("x");
  sxGroup* s = p.add("s");
  r->addChild(x);
  r->addChild(s);
  sxGroup* y = p.add("y");
  x->addChild(y);
  EXPECT_TRUE(x->replaceGraph(y));
  EXPECT_EQ(unfolded(r), "(r(y)(s))");
  EXPECT_EQ(unfolded(x), "(x(y))");
}

TEST(sxGroup, FlagsRiseAndFallWithTheContentBelow) {
  Pool p;
  sxGroup* root = p.add("root");
  sxGroup* mid = p.add("mid");
  root->addChild(mid);
  sxRef<ContentLeaf> leaf(new ContentLeaf);
  sxRef<ContentLeaf> leaf2(new ContentLeaf);
  mid->addChild(leaf.get());
  mid->addChild(leaf2.get());
  EXPECT_EQ(root->anyTravFlags(0x0200), 0x0200u);
  sxTravContext ctx;
  root->update(&ctx);
  EXPECT_EQ(root->getTravFlags() & ~0xFF08u, 0u);
  mid->removeChild(leaf.get());
  EXPECT_EQ(root->anyTravFlags(0x0200), 0x0200u) << "the other leaf still carries it";
  EXPECT_TRUE(root->allTravFlags(sxGroup::TRAV_FLAG_UPDATE | sxGroup::TRAV_FLAG_REMOVED));
  mid->removeChild(leaf2.get());
  EXPECT_EQ(root->anyTravFlags(0x0200), 0u);
  EXPECT_EQ(leaf2->anyTravFlags(0x0200), 0x0200u) << "the owner keeps its bit";
}

TEST(sxGroup, SharedInstancesBecomePrivateAsTheirFlagsSay) {
  for (int flags : {sxGroup::NODE_CLONE_INSTANCES, sxGroup::NODE_SHARE_INSTANCES,
                    sxGroup::NODE_COPY_INSTANCES}) {
    Pool p;
    sxGroup* root = p.add("root");
    sxGroup* first = p.add("first");
    sxGroup* second = p.add("second");
    sxGroup* shared = p.add("shared");
    sxGroup* inner = p.add("inner");
    root->addChild(first);
    root->addChild(second);
    first->addChild(shared);
    second->addChild(shared);
    shared->setNodeFlags(sxGroup::NODE_FLAGS(flags));
    // A shared instance below the shared one is still made private.
    shared->addChild(inner);
    p.add("elsewhere")->addChild(inner);
    const std::string before = unfolded(root);
    root->updateSharedInstances();
    EXPECT_EQ(unfolded(root), before) << flags;
    EXPECT_EQ(first->getChild(0), shared);
    EXPECT_EQ(second->getChild(0) == shared, flags == sxGroup::NODE_SHARE_INSTANCES) << flags;
    EXPECT_EQ(inner->getNumParents(), 1) << flags;
    EXPECT_FALSE(root->anyTravFlags(sxGroup::TRAV_FLAG_SHARED)) << flags;
    expectConsistent(root);
    for (auto& n : p.nodes) EXPECT_EQ(n->getRefCount(), n->getNumParents() + 1) << flags;
  }
}

TEST(sxGroup, FindGroupReturnsTheSecondMatchWhenGivenAStart) {
  Pool p;
  sxGroup* root = p.add("R");
  sxGroup* a1 = p.add("A");
  sxGroup* b = p.add("b");
  sxGroup* a2 = p.add("a");
  root->addChild(b);
  b->addChild(a1);
  root->addChild(a2);
  EXPECT_EQ(
      std::tuple(root->findGroup("a"), root->findGroup("a", root), root->findGroup("a", a2),
                 root->findGroup("none"), root->findGroup(nullptr)),
      (std::tuple<sxGroup*, sxGroup*, sxGroup*, sxGroup*, sxGroup*>{a1, a2, a2, nullptr, nullptr}));
}

// Random graphs with shared instances, each through a file, a copy, a
// clone, the shared-instance pass and a run of random edits.
TEST(sxGroup, RandomGraphsSurviveRoundTrips) {
  std::mt19937 rng(20261124);
  for (int round = 0; round < 30; ++round) {
    Pool p;
    const int n = 2 + int(rng() % 40);
    for (int i = 0; i < n; ++i) {
      sxGroup* g = p.add(("n" + std::to_string(i)).c_str());
      g->setNodeFlags(sxGroup::NODE_FLAGS(rng() % 3));
      // Each node below one or more earlier nodes: a DAG rooted at n0.
      if (i > 0)
        for (int k = 0, parents = 1 + int(rng() % 3); k < parents; ++k)
          p[rng() % std::size_t(i)]->addChild(g);
    }
    sxGroup* root = p[0];
    expectConsistent(root);

    sxRef<sxGroup> loaded = sxThroughFile<sxGroup>(root);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(shape(loaded.get()), shape(root)) << round;

    for (bool cloning : {false, true}) {
      sxRef<sxGroup> made(cloning ? root->makeClone() : root->makeCopy());
      EXPECT_EQ(unfolded(made.get()), unfolded(root)) << round;
      expectConsistent(made.get());
    }

    const std::string before = unfolded(root);
    root->updateSharedInstances();
    EXPECT_EQ(unfolded(root), before) << round;
    expectConsistent(root);

    sxGroup *x = nullptr, *y = nullptr;
    const std::function<void()> edits[] = {[&] { x->addChild(y); },
                                           [&] { x->removeChild(y); },
                                           [&] { x->insertChild(int(rng() % 3), y); },
                                           [&] { x->replace(y); },
                                           [&] { x->replaceGraph(y); },
                                           [&] { x->insertAbove(y); },
                                           [&] { x->insertBelow(y); },
                                           [&] { x->remove(); }};
    for (int step = 0; step < 40; ++step) {
      x = p[rng() % p.nodes.size()];
      y = p[rng() % p.nodes.size()];
      edits[rng() % 8]();
      for (auto& node : p.nodes) {
        expectConsistent(node.get());
        ASSERT_EQ(node->getRefCount(), node->getNumParents() + 1) << round << "/" << step;
      }
    }
  }
}

// A child list that names a non-group object: the group is read without it,
// and the object goes with the file.
TEST(sxGroup, ReadingDropsChildrenThatAreNoGroups) {
  const int eventsBefore = sxEvent::getNum(false);
  sxRef<sxBase> root = sxImportWritten([](sxFile& f) {
    sxWriteGroup(f, "sxGroup", "root", {1, 2, 1});
    sxEntry* e = f.newEntry(f.newTag("sxEvent"));
    sxWriteObject(e, "notAChild", {});
    e->writeInt(1);
    sxWriteGroup(f, "sxGroup", "child");
  });
  ASSERT_TRUE(root && root->isOfType(sxGroup::getClassType()));
  auto* g = static_cast<sxGroup*>(root.get());
  ASSERT_EQ(g->getNumChildren(), 1);
  EXPECT_STREQ(g->getChild(0)->getName(), "child");
  EXPECT_EQ(sxEvent::getNum(false), eventsBefore);
}

TEST(sxGroup, LongChainsAreDestroyedWithoutExhaustingTheStack) {
  sxGroup* root = new sxGroup;
  root->ref();
  sxGroup* last = root;
  for (int i = 0; i < 1000000; ++i) {
    auto* next = new sxGroup;
    ASSERT_TRUE(last->addChild(next));
    last = next;
  }
  const int before = sxGroup::getNum(false);
  root->unRef();
  EXPECT_EQ(sxGroup::getNum(false), before - 1000001);
}

struct Counter : sxTraverser {
  Counter() { setTravContext(new sxTravContext); }
  int visits = 0;
  std::function<void(sxGroup*)> onVisit;
  int count(sxGroup* g) {
    visits = 0;
    traverse(g);
    return visits;
  }
  TRAV_STATE apply(sxGroup* g) override {
    ++visits;
    if (onVisit) onVisit(g);
    return TRAV_CONTINUE;
  }
};

// Each step on a chain 10,000 groups deep, on the stack the test runs on.
TEST(sxGroup, DeepGraphsGoThroughEveryPass) {
  constexpr int depth = 10000;
  sxRef<sxGroup> root(new sxGroup);
  sxGroup* last = root.get();
  for (int i = 0; i < depth; ++i) {
    auto* next = new sxGroup;
    next->setName("n");
    ASSERT_TRUE(last->addChild(next));
    last = next;
  }
  sxRef<Counter> counter(new Counter);
  EXPECT_EQ(counter->count(root.get()), depth + 1);
  sxRef<sxGroup> copy(root->makeCopy());
  sxRef<sxGroup> clone(root->makeClone());
  EXPECT_EQ(counter->count(copy.get()), depth + 1);
  EXPECT_EQ(counter->count(clone.get()), depth + 1);
  EXPECT_EQ(root->findGroup("n", root.get()), root->getChild(0)->getChild(0));
  sxSphere volume;
  root->getBoundingVolume(volume);
  root->update(counter->getTravContext());
  EXPECT_FALSE(root->anyTravFlags(sxGroup::TRAV_FLAG_UPDATE));
  // Through a file, past the depth where writing and reading defer the
  // fields of what they reach; the unnamed root stays unnamed.
  sxRef<sxGroup> loaded = sxThroughFile<sxGroup>(root.get());
  ASSERT_TRUE(loaded);
  EXPECT_EQ(counter->count(loaded.get()), depth + 1);
  EXPECT_EQ(loaded->getName(), nullptr);
  // Detaching the chain's top tells every node below it.
  sxGroup* top = root->getChild(0);
  top->ref();
  root->removeChild(top);
  EXPECT_TRUE(last->anyTravFlags(sxGroup::TRAV_FLAG_UPDATE));
  top->unRef();
}

// A traverser that takes the group it stands on out of the graph: the group
// lives until the walk is over, and the walk goes on below it.
TEST(sxGroup, TraverserMayRemoveTheGroupItVisits) {
  Pool p;
  sxGroup* root = p.add("root");
  auto* doomed = new sxGroup;
  doomed->setName("doomed");
  root->addChild(doomed);
  doomed->addChild(new sxGroup);
  root->addChild(p.add("after"));
  const int groups = sxGroup::getNum(false);
  sxRef<Counter> counter(new Counter);
  counter->onVisit = [&](sxGroup* g) {
    if (g == doomed) {
      root->removeChild(doomed);
      // Released after doomed, then taken back by it: it must go with
      // doomed at the end of the walk, not be looked at after that.
      sxGroup* below = doomed->getChild(0);
      doomed->removeChild(below);
      doomed->addChild(below);
      EXPECT_EQ(sxGroup::getNum(false), groups);
    }
  };
  // root, doomed and its child; "after" moved into doomed's place.
  EXPECT_EQ(counter->count(root), 3);
  EXPECT_EQ(sxGroup::getNum(false), groups - 2);
  EXPECT_EQ(root->getNumChildren(), 1);
}

}  // namespace
