#include <gtest/gtest.h>
#include <sx/sxCore.h>

#include <functional>
#include <string>
#include <vector>

#include "support/sxTestFiles.h"

namespace {

// One kernel trait with a non-default value, mode and shareable value: the
// setter's filtering, write's return rule and read restore it; isEqual tells
// it from a default trait of its class.
struct TraitCase {
  std::function<sxTrait*()> make;  // set to the case's value
  std::function<double(const sxTrait*)> value;
  double expected;
};

template <class T, class V>
TraitCase traitCase(void (T::*set)(V), V (T::*get)() const, V given, V stored) {
  return {[=] {
            T* t = new T;
            (t->*set)(given);
            return t;
          },
          [=](const sxTrait* t) { return double((static_cast<const T*>(t)->*get)()); },
          double(stored)};
}

TEST(sxTrait, KernelTraitsSurviveAFileWithFilteredValues) {
  const std::vector<TraitCase> cases = {
      traitCase(&sxCull::setMask, &sxCull::getMask, 0xFFFFFFFFu, 0xFFFFFFFFu),
      traitCase(&sxSort::setMask, &sxSort::getMask, 0xFFFFFFFFu, 0x300000u),
      traitCase(&sxColliderTarget::setTargets, &sxColliderTarget::getTargets, 0xFFFFFFFFu,
                0x70000u),
      traitCase(&sxColliderMask::setMask, &sxColliderMask::getMask, 0x12345678u, 0x12345678u),
      traitCase(&sxPrune::enable, &sxPrune::isEnabled, true, true),
      traitCase(&sxAudioLevelScale::set, &sxAudioLevelScale::get, 0.25f, 0.25f),
      traitCase(&sxAudioPriorityScale::set, &sxAudioPriorityScale::get, -3.5f, -3.5f),
  };
  sxTempDir dir;
  const std::string path = dir.file("traits.sx");
  std::vector<sxRef<sxTrait>> written;
  sxFile given;  // write into an entry that the caller made
  ASSERT_TRUE(given.create(dir.file("given.sx").c_str()));
  {
    sxFile f;
    ASSERT_TRUE(f.create(path.c_str()));
    for (const TraitCase& c : cases) {
      sxRef<sxTrait> t(c.make());
      EXPECT_EQ(c.value(t.get()), c.expected) << t->getType()->getName();
      t->setName("trait");
      t->setApplyMode(sxTrait::MODE_OVERRIDE);
      t->enableShareable(false);
      sxEntry* e = t->write(&f, nullptr);
      ASSERT_NE(e, nullptr);
      sxEntry* other = given.newEntry(given.newTag("sxTrait"));
      EXPECT_EQ(t->write(&given, other), nullptr) << "given an entry, write returns null";
      EXPECT_EQ(other->getDataSize(), e->getDataSize());
      written.push_back(t);
    }
    ASSERT_TRUE(f.write());
  }
  sxFile f;
  ASSERT_TRUE(f.open(path.c_str(), "r"));
  for (std::size_t i = 0; i < cases.size(); ++i) {
    const sxTrait* w = written[i].get();
    SCOPED_TRACE(w->getType()->getName());
    sxRef<sxTrait> back(static_cast<sxTrait*>(w->getType()->createClassInstance(nullptr)));
    EXPECT_FALSE(back->isEqual(w));
    sxEntry* e = f.getEntry(int(i));
    ASSERT_EQ(back->read(&f, e), e);
    EXPECT_STREQ(back->getName(), "trait");
    EXPECT_EQ(back->getApplyMode(), sxTrait::MODE_OVERRIDE);
    EXPECT_FALSE(back->isShareable());
    EXPECT_EQ(cases[i].value(back.get()), cases[i].expected);
    EXPECT_TRUE(back->isEqual(w) && w->isEqual(back.get()));
    // The record is the base record, two shorts and one 4-byte value.
    sxBase plain(*w);
    sxEntry* p = plain.write(&given, nullptr);
    EXPECT_EQ(e->getDataSize(), p->getDataSize() + 2 * 2 + 4);
  }
}

}  // namespace
