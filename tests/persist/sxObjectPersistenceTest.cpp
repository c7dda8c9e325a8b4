#include <gtest/gtest.h>
#include <sx/nodes/sxGroup.h>
#include <sx/object/sxBase.h>
#include <sx/persist/sxEntry.h>
#include <sx/persist/sxFile.h>

#include <cstring>
#include <string>

#include "support/sxCycles.h"
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

TEST(ObjectPersistence, NamesFlagsAndTheRecordLayout) {
  sxBase* obj = make("Named object");
  obj->ref();
  obj->enableDynamic(true);
  sxFile f;
  sxEntry* e = obj->write(&f, nullptr);
  ASSERT_NE(e, nullptr);
  EXPECT_EQ(e->getDirNum(), 0);
  EXPECT_EQ(e->getHandle(), obj);
  EXPECT_EQ(e->getVersion(), sxBase::getClassType()->getVersion());
  EXPECT_STREQ(f.getTagDesc(e->getTag()), "sxBase");
  // int length 13, 13 bytes of name, short flags, pad, int count 0.
  EXPECT_EQ(e->getDataSize(), 4 + 13 + 2 + 1 + 4);
  EXPECT_EQ(obj->write(&f, e), nullptr) << "given an entry, write returns null";

  RoundTrip rt(obj);
  EXPECT_STREQ(rt.root->getName(), "Named object");
  EXPECT_TRUE(rt.root->isDynamic());
  EXPECT_EQ(rt.root->getAttribList(), nullptr);

  // An unnamed object reads back unnamed, clearing an existing name.
  sxBase* unnamed = make(nullptr);
  unnamed->ref();
  RoundTrip rt2(unnamed);
  EXPECT_EQ(rt2.root->getName(), nullptr);
  sxBase* other = make("old");
  other->ref();
  rt2.reader.getEntry(0)->reset();
  other->read(&rt2.reader, rt2.reader.getEntry(0));
  EXPECT_EQ(other->getName(), nullptr);
  other->unRef();
  unnamed->unRef();
  obj->unRef();
}

TEST(ObjectPersistence, SharingAndCyclesSurvive) {
  // Two objects that both refer to a third, a self-reference and a cycle.
  sxBase* root = make("root");
  root->ref();
  sxBase* a = make("a");
  sxBase* b = make("b");
  sxBase* shared = make("shared");
  a->addAttribute(shared);
  b->addAttribute(shared);
  root->addAttribute(a);
  root->addAttribute(b);
  root->addAttribute(root);
  sxFile f;
  f.newTag("sxBase");
  root->write(&f, nullptr);
  EXPECT_EQ(f.getNumEntries(), 4) << "each object once";
  // Depth-first in the order first reached: root, a, shared, b.
  EXPECT_STREQ(static_cast<const sxBase*>(f.getEntry(2)->getHandle())->getName(), "shared");

  RoundTrip rt(root);
  sxBase* ra = attribute(rt.root, 0);
  sxBase* rb = attribute(rt.root, 1);
  ASSERT_TRUE(ra && rb);
  EXPECT_STREQ(ra->getName(), "a");
  EXPECT_STREQ(rb->getName(), "b");
  EXPECT_EQ(attribute(ra, 0), attribute(rb, 0));
  EXPECT_STREQ(attribute(ra, 0)->getName(), "shared");
  EXPECT_EQ(attribute(ra, 0)->getRefCount(), 3) << "two owners and the open file";
  EXPECT_EQ(attribute(rt.root, 2), rt.root);
  sxKeepCycle(rt.root);
  sxKeepCycle(root);
  root->unRef();
}

