#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <atomic>
#include <cctype>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/sxTestClasses.h"
#include "support/sxThreadTestSupport.h"

// Classes in the superseded form, each used by one test, so that the order
// of tests does not matter.
#define SX_TEST_CLASS(Class, Parent)       \
  class Class : public Parent {            \
   public:                                 \
    SX_DECLARE_CLASS(Class)                \
    SX_DEFAULT_CONSTRUCTORS(Class, Parent) \
  };                                       \
  SX_IMPLEMENT_CLASS(Class, Parent, sxType)
SX_TEST_CLASS(sxTestLazy, sxBase)
SX_TEST_CLASS(sxTestTransient, sxBase)
SX_TEST_CLASS(sxTestFindable, sxBase)
SX_TEST_CLASS(sxTestFindableChild, sxTestFindable)
SX_TEST_CLASS(sxTestCrowd, sxBase)
SX_TEST_CLASS(sxTestCrowdChild, sxTestCrowd)

// Lookups in any letter case are tested with every library class below.
TEST(sxType, UnknownNamesAbstractClassesAndSourcesOfOtherClassesMakeNothing) {
  for (const char* name : {"", "sxNoSuchClass"}) EXPECT_EQ(sxType::findType(name), nullptr) << name;
  EXPECT_EQ(sxType::findType(nullptr), nullptr);
  EXPECT_EQ(sxType::createInstance("sxNoSuchClass"), nullptr);
  EXPECT_EQ(sxType::createInstance(nullptr), nullptr);
  sxTestAbstract::initClass();
  sxType* t = sxType::findType("sxTestAbstract");
  EXPECT_TRUE(t && t->isAbstract());
  EXPECT_EQ(sxType::createInstance("sxTestAbstract"), nullptr);
  EXPECT_EQ(sxTestAbstract::createInstance(nullptr), nullptr);
  // Creation from a source copies only its own class, listed under that class only.
  const int nodes = sxTestNode::getNum(false), leaves = sxTestLeaf::getNum(false);
  sxTestLeaf leaf;
  sxTestNode other;
  sxRef<sxBase> copy(sxTestLeaf::createInstance(&leaf));
  ASSERT_NE(copy, nullptr);
  EXPECT_TRUE(copy->isOfExactType(sxTestLeaf::getClassType()));
  EXPECT_EQ(sxTestLeaf::getNum(false), leaves + 2);
  EXPECT_EQ(sxTestNode::getNum(true), nodes + leaves + 3);
  EXPECT_EQ(sxTestLeaf::createInstance(&other), nullptr);
  copy.reset();
  EXPECT_EQ(sxTestLeaf::getNum(false), leaves + 1);
}

TEST(sxType, RecordsComeOnFirstUseAndGoWithTheLastInstanceOnceDeleted) {
  static sxPlugIn plugIn;
  plugIn.setRelease(3, 4, 5, nullptr);
  const int announced = sxType::getNumRegisteredClasses(), types = sxType::getNumTypes();
  sxTestLazy::registerClass(&plugIn);
  ASSERT_EQ(sxTestLazy::getClassType(), nullptr);
  EXPECT_EQ(sxType::getNumRegisteredClasses(), announced + 1);
  EXPECT_STREQ(sxType::getRegisteredClassName(announced), "sxTestLazy");
  EXPECT_EQ(sxType::getRegisteredClassName(announced + 1), nullptr);
  // No record yet: 0 and null, not a crash.
  EXPECT_TRUE(sxTestLazy::getNum(false) == 0 && !sxTestLazy::get(0, true));
  sxType* t = sxType::findType("SXTESTLAZY");
  ASSERT_NE(t, nullptr);
  EXPECT_STREQ(t->getName(), "sxTestLazy");
  EXPECT_EQ(std::tuple(t, t->getPlugIn(), t->getVersion(), t->getParent()),
            std::tuple(sxTestLazy::getClassType(), &plugIn, sxMakeVersion(3, 4, 5),
                       sxBase::getClassType()));
  EXPECT_EQ(std::pair(sxType::getNumRegisteredClasses(), sxType::getNumTypes()),
            std::pair(announced, types + 1));
  EXPECT_TRUE(sxType::getType(t->getIndex()) == t && plugIn.getType(0) == t);
  // Announcing a created class does nothing.
  sxTestLazy::registerClass(&plugIn);
  EXPECT_EQ(sxType::getNumRegisteredClasses(), announced);
  // A record whose deletion is pending goes with its last instance.
  auto *a = new sxTestTransient, *b = new sxTestTransient;
  sxType* transient = sxTestTransient::getClassType();
  ASSERT_NE(transient, nullptr);
  const int before = sxType::getNumTypes();
  EXPECT_TRUE(!transient->deleteType() && transient->isDeletePending());
  a->unRef();
  EXPECT_EQ(sxTestTransient::getClassType(), transient);
  b->unRef();
  EXPECT_EQ(std::tuple(sxTestTransient::getClassType(), sxType::getNumTypes(),
                       sxType::findType("sxTestTransient")),
            std::tuple(nullptr, before - 1, nullptr));
  // The class can be created again.
  sxRef<sxTestTransient> c(new sxTestTransient);
  ASSERT_NE(sxTestTransient::getClassType(), nullptr);
  EXPECT_EQ(sxTestTransient::getNum(false), 1);
  c.reset();
  EXPECT_TRUE(sxTestTransient::getClassType()->deleteType());
  EXPECT_EQ(sxTestTransient::getClassType(), nullptr);
}

