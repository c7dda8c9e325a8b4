#include <sx/nodes/sxGroup.h>
#include <sx/nodes/sxGroupType.h>
#include <sx/threads/sxStats.h>
#include <sx/traversal/sxAudioTrait.h>
#include <sx/traversal/sxTraitStack.h>
#include <sx/traversal/sxTravTrait.h>
#include <sx/traversal/sxVisualTrait.h>

SX_DEFINE_CLASS(sxStats)

sxStats::sxStats(unsigned types) : stackTypes(types) {
  reset();
}

void sxStats::reset() {
  auto size = [this](int family, unsigned keep, int n) {
    // The arrays are 16-bit long in the stored format; more types are not counted.
    if (n > 0x7FFF) n = 0x7FFF;
    counts[family].assign(keep ? std::size_t(n) : 0u, 0);
  };
  size(visualCounts, stackTypes & sxTraitStack::STACK_VISUAL,
       sxVisualTraitType::getNumTraitTypes());
  size(audioCounts, stackTypes & sxTraitStack::STACK_AUDIO, sxAudioTraitType::getNumTraitTypes());
  size(travCounts, stackTypes & sxTraitStack::STACK_TRAV, sxTravTraitType::getNumTraitTypes());
  size(groupCounts, 1u, sxGroupType::getNumGroupTypes());
  culled = updates = 0;
  updateSeconds = 0.0;
  // A type unloaded since may leave its address to another.
  lastGroupType = nullptr;
  for (const sxType*& t : knownTypes) t = nullptr;
}

long long sxStats::getNumGroups() const {
  long long n = 0;
  for (int c : counts[groupCounts]) n += c;
  return n;
}

void sxStats::incCount(const sxVisualTrait* trait) {
  if (trait) count(visualCounts, trait->getTraitIndex());
}

void sxStats::incCount(const sxAudioTrait* trait) {
  if (trait) count(audioCounts, trait->getTraitIndex());
}

void sxStats::incCount(const sxTravTrait* trait) {
  if (trait) count(travCounts, trait->getTraitIndex());
}

void sxStats::countGroupOfType(const sxType* type) {
  lastGroupType = type;
  for (int k = 0; k < numKnownTypes; ++k) {
    if (knownTypes[k] == type) {
      lastGroupIndex = knownIndices[k];
      return;
    }
  }
  const auto* indexed = dynamic_cast<const sxIndexedType*>(type);
  lastGroupIndex = indexed && indexed->getFamily() == sxIndexedType::groupFamily
                       ? indexed->getFamilyIndex()
                       : -1;
  knownTypes[nextKnown] = type;
  knownIndices[nextKnown] = lastGroupIndex;
  nextKnown = (nextKnown + 1) % numKnownTypes;
}

int sxStats::getCount(int family, const sxIndexedType* type) const {
  int i = type ? type->getFamilyIndex() : -1;
  const std::vector<int>& c = counts[family];
  return i >= 0 && std::size_t(i) < c.size() ? c[std::size_t(i)] : 0;
}

int sxStats::getCount(const sxVisualTraitType* type) const {
  return getCount(visualCounts, type);
}
int sxStats::getCount(const sxAudioTraitType* type) const {
  return getCount(audioCounts, type);
}
int sxStats::getCount(const sxTravTraitType* type) const {
  return getCount(travCounts, type);
}
int sxStats::getCount(const sxGroupType* type) const {
  return getCount(groupCounts, type);
}
