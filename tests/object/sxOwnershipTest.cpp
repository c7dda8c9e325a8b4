// Who owns an object: references counted by sxRef and holds given back
// without destroying. Destruction that does not nest per link is tested
// with a million-group chain (nodes/sxGroupTest).

#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <string>
#include <tuple>

#include "support/sxTestClasses.h"
#include "support/sxTestFiles.h"
#include "support/sxThreadTestSupport.h"

TEST(sxOwnership, ObjectsReadFromAFileOutliveItsClose) {
  sxTempDir dir;
  const std::string path = dir.file("shared.sx");
  {
    sxRef<sxTestNode> root(new sxTestNode), child(new sxTestNode);
    child->setName("child");
    root->addAttribute(child.get());
    sxFile file;
    ASSERT_TRUE(file.create(path.c_str()) && root->write(&file, nullptr) && file.write());
  }
  sxBase* child = nullptr;
  {
    sxFile file;
    ASSERT_TRUE(file.open(path.c_str(), "r"));
    sxEntry* rootEntry = file.getEntry(0);
    ASSERT_TRUE(rootEntry && file.readEntry(rootEntry));
    rootEntry->readInt();    // no name
    rootEntry->readShort();  // flags
    ASSERT_EQ(rootEntry->readInt(), 1);
    child = sxBase::readRef(&file, rootEntry);
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(child->getRefCount(), 1) << "held by the open file";
  }
  // The caller takes its reference after the close; nobody had before.
  EXPECT_EQ(child->getRefCount(), 0);
  sxRef<sxBase> kept(child);
  EXPECT_STREQ(kept->getName(), "child");
  const int destroyed = sxTestNode::destroyed;
  kept.reset();
  EXPECT_EQ(sxTestNode::destroyed, destroyed + 1);
}

TEST(sxOwnership, RefHandlesCopiesMovesAndReassignment) {
  const int destroyed = sxTestNode::destroyed;
  sxTestNode* inner = new sxTestNode;
  {
    sxRef<sxTestNode> outer(new sxTestNode);
    outer->addAttribute(inner);
    sxRef<sxBase> asBase = outer;  // derived to base
    EXPECT_EQ(outer->getRefCount(), 2);
    sxRef<sxBase> moved = std::move(asBase);
    EXPECT_TRUE(asBase == nullptr && outer->getRefCount() == 2);
    moved = moved;  // self-assignment keeps the object
    EXPECT_EQ(outer->getRefCount(), 2);
    moved.reset();
    // The old object is all that keeps the new one alive: the new one must
    // be referenced before the old one goes.
    sxRef<sxBase> swap(outer.get());
    outer.reset();
    swap = inner;
    EXPECT_EQ(std::tuple(sxTestNode::destroyed, inner->getRefCount()),
              std::tuple(destroyed + 1, 1));
    // Handing a new object on: the reference goes, the object stays.
    sxBase* handed = swap.release();
    EXPECT_EQ(std::tuple(handed->getRefCount(), sxTestNode::destroyed),
              std::tuple(0, destroyed + 1));
    swap = handed;
  }
  EXPECT_EQ(sxTestNode::destroyed, destroyed + 2);
}

TEST(sxOwnership, ReleaseWithoutDeleteIsOneAtomicStep) {
  sxRef<sxTestNode> owner(new sxTestNode);
  sxtest::inThreads(4, [&](int) {
    for (int i = 0; i < 20000; ++i) {
      owner->ref();
      owner->unRefNoDelete();
    }
  });
  EXPECT_EQ(owner->getRefCount(), 1);
  sxTestNode* raw = owner.release();
  EXPECT_EQ(raw->getRefCount(), 0) << "at 0 and alive";
  sxRef<sxTestNode> last(raw);
}
