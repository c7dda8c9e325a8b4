#pragma once

#include <vector>

#include <sx/nodes/sxGroup.h>
#include <sx/object/sxBase.h>

class sxAudioTrait;
class sxAudioTraitType;
class sxGroup;
class sxGroupType;
class sxIndexedType;
class sxTravTrait;
class sxTravTraitType;
class sxType;
class sxVisualTrait;
class sxVisualTraitType;

/// Counts traversed groups and applied traits per class.
///
/// One count per registered type of each family (visual, audio and
/// traversal traits, groups), indexed by the type's number within its
/// family; the trait families are kept only when chosen at construction.
/// Types registered after the last reset() are not counted until the next.
/// A statistics object is used by one traversal at a time.
class SX_API sxStats : public sxBase {
 public:
  SX_CLASS(sxStats, sxBase)

  /// stackTypes: the trait families to count (sxTraitStack::STACK_TYPES
  /// bits; groups are always counted). Calls reset().
  explicit sxStats(unsigned stackTypes = 0x7);

  /// Counts one application of the trait for its type.
  void incCount(const sxVisualTrait* trait);
  void incCount(const sxAudioTrait* trait);
  void incCount(const sxTravTrait* trait);
  /// Counts one traversal of the group for its type (on the path of every
  /// traversal: a virtual call and a comparison in the common case).
  /// Inline: every group of every walk is counted.
  void incCount(const sxGroup* group) {
    if (!group) return;
    const sxType* type = group->getType();
    if (type != lastGroupType) countGroupOfType(type);
    count(groupCounts, lastGroupIndex);
  }

  /// The count of that type; 0 for null and a type beyond the arrays.
  int getCount(const sxVisualTraitType* type) const;
  int getCount(const sxAudioTraitType* type) const;
  int getCount(const sxTravTraitType* type) const;
  int getCount(const sxGroupType* type) const;

  /// Every group counted since the last reset, of any type.
  long long getNumGroups() const;

  /// Sub-graphs that a camera pass left out because they lay outside the
  /// view volume.
  void incCulled() { ++culled; }
  long long getNumCulled() const { return culled; }

  /// One scene update that took seconds (sxScene::update counts them).
  void addUpdate(double seconds) {
    ++updates;
    updateSeconds += seconds;
  }
  long long getNumUpdates() const { return updates; }
  double getUpdateSeconds() const { return updateSeconds; }

  /// Sizes the arrays for the types registered now and zeroes them and
  /// the counters.
  void reset();

 private:
  enum { visualCounts, audioCounts, travCounts, groupCounts, numCounts };
  void count(int family, int index) {
    std::vector<int>& c = counts[family];
    if (index >= 0 && std::size_t(index) < c.size()) ++c[std::size_t(index)];
  }
  int getCount(int family, const sxIndexedType* type) const;
  void countGroupOfType(const sxType* type);

  std::vector<int> counts[numCounts];
  unsigned stackTypes;
  // The group type seen last and its number, and the last few types seen
  // with theirs: a traversal meets few types, but they alternate level by
  // level, and finding a type's number from scratch is a dynamic cast.
  const sxType* lastGroupType = nullptr;
  int lastGroupIndex = -1;
  static constexpr int numKnownTypes = 8;
  const sxType* knownTypes[numKnownTypes] = {};
  int knownIndices[numKnownTypes] = {};
  int nextKnown = 0;
  long long culled = 0;
  long long updates = 0;
  double updateSeconds = 0.0;
};
