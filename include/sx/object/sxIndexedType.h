#pragma once

#include <sx/object/sxType.h>

// A type record that also has a number within its family of classes (group
// types, or one of the trait families), so that per-class tables can be
// indexed by it. Numbers are assigned in order of record creation and never
// reused; a destroyed record leaves an empty place in its family's table.
class SX_API sxIndexedType : public sxType {
 public:
  enum Family { groupFamily, visualTraitFamily, audioTraitFamily, travTraitFamily, numFamilies };

  sxIndexedType(Family family, sxType* parent, const char* name, CreateFunc create,
                RemoveFunc remove, sxPlugIn* plugIn);
  ~sxIndexedType() override;

  const char* getRecordClassName() const override;
  int getFamilyIndex() const { return familyIndex; }
  Family getFamily() const { return family; }

  static int getNumInFamily(Family family);
  // Null outside 0..getNumInFamily()-1 and for a destroyed record.
  static sxIndexedType* getInFamily(Family family, int i);
  // A new default instance of the class numbered index. The range test
  // accepts index == getNumInFamily() (there is no class there: null).
  static sxBase* createInFamily(Family family, int index);
  static void cleanUpFamilies();

 private:
  Family family;
  int familyIndex;
};

// The typed face of one family's record class.
template <sxIndexedType::Family F>
class sxIndexedTypeOf : public sxIndexedType {
 public:
  sxIndexedTypeOf(sxType* parent, const char* name, CreateFunc create, RemoveFunc remove,
                  sxPlugIn* plugIn)
      : sxIndexedType(F, parent, name, create, remove, plugIn) {}
  using sxType::createInstance;
  static sxBase* createInstance(int index) { return createInFamily(F, index); }
};