TEST(ObjectPersistence, UnwritableAttributesAreSkipped) {
  sxBase* root = make("root");
  root->ref();
  root->addAttribute(new sxTestHidden);
  root->addAttribute(make("kept"));
  sxTestHidden::getClassType()->setWritable(false);
  sxFile f;
  sxEntry* e = root->write(&f, nullptr);
  EXPECT_EQ(f.getNumEntries(), 2);
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

// Objects of unknown classes and references to missing entries read as
// null; the rest of the file still loads.
TEST(ObjectPersistence, UnknownClassesAndMissingEntriesReadAsNull) {
  sxTempDir dir;
  std::string path = dir.file("unknown.sx");
  {
    sxFile f;
    ASSERT_TRUE(f.create(path.c_str()));
    int base = f.newTag("sxBase");
    int alien = f.newTag("sxNoSuchClass");
    sxEntry* root = f.newEntry(base);
    root->writeInt(5);
    root->writeString("root");
    root->writeShort(0);
    root->writeInt(4);
    root->writeInt(1);   // the unknown object
    root->writeInt(99);  // no such entry
    root->writeInt(-1);  // none
    root->writeInt(2);   // a known object
    sxEntry* unknown = f.newEntry(alien);
    unknown->writeInt(0);
    sxEntry* known = f.newEntry(base);
    known->writeInt(6);
    known->writeString("known");
    known->writeShort(0);
    known->writeInt(0);
    ASSERT_TRUE(f.write());
  }
  sxFile f;
  ASSERT_TRUE(f.open(path.c_str(), "r"));
  auto* root = new sxBase;
  root->ref();
  f.getEntry(0)->setHandle(root);
  ASSERT_NE(root->read(&f, f.getEntry(0)), nullptr);
  ASSERT_NE(root->getAttribList(), nullptr);
  ASSERT_EQ(root->getAttribList()->getNum(), 1);
  EXPECT_STREQ(attribute(root, 0)->getName(), "known");
  f.close();
  EXPECT_EQ(attribute(root, 0)->getRefCount(), 1);
  root->unRef();
}

// A chain far deeper than writing and reading recurse keeps every object,
// its fields and its sharing.
TEST(ObjectPersistence, DeepChainsRoundTrip) {
  const int length = 5000;
  sxBase* root = make("0");
  root->ref();
  sxBase* last = root;
  for (int i = 1; i < length; ++i) {
    sxBase* next = make(std::to_string(i).c_str());
    next->addAttribute(root);  // every object also refers back to the root
    last->addAttribute(next);
    last = next;
  }
  RoundTrip rt(root);
  int n = 0;
  for (const sxBase* o = rt.root; o; ++n) {
    ASSERT_EQ(std::string(o->getName()), std::to_string(n));
    if (n > 0) {
      ASSERT_EQ(attribute(o, 0), rt.root);
    }
    o = attribute(o, n == 0 ? 0 : 1);
  }
  EXPECT_EQ(n, length);
  EXPECT_EQ(rt.reader.getNumEntries(), length) << "each object once";
  sxKeepCycle(rt.root);
  sxKeepCycle(root);
  root->unRef();
}

TEST(ObjectPersistence, ReadWithoutAnEntryTakesTheFirstOfItsClass) {
  sxTempDir dir;
  std::string path = dir.file("first.sx");
  sxTestHolder::initClass();
  {
    sxFile f;
    ASSERT_TRUE(f.create(path.c_str()));
    sxBase* a = make("plain");
    a->ref();
    a->write(&f, nullptr);
    auto* h = new sxTestHolder;
    h->ref();
    h->setName("holder");
    h->write(&f, nullptr);
    ASSERT_TRUE(f.write());
    a->unRef();
    h->unRef();
  }
  sxFile f;
  ASSERT_TRUE(f.open(path.c_str(), "r"));
  auto* h = new sxTestHolder;
  h->ref();
  EXPECT_EQ(h->read(&f, nullptr), f.getEntry(1));
  EXPECT_STREQ(h->getName(), "holder");
  auto* g = new sxGroup;
  g->ref();
  EXPECT_EQ(g->read(&f, nullptr), nullptr) << "no entry of that class";
  g->unRef();
  h->unRef();
}

}  // namespace