TEST(sxType, FindWalksInstancesInGetOrder) {
  sxTestFindable* made[] = {new sxTestFindable, new sxTestFindable, new sxTestFindableChild,
                            new sxTestFindable};
  const char* names[] = {"A", "a", "a", "b"};
  for (int i = 0; i < 4; ++i) made[i]->setName(names[i]);
  auto [upper, lower, child, other] = made;
  // Own instances in order, derived ones when asked for; a start must be a match.
  EXPECT_EQ(std::tuple(sxTestFindable::find("a"), sxTestFindable::find("a", upper),
                       sxTestFindable::find("a", lower), sxTestFindable::find("a", lower, true)),
            std::tuple(upper, lower, nullptr, child));
  for (auto [name, start] : {std::pair("a", other), {nullptr, nullptr}, {"c", nullptr}})
    EXPECT_EQ(sxTestFindable::find(name, start), nullptr);
  // get numbers own instances first, then those of the child classes.
  ASSERT_EQ(sxTestFindable::getNum(true), 4);
  EXPECT_EQ(sxTestFindable::get(3, true), child);
  for (int i : {4, -1}) EXPECT_EQ(sxTestFindable::get(i, true), nullptr) << i;
  EXPECT_EQ(sxTestFindable::get(9, false), nullptr);
  // Removal from the middle moves the last instance into the gap.
  ASSERT_EQ(sxTestFindable::get(1), lower);
  lower->unRef();
  EXPECT_EQ(std::pair(sxTestFindable::get(1), sxTestFindable::getNum(false)), std::pair(other, 2));
  for (sxBase* o : {upper, other, child}) o->unRef();
  EXPECT_EQ(sxTestFindable::getNum(true), 0);
}

namespace {
std::string mixCase(const char* s, std::size_t seed) {
  std::string r(s);
  for (std::size_t i = 0; i < r.size(); ++i)
    r[i] = char((i + seed) % 2 ? std::toupper(r[i]) : std::tolower(r[i]));
  return r;
}
}  // namespace

// Every library class is found by name in any letter case, a child of its parent,
// numbered in the family of its root class (sxGroup and below, below each trait class),
// and, unless abstract, made by name with its objects and copies counted while alive.
TEST(sxType, EveryLibraryClassIsFoundCreatedAndCounted) {
  sxType::initAllRegisteredClasses();
  struct Root {
    sxType* type;
    sxIndexedType::Family family;
    bool itself = false;
  };
  const Root families[] = {{sxGroup::getClassType(), sxIndexedType::groupFamily, true},
                           {sxVisualTrait::getClassType(), sxIndexedType::visualTraitFamily},
                           {sxAudioTrait::getClassType(), sxIndexedType::audioTraitFamily},
                           {sxTravTrait::getClassType(), sxIndexedType::travTraitFamily}};
  const sxPlugIn* kernel = sxBase::getClassType()->getPlugIn();
  int abstract = 0, created = 0;
  for (int i = 0; i < sxType::getNumTypes(); ++i) {
    sxType* t = sxType::getType(i);
    if (!t || t->getPlugIn() != kernel) continue;
    SCOPED_TRACE(t->getName());
    EXPECT_EQ(sxType::findType(mixCase(t->getName(), std::size_t(i)).c_str()), t);
    if (sxType* parent = t->getParent()) {
      int n = parent->getNumChildren(), k = 0;
      while (k < n && parent->getChild(k) != t) ++k;
      EXPECT_LT(k, n) << "not among its parent's children";
    }
    auto* indexed = dynamic_cast<sxIndexedType*>(t);
    int family = -1;
    for (const Root& r : families)
      if (t->isOfType(r.type) && (r.itself || t != r.type)) family = r.family;
    ASSERT_EQ(indexed ? int(indexed->getFamily()) : -1, family);
    EXPECT_TRUE(!indexed ||
                sxIndexedType::getInFamily(indexed->getFamily(), indexed->getFamilyIndex()) == t);
    EXPECT_EQ(std::string(t->getRecordClassName()) == "sxType", indexed == nullptr);
    if (t->isAbstract()) {
      ++abstract;
      EXPECT_EQ(sxType::createInstance(t->getName()), nullptr);
      continue;
    }
    const int own = t->getNum(false);
    sxRef<sxBase> obj(sxType::createInstance(mixCase(t->getName(), std::size_t(i + 1)).c_str()));
    ASSERT_NE(obj, nullptr);
    ++created;
    EXPECT_EQ(std::pair(obj->getType(), t->getNum(false)), std::pair(t, own + 1));
    if (sxRef<sxBase> copy = obj->createCopy()) {
      EXPECT_EQ(std::pair(copy->getType(), t->getNum(false)), std::pair(t, own + 2));
    } else {
      EXPECT_EQ(t, sxThread::getClassType()) << "only threads are not copied";
    }
    obj.reset();
    EXPECT_EQ(t->getNum(false), own);
  }
  EXPECT_GT(abstract, 0);
  EXPECT_GT(created, 40);
}

