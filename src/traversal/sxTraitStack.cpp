#include <new>
#include <type_traits>

#include <sx/object/sxArena.h>
#include <sx/object/sxMemory.h>
#include <sx/threads/sxStats.h>
#include <sx/traversal/sxTraitStack.h>
#include <sx/traversal/sxTravContext.h>
#include <sx/viewing/sxCamera.h>

SX_DEFINE_CLASS(sxTraitStack)

namespace {

using Mode = sxTrait::MODE;

template <class T>
int numTypesOf();
template <>
int numTypesOf<sxVisualTrait>() {
  return sxVisualTraitType::getNumTraitTypes();
}
template <>
int numTypesOf<sxAudioTrait>() {
  return sxAudioTraitType::getNumTraitTypes();
}
template <>
int numTypesOf<sxTravTrait>() {
  return sxTravTraitType::getNumTraitTypes();
}

template <class T>
T* makeDefault(int i) {
  sxBase* made = nullptr;
  if constexpr (std::is_same_v<T, sxVisualTrait>)
    made = sxVisualTraitType::createInstance(i);
  else if constexpr (std::is_same_v<T, sxAudioTrait>)
    made = sxAudioTraitType::createInstance(i);
  else
    made = sxTravTraitType::createInstance(i);
  T* trait = dynamic_cast<T*>(made);
  if (trait && trait->getTraitIndex() == i) return trait;
  if (made) {
    made->ref();
    made->unRef();
  }
  return nullptr;
}

// Sizes one family for n types; stacks and traits in force of the types
// known before are kept.
template <class T>
void resize(sxTraitStackFamily<T>& f, int n, bool withDefaults) {
  // Called by every context reset: when no type was added, nothing is
  // allocated (not even the model stack handed to resize).
  if (n <= f.numTypes) return;
  f.stacks.resize(std::size_t(n), sxStack(4));
  f.applied.resize(std::size_t(n), nullptr);
  if (withDefaults) {
    std::size_t had = f.defaults.size();
    f.defaults.resize(std::size_t(n));
    for (std::size_t i = had; i < f.defaults.size(); ++i) f.defaults[i] = makeDefault<T>(int(i));
  }
  f.numTypes = n;
}

template <class T>
void resetStacks(sxTraitStackFamily<T>& f) {
  for (sxStack& s : f.stacks) s.reset();
}

template <class T>
int indexIn(const sxTraitStackFamily<T>& f, const T* trait) {
  if (!trait) return -1;
  int i = trait->getTraitIndex();
  return i >= 0 && i < f.numTypes ? i : -1;
}

template <class T>
const T* topOf(const sxStack& s) {
  return static_cast<const T*>(s.getTop());
}

template <class T>
const T* defaultOf(const sxTraitStackFamily<T>& f, int i) {
  return f.defaults.empty() ? nullptr : f.defaults[std::size_t(i)].get();
}

// Pushes trait when it wins over the top of its stack: onto an empty stack
// (above the type's default, which thus comes back when the trait is
// popped), above a MODE_NORMAL or MODE_FORCE top, and above a MODE_OVERRIDE
// top only when it is that top or MODE_FORCE. The index of the pushed
// trait, or -1.
template <class T>
int pushIfWinning(sxTraitStackFamily<T>& f, T* trait) {
  if (!trait || trait->getApplyMode() == sxTrait::MODE_OFF) return -1;
  int i = indexIn(f, trait);
  if (i < 0) return -1;
  sxStack& s = f.stacks[std::size_t(i)];
  if (const T* top = topOf<T>(s)) {
    Mode mode = top->getApplyMode();
    bool wins = mode == sxTrait::MODE_NORMAL || mode == sxTrait::MODE_FORCE ||
                (mode == sxTrait::MODE_OVERRIDE &&
                 (top == trait || trait->getApplyMode() == sxTrait::MODE_FORCE));
    if (!wins) return -1;
  } else if (const T* d = defaultOf(f, i)) {
    s.push(const_cast<T*>(d));
  }
  return s.push(trait) ? i : -1;
}

// Pops trait when it is the top of its stack: its index, or -1.
template <class T>
int popIfTop(sxTraitStackFamily<T>& f, const T* trait) {
  int i = indexIn(f, trait);
  if (i < 0) return -1;
  sxStack& s = f.stacks[std::size_t(i)];
  if (s.isEmpty() || s.getTop() != trait) return -1;
  s.pop();
  return i;
}

template <class T>
const T* topOf(const sxTraitStackFamily<T>& f, const sxIndexedType* type) {
  int i = type ? type->getFamilyIndex() : -1;
  return i >= 0 && i < f.numTypes ? topOf<T>(f.stacks[std::size_t(i)]) : nullptr;
}

template <class T>
const T* appliedOf(const sxTraitStackFamily<T>& f, const sxIndexedType* type) {
  int i = type ? type->getFamilyIndex() : -1;
  return i >= 0 && i < f.numTypes ? f.applied[std::size_t(i)] : nullptr;
}

template <class T>
const T** listTraits(const sxTraitStackFamily<T>& f, sxTraitStack::LIST_TYPE list, int& count,
                     sxArena* arena, bool withDefaults) {
  count = 0;
  std::size_t bytes = sizeof(const T*) * std::size_t(f.numTypes > 0 ? f.numTypes : 1);
  void* room = arena ? arena->malloc(unsigned(bytes)) : sxMemory::malloc(bytes);
  if (!room) return nullptr;
  const T** out = static_cast<const T**>(room);
  for (int i = 0; i < f.numTypes; ++i) {
    const T* t = nullptr;
    switch (list) {
      case sxTraitStack::LIST_TOPS:
        t = topOf<T>(f.stacks[std::size_t(i)]);
        break;
      case sxTraitStack::LIST_DEFAULTS:
        break;
      case sxTraitStack::LIST_APPLIED:
        t = f.applied[std::size_t(i)];
        break;
      default:
        return out;
    }
    if (!t && (withDefaults || list == sxTraitStack::LIST_DEFAULTS)) t = defaultOf(f, i);
    if (t) out[count++] = t;
  }
  return out;
}

sxStats* statsOf(const sxTravContext* context) {
  return context ? context->getStats() : nullptr;
}

sxStats* statsOf(const sxCamera* camera) {
  return camera ? statsOf(camera->getTravContext()) : nullptr;
}

}  // namespace

