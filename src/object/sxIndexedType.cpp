#include <sx/object/sxIndexedType.h>

#include "object/sxModuleStatic.h"

namespace {
constinit sxiModuleStatic<sxTList<sxIndexedType*>> families[sxIndexedType::numFamilies];
}

sxIndexedType::sxIndexedType(Family f, sxType* parent, const char* name, CreateFunc create,
                             RemoveFunc remove, sxPlugIn* plugIn)
    : sxType(parent, name, create, remove, plugIn), family(f), familyIndex(0) {
  sxTypeRegistryLock lock;
  familyIndex = families[f]->getNum();
  families[f]->add(this);
}

sxIndexedType::~sxIndexedType() {
  sxTypeRegistryLock lock;
  if (families[family]->indexInRange(familyIndex) && (*families[family])[familyIndex] == this)
    families[family]->set(familyIndex, nullptr);
}

int sxIndexedType::getNumInFamily(Family f) {
  sxTypeRegistryLock lock;
  return families[f]->getNum();
}

sxIndexedType* sxIndexedType::getInFamily(Family f, int i) {
  sxTypeRegistryLock lock;
  return families[f]->indexInRange(i) ? (*families[f])[i] : nullptr;
}

sxBase* sxIndexedType::createInFamily(Family f, int index) {
  sxTypeRegistryLock lock;
  if (index < 0 || index > families[f]->getNum()) return nullptr;
  sxIndexedType* t = families[f]->indexInRange(index) ? (*families[f])[index] : nullptr;
  return t ? t->createClassInstance(nullptr) : nullptr;
}

void sxIndexedType::cleanUpFamilies() {
  for (auto& table : families) table->setSize(0);
}

const char* sxIndexedType::getRecordClassName() const {
  static const char* const names[numFamilies] = {"sxGroupType", "sxVisualTraitType",
                                                 "sxAudioTraitType", "sxTravTraitType"};
  return names[family];
}