// Initialising every announced class ends even when one makes no record. Creation by
// family number gives null at the count and below 0.
TEST(sxType, InitialisingAllAnnouncedClassesTerminatesAndFamiliesCreateByNumber) {
  sxType::registerClass(
      "sxTestNeverCreated", [](sxPlugIn*) {}, nullptr);
  sxType::initAllRegisteredClasses();
  EXPECT_EQ(sxType::getNumRegisteredClasses(), 0);
  EXPECT_EQ(sxType::findType("sxTestNeverCreated"), nullptr);
  EXPECT_NE(sxType::findType("sxScene"), nullptr);
  const int n = sxGroupType::getNumGroupTypes();
  for (int i : {n, -1}) EXPECT_EQ(sxGroupType::createInstance(i), nullptr) << i;
  EXPECT_EQ(sxGroupType::getGroupType(n), nullptr);
  auto* scene = static_cast<sxGroupType*>(sxScene::getClassType());
  sxRef<sxBase> g(sxGroupType::createInstance(scene->getGroupIndex()));
  ASSERT_NE(g, nullptr);
  EXPECT_TRUE(g->isOfExactType(scene));
  const int traits = sxTravTraitType::getNumTraitTypes();
  ASSERT_GT(traits, 0);
  EXPECT_EQ(sxTravTraitType::getTraitType(traits - 1)->getTraitIndex(), traits - 1);
  EXPECT_EQ(sxTravTraitType::getTraitType(traits), nullptr);
}

// Threads create, name and destroy objects of a class and of one derived from it (each
// moves from list to list while it is built) while others hold the lists of all objects
// or of the family: a held list stays still and holds each object once, and its holder
// creates and destroys objects of the classes it holds.
TEST(sxInstanceLists, ConcurrentCreationDestructionAndEnumeration) {
  // The records come on first use: make them before the enumerators look.
  delete new sxTestCrowdChild;
  const int before = sxBase::getNum(false);
  constexpr int makers = 2, rounds = 40, batch = 100;
  std::atomic<int> making{makers};
  sxtest::withDeadline("instance lists under contention", [&] {
    sxtest::inThreads(makers + 2, [&](int id) {
      if (id < makers) {
        std::vector<sxBase*> made;
        for (int r = 0; r < rounds; ++r) {
          for (int i = 0; i < batch; ++i) {
            sxBase* obj =
                (i + id) % 2 ? static_cast<sxBase*>(new sxTestCrowdChild) : new sxTestCrowd;
            obj->setName(i % 3 ? "crowd" : "a member of the crowd with a long name");
            made.push_back(obj);
          }
          // Every other one first, so that removals move entries about.
          for (std::size_t i = 0; i < made.size(); i += 2) delete made[i];
          for (std::size_t i = 1; i < made.size(); i += 2) delete made[i];
          made.clear();
        }
        making.fetch_sub(1);
        return;
      }
      const bool all = id == makers;
      sxType* type = all ? sxBase::getClassType() : sxType::findType("sxTestCrowd");
      ASSERT_NE(type, nullptr);
      do {
        type->lockInstanceList();
        const int n = type->getNum(!all);
        std::set<const sxBase*> seen;
        for (int i = 0; i < n; ++i) seen.insert(type->get(i, !all));
        sxBase* own = new sxTestCrowdChild;
        const int withOwn = type->getNum(!all);
        delete own;
        EXPECT_EQ(std::tuple(seen.size(), seen.count(nullptr), withOwn, type->getNum(!all)),
                  std::tuple(std::size_t(n), std::size_t(0), n + 1, n));
        type->unlockInstanceList();
      } while (making.load() > 0);
    });
  });
  EXPECT_EQ(std::tuple(sxBase::getNum(false), sxTestCrowd::getNum(true)), std::tuple(before, 0));
}