void sxTraitTypeSet::clear() {
  for (int k = 0; k < list.getNum(); ++k) remove(list[k]);
  list.reset();
}

sxTraitStack::sxTraitStack(unsigned types, bool withDefaults)
    : stackTypes(withDefaults ? types | STACK_DEFAULTS : types) {
  reallocArrays();
  resetVisualStacks();
  resetAudioStacks();
  resetTravStacks();
}

sxTraitStack::~sxTraitStack() = default;

bool sxTraitStack::reallocArrays() {
  // Sized up front so that the pushes of a traversal never allocate.
  try {
    bool defaults = (stackTypes & STACK_DEFAULTS) != 0;
    if (stackTypes & STACK_VISUAL) {
      resize(visual, numTypesOf<sxVisualTrait>(), defaults);
      std::size_t words = (std::size_t(visual.numTypes) + 31) / 32;
      changedTypes.bits.resize(words, 0u);
      nonDefaultTypes.bits.resize(words, 0u);
    }
    if (stackTypes & STACK_AUDIO) resize(audio, numTypesOf<sxAudioTrait>(), defaults);
    if (stackTypes & STACK_TRAV) resize(trav, numTypesOf<sxTravTrait>(), defaults);
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

bool sxTraitStack::reset(bool resetStacks) {
  bool sized = reallocArrays();
  if (resetStacks) {
    resetVisualStacks();
    resetAudioStacks();
    resetTravStacks();
  }
  return sized;
}

void sxTraitStack::resetVisualStacks() {
  resetStacks(visual);
}

void sxTraitStack::resetAudioStacks() {
  resetStacks(audio);
}

void sxTraitStack::resetTravStacks() {
  resetStacks(trav);
}

void sxTraitStack::pushTrait(sxTravTrait* trait, sxTravContext* context) {
  int i = pushIfWinning(trav, trait);
  if (i < 0) return;
  if (sxStats* s = statsOf(context)) s->incCount(trait);
  trait->apply(context);
  trav.applied[std::size_t(i)] = trait;
}

void sxTraitStack::popTrait(sxTravTrait* trait, sxTravContext* context) {
  int i = popIfTop(trav, trait);
  if (i < 0) return;
  if (const sxTravTrait* top = topOf<sxTravTrait>(trav.stacks[std::size_t(i)])) {
    top->apply(context);
    trav.applied[std::size_t(i)] = top;
  }
}

void sxTraitStack::pushTrait(sxAudioTrait* trait, sxTravContext* context) {
  if (pushIfWinning(audio, trait) < 0) return;
  if (sxStats* s = statsOf(context)) s->incCount(trait);
}

void sxTraitStack::popTrait(sxAudioTrait* trait, sxTravContext*) {
  popIfTop(audio, trait);
}

void sxTraitStack::pushTrait(sxVisualTrait* trait, sxTravContext*) {
  int i = pushIfWinning(visual, trait);
  if (i < 0) return;
  ++visualChangeCounter;
  changedTypes.add(i);
}

// An emptied stack needs nothing more here: the camera's next
// applyVisualTraitStacks puts the type's default back.
void sxTraitStack::popTrait(sxVisualTrait* trait, sxTravContext*) {
  int i = popIfTop(visual, trait);
  if (i < 0) return;
  ++visualChangeCounter;
  changedTypes.add(i);
}

void sxTraitStack::setAppliedTrait(const sxAudioTrait* trait) {
  int i = indexIn(audio, trait);
  if (i >= 0) audio.applied[std::size_t(i)] = trait;
}

void sxTraitStack::setAppliedTrait(const sxVisualTrait* trait) {
  int i = indexIn(visual, trait);
  if (i < 0) return;
  visual.applied[std::size_t(i)] = trait;
  nonDefaultTypes.add(i);
}

void sxTraitStack::countAndApply(const sxVisualTrait* trait, sxCamera* camera) {
  if (!trait) return;
  if (sxStats* s = statsOf(camera)) s->incCount(trait);
  trait->apply(camera);
}

void sxTraitStack::applyVisualTraitStacks(sxCamera* camera) {
  for (int k = 0; k < changedTypes.list.getNum(); ++k) {
    std::size_t i = std::size_t(changedTypes.list[k]);
    const sxVisualTrait* t = topOf<sxVisualTrait>(visual.stacks[i]);
    if (!t) t = defaultOf(visual, int(i));
    if (!t || t == visual.applied[i]) continue;
    countAndApply(t, camera);
    if (t == defaultOf(visual, int(i)))
      visual.applied[i] = t;
    else
      setAppliedTrait(t);
  }
  changedTypes.clear();
}

void sxTraitStack::applyDefault(int i, sxCamera* camera) {
  const sxVisualTrait* d = defaultOf(visual, i);
  countAndApply(d, camera);
  if (d) visual.applied[std::size_t(i)] = d;
}

// The defaults of the types marked non-default; the marks are cleared.
void sxTraitStack::applyMarkedDefaults(sxCamera* camera) {
  for (int k = 0; k < nonDefaultTypes.list.getNum(); ++k) {
    int i = nonDefaultTypes.list[k];
    if (nonDefaultTypes.contains(i)) applyDefault(i, camera);
  }
  nonDefaultTypes.clear();
}

void sxTraitStack::applyTraits(sxCamera* camera, int n, const sxVisualTrait** traits) {
  ++visualChangeCounter;
  if (!traits) n = 0;
  for (int k = 0; k < n; ++k) {
    int i = indexIn(visual, traits[k]);
    if (i >= 0 && visual.applied[std::size_t(i)] != traits[k]) nonDefaultTypes.remove(i);
  }
  applyMarkedDefaults(camera);
  for (int k = 0; k < n; ++k) {
    int i = indexIn(visual, traits[k]);
    if (i < 0 || visual.applied[std::size_t(i)] == traits[k]) continue;
    countAndApply(traits[k], camera);
    setAppliedTrait(traits[k]);
  }
}

void sxTraitStack::applyDefaultVisualTraits(sxCamera* camera) {
  ++visualChangeCounter;
  applyMarkedDefaults(camera);
}

void sxTraitStack::applyAllDefaultVisualTraits(sxCamera* camera) {
  for (int i = 0; i < visual.numTypes; ++i) applyDefault(i, camera);
  nonDefaultTypes.clear();
}

void sxTraitStack::applyAudioTraits(sxListener* listener) {
  for (int i = 0; i < audio.numTypes; ++i) {
    const sxAudioTrait* t = topOf<sxAudioTrait>(audio.stacks[std::size_t(i)]);
    if (!t) t = defaultOf(audio, i);
    if (!t || t == audio.applied[std::size_t(i)]) continue;
    t->apply(listener);
    audio.applied[std::size_t(i)] = t;
  }
}

void sxTraitStack::applyDefaultAudioTraits(sxListener* listener, bool all) {
  for (int i = 0; i < audio.numTypes; ++i) {
    const sxAudioTrait* d = defaultOf(audio, i);
    if (!d || (!all && d == audio.applied[std::size_t(i)])) continue;
    d->apply(listener);
    audio.applied[std::size_t(i)] = d;
  }
}

void sxTraitStack::applyDefaultTravTraits(sxTravContext* context) {
  for (int i = 0; i < trav.numTypes; ++i) {
    if (const sxTravTrait* d = defaultOf(trav, i)) {
      d->apply(context);
      trav.applied[std::size_t(i)] = d;
    }
  }
}

const sxVisualTrait* sxTraitStack::getTop(const sxVisualTraitType* type) const {
  return topOf(visual, type);
}
const sxAudioTrait* sxTraitStack::getTop(const sxAudioTraitType* type) const {
  return topOf(audio, type);
}
const sxTravTrait* sxTraitStack::getTop(const sxTravTraitType* type) const {
  return topOf(trav, type);
}
const sxVisualTrait* sxTraitStack::getAppliedTrait(const sxVisualTraitType* type) const {
  return appliedOf(visual, type);
}
const sxAudioTrait* sxTraitStack::getAppliedTrait(const sxAudioTraitType* type) const {
  return appliedOf(audio, type);
}
const sxTravTrait* sxTraitStack::getAppliedTrait(const sxTravTraitType* type) const {
  return appliedOf(trav, type);
}

const sxVisualTrait** sxTraitStack::getVisualTraits(LIST_TYPE list, int& count, sxArena* arena,
                                                    bool withDefaults) const {
  return listTraits(visual, list, count, arena, withDefaults);
}

const sxAudioTrait** sxTraitStack::getAudioTraits(LIST_TYPE list, int& count, sxArena* arena,
                                                  bool withDefaults) const {
  return listTraits(audio, list, count, arena, withDefaults);
}

const sxTravTrait** sxTraitStack::getTravTraits(LIST_TYPE list, int& count) const {
  if (list != LIST_TOPS && list != LIST_DEFAULTS) {
    count = 0;
    return static_cast<const sxTravTrait**>(
        sxMemory::malloc(sizeof(const sxTravTrait*) * std::size_t(trav.numTypes + 1)));
  }
  return listTraits(trav, list, count, nullptr, false);
}
