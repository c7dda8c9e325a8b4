#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <string>
#include <vector>

namespace {

// The registry as the library left it at load time, captured before any
// test runs.
struct LoadState {
  std::vector<std::string> created, announced;
  LoadState() {
    for (int i = 0; i < sxType::getNumTypes(); ++i)
      created.push_back(sxType::getType(i)->getName());
    for (int i = 0; i < sxType::getNumRegisteredClasses(); ++i)
      announced.push_back(sxType::getRegisteredClassName(i));
  }
};
const LoadState loadState;

struct ClassInfo {
  const char* name;
  const char* parent;
  const char* record;
};

// Every built-in class with its parent and record class.
const ClassInfo builtIns[] = {
    {"sxBase", nullptr, "sxType"},
    {"sxAction", "sxBase", "sxType"},
    {"sxCamera", "sxBase", "sxType"},
    {"sxCollider", "sxBase", "sxType"},
    {"sxEvent", "sxBase", "sxType"},
    {"sxListener", "sxBase", "sxType"},
    {"sxLock", "sxBase", "sxType"},
    {"sxQueue", "sxBase", "sxType"},
    {"sxRenderContext", "sxBase", "sxType"},
    {"sxSemaphore", "sxBase", "sxType"},
    {"sxStats", "sxBase", "sxType"},
    {"sxThread", "sxBase", "sxType"},
    {"sxTraitStack", "sxBase", "sxType"},
    {"sxTravContext", "sxBase", "sxType"},
    {"sxTraverser", "sxBase", "sxType"},
    {"sxWindow", "sxBase", "sxType"},
    {"sxTrait", "sxBase", "sxType"},
    {"sxFlushThread", "sxAction", "sxType"},
    {"sxKeyboard", "sxQueue", "sxType"},
    {"sxMouse", "sxQueue", "sxType"},
    {"sxVisualTrait", "sxTrait", "sxType"},
    {"sxAudioTrait", "sxTrait", "sxType"},
    {"sxTravTrait", "sxTrait", "sxType"},
    {"sxAudioLevelScale", "sxAudioTrait", "sxAudioTraitType"},
    {"sxAudioPriorityScale", "sxAudioTrait", "sxAudioTraitType"},
    {"sxColliderMask", "sxTravTrait", "sxTravTraitType"},
    {"sxColliderTarget", "sxTravTrait", "sxTravTraitType"},
    {"sxCull", "sxTravTrait", "sxTravTraitType"},
    {"sxPrune", "sxTravTrait", "sxTravTraitType"},
    {"sxSort", "sxTravTrait", "sxTravTraitType"},
    {"sxTransition", "sxTravTrait", "sxTravTraitType"},
    {"sxGroup", "sxBase", "sxGroupType"},
    {"sxActionNode", "sxGroup", "sxGroupType"},
    {"sxBillboard", "sxGroup", "sxGroupType"},
    {"sxEmitter", "sxGroup", "sxGroupType"},
    {"sxFence", "sxGroup", "sxGroupType"},
    {"sxGeometry", "sxGroup", "sxGroupType"},
    {"sxStyle", "sxGroup", "sxGroupType"},
    {"sxSwitch", "sxGroup", "sxGroupType"},
    {"sxTransform", "sxGroup", "sxGroupType"},
    {"sxSphereFence", "sxFence", "sxGroupType"},
    {"sxBoxFence", "sxFence", "sxGroupType"},
    {"sxAutoSwitch", "sxSwitch", "sxGroupType"},
    {"sxRangeSwitch", "sxSwitch", "sxGroupType"},
    {"sxModel", "sxTransform", "sxGroupType"},
    {"sxScene", "sxStyle", "sxGroupType"},
};

std::string mixCase(const char* s, int seed) {
  std::string r(s);
  for (std::size_t i = 0; i < r.size(); ++i)
    r[i] = char(((i + std::size_t(seed)) % 2) ? std::toupper(r[i]) : std::tolower(r[i]));
  return r;
}

}  // namespace

