#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/sxTestClasses.h"

// Without linked threads the last release destroys at once, also past 16 bits of
// references; an object nobody referenced dies at its first release.
TEST(sxBase, ReleaseOfLastReferenceDestroysAtOnceAndAttributesLastToFirst) {
  int before = sxTestNode::destroyed;
  auto* n = new sxTestNode;
  for (int i = 0; i < 70000; ++i) n->ref();
  EXPECT_EQ(n->getRefCount(), 70000);
  for (int i = 0; i < 69999; ++i) n->unRef();
  EXPECT_EQ(sxTestNode::destroyed, before);
  n->unRef();
  EXPECT_EQ(sxTestNode::destroyed, before + 1);
  (new sxTestNode)->unRef();
  EXPECT_EQ(std::tuple(sxTestNode::destroyed, sxBase::getNumPendingDeletions()),
            std::tuple(before + 2, 0));
  // The destructor releases the attributes, last to first.
  static std::vector<int> order;
  order.clear();
  struct Recorder : sxTestNode {
    explicit Recorder(int id) : id(id) {}
    ~Recorder() override { order.push_back(id); }
    int id;
  };
  auto* owner = new sxTestNode;
  sxRef<Recorder> shared(new Recorder(99));  // kept alive by the test
  owner->addAttribute(new Recorder(1));
  owner->addAttribute(nullptr);  // ignored
  owner->addAttribute(shared.get());
  owner->addAttribute(new Recorder(3));
  ASSERT_EQ(owner->getAttribList()->getNum(), 3);
  EXPECT_EQ(shared->getRefCount(), 2);
  delete owner;
  EXPECT_EQ(order, (std::vector<int>{3, 1}));
  EXPECT_EQ(shared->getRefCount(), 1);
  shared.reset();
  EXPECT_EQ(order.back(), 99);
}

// A copy takes the flags and the name but not the count or the attributes;
// equality compares flags and names (byte for byte) only.
TEST(sxBase, NamesCopiesAndEqualityTakeFlagsAndNamesOnly) {
  auto* attr = new sxTestNode;
  sxTestNode a;
  a.setName("orig");
  a.enableDynamic(true);
  a.value = 7;
  a.addAttribute(attr);
  a.ref();
  sxTestNode b(a);
  EXPECT_STREQ(b.getName(), "orig");
  EXPECT_TRUE(b.isDynamic() && !b.getAttribList());
  EXPECT_EQ(std::tuple(b.getRefCount(), b.value, attr->getRefCount()), std::tuple(0, 7, 1));
  EXPECT_TRUE(a == b);  // counts and attributes are not compared
  sxBase plain;         // nor classes
  plain.setName("orig");
  EXPECT_TRUE(plain != b);  // the flags differ
  b.enableDynamic(false);
  EXPECT_TRUE(plain == b);
  b.setName("ORIG");
  EXPECT_TRUE(plain != b);
  b.setName(nullptr);
  EXPECT_TRUE(plain != b);
  plain.setName(nullptr);
  EXPECT_TRUE(plain == b);
  // Names are owned copies, replaced on every set, also by a part of the current name,
  // on either side of the 15 characters kept in the object; arena copies keep theirs.
  sxBase named;
  sxArena arena(4096);  // room for every copy in its first block
  const std::size_t heap = sxMemory::getSize();
  char text[] = "first";
  named.setName(text);
  text[0] = 'X';
  EXPECT_STREQ(named.getName(), "first");
  {
    std::vector<std::pair<const sxBase*, std::string>> copies;
    // Each step sets a text, or (null) the current name from the given offset.
    for (auto [set, from, expected] :
         {std::tuple<const char*, int, const char*>{"fifteen chars!!", 0, "fifteen chars!!"},
          {nullptr, 1, "ifteen chars!!"},
          {"sixteen chars!!!", 0, "sixteen chars!!!"},
          {nullptr, 0, "sixteen chars!!!"},
          {nullptr, 1, "ixteen chars!!!"},
          {"a much longer second name than the first", 0, nullptr},
          {nullptr, 2, "much longer second name than the first"},
          {nullptr, 29, "the first"},
          {"another name of some length", 0, nullptr}}) {
      named.setName(set ? set : named.getName() + from);
      const char* want = expected ? expected : set;
      EXPECT_STREQ(named.getName(), want);
      copies.emplace_back(named.createDisposableCopy(&arena), want);
    }
    named.setName(nullptr);
    EXPECT_EQ(named.getName(), nullptr);
    for (auto& [copy, name] : copies) EXPECT_STREQ(copy->getName(), name.c_str());
  }
  EXPECT_EQ(sxMemory::getSize(), heap) << "every replaced name was freed";
}

TEST(sxBase, TypeQueriesFollowTheClassTree) {
  sxTestLeaf leaf;
  sxTestNode node;
  EXPECT_TRUE(leaf.isOfType(sxBase::getClassType()) && leaf.isOfType(&node));
  EXPECT_TRUE(leaf.isOfExactType(sxTestLeaf::getClassType()));
  EXPECT_FALSE(node.isOfType(sxTestLeaf::getClassType()) || leaf.isOfExactType(&node));
  EXPECT_FALSE(leaf.isOfType(static_cast<const sxType*>(nullptr)) ||
               leaf.isOfType(static_cast<const sxBase*>(nullptr)));
}
