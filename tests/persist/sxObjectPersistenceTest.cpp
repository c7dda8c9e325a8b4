#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <cstring>
#include <string>

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

// Writes root into a new file and reads the object of entry 0 back.
struct RoundTrip {
  sxTempDir dir;
  std::string path = dir.file("objects.sx");
  sxFile reader;
  sxBase* root = nullptr;

  explicit RoundTrip(const sxBase* original) {
    sxFile writer;
    EXPECT_TRUE(writer.create(path.c_str()));
    EXPECT_NE(original->write(&writer, nullptr), nullptr);
    EXPECT_TRUE(writer.write());
    writer.close();
    EXPECT_TRUE(reader.open(path.c_str(), "r"));
    sxEntry* first = reader.getEntry(0);
    root = sxType::createInstance(reader.getTagDesc(first->getTag()));
    root->ref();
    first->setHandle(root);
    EXPECT_EQ(root->read(&reader, first), first);
  }
  ~RoundTrip() {
    reader.close();
    root->unRef();
  }
};

sxBase* attribute(const sxBase* obj, int i) {
  const sxTList<sxBase*>* list = obj->getAttribList();
  return list && list->indexInRange(i) ? (*list)[i] : nullptr;
}

TEST(ObjectPersistence, UnwritableAttributesAreSkipped) {
  sxBase* root = make("root");
  root->ref();
  root->addAttribute(new sxTestHidden);
  root->addAttribute(make("kept"));
  sxTestHidden::getClassType()->setWritable(false);
  sxFile f;
  sxEntry* e = root->write(&f, nullptr);
  e->reset();
  e->readInt();
  char name[5];
  e->readString(name, 5);
  e->readShort();
  EXPECT_EQ(e->readInt(), 1) << "the count leaves the hidden attribute out";
  EXPECT_EQ(e->readInt(), 1) << "reference to the kept object";
  // A reference to an unwritable object is -1 and creates no entry.
  sxBase* hidden = attribute(root, 0);
  int before = e->getDataSize();
  EXPECT_EQ(hidden->writeRef(&f, e), nullptr);
  EXPECT_EQ(f.getNumEntries(), 2);
  ASSERT_EQ(e->getDataSize(), before + 4);
  int written;
  std::memcpy(&written, e->getData() + before, 4);
  EXPECT_EQ(written, -1);
  sxTestHidden::getClassType()->setWritable(true);
  root->unRef();
}

// A chain far deeper than writing and reading recurse keeps every object,
// its fields and its sharing: every object refers back to the root, which
// also refers to itself and to an unnamed object.
TEST(ObjectPersistence, DeepChainsRoundTrip) {
  const int length = 5000;
  sxBase* root = make("0");
  root->ref();
  root->enableDynamic(true);
  sxBase* last = root;
  for (int i = 1; i < length; ++i) {
    sxBase* next = make(std::to_string(i).c_str());
    next->addAttribute(root);
    last->addAttribute(next);
    last = next;
  }
  root->addAttribute(root);
  root->addAttribute(make(nullptr));
  RoundTrip rt(root);
  EXPECT_TRUE(rt.root->isDynamic());
  EXPECT_EQ(attribute(rt.root, 1), rt.root);
  ASSERT_NE(attribute(rt.root, 2), nullptr);
  EXPECT_EQ(attribute(rt.root, 2)->getName(), nullptr);
  int n = 0;
  for (const sxBase* o = rt.root; o; ++n) {
    ASSERT_EQ(std::string(o->getName()), std::to_string(n));
    if (n > 0) {
      ASSERT_EQ(attribute(o, 0), rt.root);
    }
    o = attribute(o, n == 0 ? 0 : 1);
  }
  EXPECT_EQ(n, length);
  EXPECT_EQ(rt.reader.getNumEntries(), length + 1) << "each object once";
  sxKeepCycle(rt.root);
  sxKeepCycle(root);
  root->unRef();
}

// Without an entry, an object reads the first entry of its class.
TEST(ObjectPersistence, ReadWithoutAnEntryTakesTheFirstOfItsClass) {
  sxTempDir dir;
  const std::string path = dir.file("scene.sx");
  ASSERT_TRUE(sxReference::writeSceneFile(path.c_str()));
  sxFile f;
  ASSERT_TRUE(f.open(path.c_str(), "r"));
  auto* h = new sxTestHolder;
  h->ref();
  EXPECT_EQ(h->read(&f, nullptr), f.findEntry("sxTestHolder"));
  EXPECT_STREQ(h->getName(), "array0");
  auto* e = new sxEvent;
  e->ref();
  EXPECT_EQ(e->read(&f, nullptr), nullptr) << "no entry of that class";
  e->unRef();
  f.close();
  h->unRef();
}

}  // namespace
