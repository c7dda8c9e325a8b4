// Every way of declaring a class lists its objects once under their own class: the
// current forms with no call in any constructor, and the superseded forms that
// plug-ins were written against, with their initInstance() calls.

#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <tuple>

#include "support/sxTestClasses.h"

// Current forms: no constructors of their own, an implicit copy, a derived
// class, and a class that cannot be copied.
class sxFormPlain : public sxGroup {
 public:
  SX_CLASS(sxFormPlain, sxGroup)
  sxFormPlain() = default;
  int value = 7;
};

class sxFormDerived : public sxFormPlain {
 public:
  SX_CLASS(sxFormDerived, sxFormPlain)
  sxFormDerived() { value = 9; }
};

class sxFormSingle : public sxBase {
 public:
  SX_CLASS_NOCOPY(sxFormSingle, sxBase)
  sxFormSingle() = default;
};

// Superseded forms, parent named at the definition.
class sxFormOld : public sxBase {
 public:
  SX_DECLARE_CLASS(sxFormOld)
  SX_DEFAULT_CONSTRUCTORS(sxFormOld, sxBase)
};

class sxFormOldSingle : public sxBase {
 public:
  SX_DECLARE_CLASS_NOCOPY(sxFormOldSingle)
  sxFormOldSingle() { initInstance(); }
};

SX_DEFINE_CLASS(sxFormPlain, sxGroupType)
SX_DEFINE_CLASS(sxFormDerived, sxGroupType)
SX_DEFINE_CLASS(sxFormSingle)
SX_IMPLEMENT_CLASS(sxFormOld, sxBase, sxType)
SX_IMPLEMENT_CLASS_NOCOPY(sxFormOldSingle, sxBase, sxType)

namespace {
template <class C, class P>
void expectListedOnlyUnderOwnClass() {
  SCOPED_TRACE(C::getClassName());
  const int base = sxBase::getNum(false);
  P::initClass();
  sxType* parent = P::getClassType();
  // Every object is in sxBase's own list as well.
  const int parentOwn = parent->getNum(false) + (parent == sxBase::getClassType());
  {
    C object;
    object.setName("formObject");
    EXPECT_EQ(C::getNum(false), 1);
    EXPECT_TRUE(C::get(0, false) == &object && C::find("FORMOBJECT") == &object);
    EXPECT_EQ(parent->getNum(false), parentOwn) << "still listed under the parent";
    EXPECT_EQ(sxBase::getNum(false), base + 1);
    EXPECT_EQ(object.getType()->getParent(), parent);
    sxRef<sxBase> copy(object.createCopy());
    sxArena arena(4096);
    sxBase* disposable = object.createDisposableCopy(&arena);
    if constexpr (std::is_copy_constructible_v<C>) {
      ASSERT_TRUE(copy && disposable);
      // The copy is listed, the arena copy is not.
      EXPECT_EQ(std::tuple(C::getNum(false), sxBase::getNum(false)), std::tuple(2, base + 2));
      EXPECT_TRUE(disposable->isDisposable() && disposable->getType() == C::getClassType());
      EXPECT_TRUE(arena.inRange(disposable) && arena.inRange(disposable->getName()));
      EXPECT_STREQ(disposable->getName(), "formObject");
      EXPECT_EQ(object.createDisposableCopy(nullptr), nullptr);
      // Objects made while an arena copy is built are ordinary objects.
      EXPECT_EQ(sxBase::getCopyArena(), nullptr);
      disposable->~sxBase();
      copy.reset();
    } else {
      EXPECT_TRUE(!copy && !disposable);
    }
    sxRef<sxBase> made(sxType::createInstance(C::getClassName()));
    ASSERT_NE(made, nullptr);
    EXPECT_TRUE(made->isOfExactType(C::getClassType()));
    EXPECT_EQ(std::tuple(C::getNum(false), parent->getNum(false)),
              std::tuple(2, parentOwn + (parent == sxBase::getClassType())));
  }
  EXPECT_EQ(std::tuple(C::getNum(false), sxBase::getNum(false)), std::tuple(0, base));
}
}  // namespace

TEST(sxClassForms, EveryFormListsItsObjectsOnceUnderTheirClass) {
  expectListedOnlyUnderOwnClass<sxFormPlain, sxGroup>();
  expectListedOnlyUnderOwnClass<sxFormDerived, sxFormPlain>();
  expectListedOnlyUnderOwnClass<sxFormSingle, sxBase>();
  expectListedOnlyUnderOwnClass<sxFormOld, sxBase>();
  expectListedOnlyUnderOwnClass<sxFormOldSingle, sxBase>();
  expectListedOnlyUnderOwnClass<sxTestLeaf, sxTestNode>();
  sxFormDerived source;
  source.value = 42;
  EXPECT_EQ(sxFormDerived(source).value, 42) << "implicit copies keep the fields";
  // Made on the heap: the object made while the arguments of another's
  // constructor are worked out (after the other's allocation) and a class
  // without the class line of its own are each listed once.
  struct Unnamed : sxFormDerived {
    double extra[9] = {};
  };
  const int derived = sxFormDerived::getNum(false), plain = sxFormPlain::getNum(false),
            base = sxBase::getNum(false);
  {
    sxRef<sxFormDerived> outer(new sxFormDerived(*sxRef<sxFormDerived>(new sxFormDerived)));
    sxRef<Unnamed> unnamed(new Unnamed);
    EXPECT_EQ(
        std::tuple(sxFormDerived::getNum(false), sxFormPlain::getNum(false), sxBase::getNum(false)),
        std::tuple(derived + 2, plain, base + 2));
    EXPECT_EQ(unnamed->getType(), sxFormDerived::getClassType());
  }
  EXPECT_EQ(std::tuple(sxFormDerived::getNum(false), sxBase::getNum(false)),
            std::tuple(derived, base));
}