TEST(sxBuiltInClasses, LoadTimeCreatesCoreClassesAndAnnouncesTheRestInOrder) {
  // The application thread made at load time owns a flush action, which
  // creates the records of sxFlushThread and its parent sxAction on first
  // use; each leaves the announced list with the last entry moving into
  // its place.
  const std::vector<std::string> created = {
      "sxBase",        "sxLock",      "sxRenderContext", "sxQueue",  "sxEvent",
      "sxThread",      "sxSemaphore", "sxWindow",        "sxCamera", "sxTraitStack",
      "sxTravContext", "sxAction",    "sxFlushThread"};
  const std::vector<std::string> announced = {
      "sxTraverser",    "sxStats",           "sxListener",
      "sxTrait",        "sxTravTrait",       "sxVisualTrait",
      "sxAudioTrait",   "sxAudioLevelScale", "sxAudioPriorityScale",
      "sxColliderMask", "sxColliderTarget",  "sxCull",
      "sxSort",         "sxPrune",           "sxTransition",
      "sxGroup",        "sxTransform",       "sxFence",
      "sxSphereFence",  "sxBoxFence",        "sxStyle",
      "sxEmitter",      "sxGeometry",        "sxScene",
      "sxSwitch",       "sxRangeSwitch",     "sxBillboard",
      "sxAutoSwitch",   "sxActionNode",      "sxModel",
      "sxMouse",        "sxKeyboard",        "sxCollider"};
  // The test classes of this program register nothing at load time, so the
  // registry holds exactly the library's classes.
  EXPECT_EQ(loadState.created, created);
  EXPECT_EQ(loadState.announced, announced);
}

TEST(sxBuiltInClasses, EachIsCreatableByNameInAnyCaseAndCounted) {
  int seed = 0;
  for (const ClassInfo& c : builtIns) {
    SCOPED_TRACE(c.name);
    std::string name = mixCase(c.name, seed++);
    sxType* t = sxType::findType(name.c_str());
    ASSERT_NE(t, nullptr);
    EXPECT_STREQ(t->getName(), c.name);
    EXPECT_STREQ(t->getRecordClassName(), c.record);
    if (c.parent)
      EXPECT_STREQ(t->getParent() ? t->getParent()->getName() : "", c.parent);
    else
      EXPECT_EQ(t->getParent(), nullptr);
    EXPECT_EQ(t->getPlugIn(), sxBase::getClassType()->getPlugIn());

    // Actions and action nodes are made only as subclasses.
    const bool abstract =
        c.name == std::string("sxAction") || c.name == std::string("sxActionNode");
    EXPECT_EQ(t->isAbstract(), abstract);
    if (abstract) {
      EXPECT_EQ(sxType::createInstance(c.name), nullptr);
      continue;
    }
    int own = t->getNum(false);
    int all = sxBase::getNum(false);
    sxBase* obj = sxType::createInstance(mixCase(c.name, seed++).c_str());
    ASSERT_NE(obj, nullptr);
    obj->ref();
    EXPECT_EQ(obj->getType(), t);
    EXPECT_EQ(t->getNum(false), own + 1);
    EXPECT_GE(sxBase::getNum(false), all + 1);
    // A copy is of the same class and counted too.
    sxBase* copy = obj->createCopy();
    if (copy) {
      EXPECT_EQ(copy->getType(), t);
      EXPECT_EQ(t->getNum(false), own + 2);
      copy->unRef();
    } else {
      EXPECT_STREQ(c.name, "sxThread");  // threads cannot be copied
    }
    obj->unRef();
    EXPECT_EQ(t->getNum(false), own);
  }
}

TEST(sxBuiltInClasses, GroupAndTraitTypesAreNumberedPerFamily) {
  sxType::initAllRegisteredClasses();
  std::map<std::string, int> seen;
  for (int i = 0; i < sxGroupType::getNumGroupTypes(); ++i) {
    sxGroupType* g = sxGroupType::getGroupType(i);
    ASSERT_NE(g, nullptr);
    EXPECT_EQ(g->getGroupIndex(), i);
    seen[g->getName()] = i;
  }
  EXPECT_EQ(seen.size(), 15u);  // sxGroup and its 14 built-in kinds
  // The range test of createInstance(int) accepts the count itself.
  int n = sxGroupType::getNumGroupTypes();
  EXPECT_EQ(sxGroupType::createInstance(n), nullptr);
  EXPECT_EQ(sxGroupType::createInstance(-1), nullptr);
  sxBase* g = sxGroupType::createInstance(seen["sxScene"]);
  ASSERT_NE(g, nullptr);
  EXPECT_TRUE(g->isOfExactType(sxScene::getClassType()));
  g->unRef();
  EXPECT_EQ(sxTravTraitType::getNumTraitTypes(), 6);
  EXPECT_EQ(sxAudioTraitType::getNumTraitTypes(), 2);
  EXPECT_EQ(sxVisualTraitType::getNumTraitTypes(), 0);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(sxTravTraitType::getTraitType(i)->getTraitIndex(), i);
  EXPECT_EQ(sxTravTraitType::getTraitType(6), nullptr);
}
