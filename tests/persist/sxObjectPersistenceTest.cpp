#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <string>
#include <vector>

#include "support/sxCycles.h"
#include "support/sxReferenceScene.h"
#include "support/sxTestFiles.h"
#include "support/sxTestHolder.h"

// A class whose objects are never written.
class sxTestHidden : public sxBase {
 public:
  SX_DECLARE_CLASS(sxTestHidden)
  SX_DEFAULT_CONSTRUCTORS(sxTestHidden, sxBase)
};
SX_IMPLEMENT_CLASS(sxTestHidden, sxBase, sxType)

namespace {

sxBase* make(const char* name) {
  auto* obj = new sxBase;
  obj->setName(name);
  return obj;
}

TEST(ObjectPersistence, UnwritableAttributesAreSkipped) {
  sxRef<sxBase> root(make("root"));
  root->addAttribute(new sxTestHidden);
  root->addAttribute(make("kept"));
  sxTestHidden::getClassType()->setWritable(false);
  sxFile f, g;
  sxEntry* e = root->write(&f, nullptr);
  // A reference to an unwritable object is -1 and creates no entry.
  EXPECT_EQ(sxAttribute(root.get(), 0)->writeRef(&f, e), nullptr);
  EXPECT_EQ(f.getNumEntries(), 2);
  sxEntry* expected = g.newEntry(g.newTag("sxBase"));
  sxWriteObject(expected, "root", {1});  // the hidden attribute is neither counted nor referred to
  expected->writeInt(-1);
  EXPECT_EQ(sxEntryBytes(e), sxEntryBytes(expected));
  sxTestHidden::getClassType()->setWritable(true);
}

// A chain far deeper than writing and reading recurse keeps every object,
// its fields and its sharing: every object refers back to the root, which
// also refers to itself and to an unnamed object.
TEST(ObjectPersistence, DeepChainsRoundTrip) {
  const int length = 5000;
  sxRef<sxBase> root(make("0"));
  sxKeepCycle(root.get());
  root->enableDynamic(true);
  sxBase* last = root.get();
  for (int i = 1; i < length; ++i) {
    sxBase* next = make(std::to_string(i).c_str());
    next->addAttribute(root.get());
    last->addAttribute(next);
    last = next;
  }
  root->addAttribute(root.get());
  root->addAttribute(make(nullptr));
  sxTempDir dir;
  const std::string path = dir.file("objects.sx");
  ASSERT_TRUE(sxWriteFile(path, [&](sxFile& f) { EXPECT_NE(root->write(&f, nullptr), nullptr); }));
  // The object of entry 0 is read back by hand.
  sxRef<sxBase> back;
  sxFile reader;
  ASSERT_TRUE(reader.open(path.c_str(), "r"));
  sxEntry* first = reader.getEntry(0);
  back = sxType::createInstance(reader.getTagDesc(first->getTag()));
  sxKeepCycle(back.get());
  first->setHandle(back.get());
  ASSERT_EQ(back->read(&reader, first), first);
  EXPECT_TRUE(back->isDynamic());
  EXPECT_EQ(sxAttribute(back.get(), 1), back.get());
  ASSERT_NE(sxAttribute(back.get(), 2), nullptr);
  EXPECT_EQ(sxAttribute(back.get(), 2)->getName(), nullptr);
  int n = 0;
  for (const sxBase* o = back.get(); o; ++n) {
    ASSERT_EQ(std::string(o->getName()), std::to_string(n));
    ASSERT_TRUE(n == 0 || sxAttribute(o, 0) == back.get()) << n;
    o = sxAttribute(o, n == 0 ? 0 : 1);
  }
  EXPECT_EQ(n, length);
  EXPECT_EQ(reader.getNumEntries(), length + 1) << "each object once";
}

// Without an entry, an object reads the first entry of its class.
TEST(ObjectPersistence, ReadWithoutAnEntryTakesTheFirstOfItsClass) {
  sxTempDir dir;
  const std::string path = dir.file("scene.sx");
  ASSERT_TRUE(sxReference::writeSceneFile(path.c_str()));
  // Declared before the file: the file lets go of its objects first.
  sxRef<sxTestHolder> h(new sxTestHolder);
  sxRef<sxEvent> e(new sxEvent);
  sxFile f;
  ASSERT_TRUE(f.open(path.c_str(), "r"));
  EXPECT_EQ(h->read(&f, nullptr), f.findEntry("sxTestHolder"));
  EXPECT_STREQ(h->getName(), "array0");
  EXPECT_EQ(e->read(&f, nullptr), nullptr) << "no entry of that class";
}

}  // namespace
