#pragma once

#include <cstdint>
#include <vector>

#include <sx/containers/sxList.h>
#include <sx/containers/sxStack.h>
#include <sx/object/sxBase.h>
#include <sx/object/sxRef.h>
#include <sx/traversal/sxAudioTrait.h>
#include <sx/traversal/sxTravTrait.h>
#include <sx/traversal/sxVisualTrait.h>

class sxArena;
class sxCamera;
class sxListener;
class sxTravContext;

/// The stacks of one trait family inside a trait stack: one stack per trait
/// type (indexed by trait index), the trait last applied per type and,
/// when the trait stack was made with them, a default trait per type.
template <class T>
struct sxTraitStackFamily {
  /// The family's number of trait types when the arrays were last sized.
  int numTypes = 0;
  std::vector<sxStack> stacks;
  /// Null until a trait of the type is applied.
  std::vector<const T*> applied;
  /// Empty when the trait stack keeps no default traits; otherwise one per
  /// type (null where the type cannot make an instance).
  std::vector<sxRef<T>> defaults;
};

/// A set of type indices kept both as a list (in order of entry) and as a
/// bit set (32 per word), so that a type is entered once.
struct sxTraitTypeSet {
  sxTList<int> list;
  std::vector<std::uint32_t> bits;

  bool contains(int i) const { return (bits[std::size_t(i) >> 5] >> (i & 31)) & 1u; }
  void add(int i) {
    if (contains(i)) return;
    bits[std::size_t(i) >> 5] |= 1u << (i & 31);
    list.add(i);
  }
  void remove(int i) { bits[std::size_t(i) >> 5] &= ~(1u << (i & 31)); }
  void clear();
};

/// One stack of traits per trait type, applied as a traversal enters and
/// leaves styles.
///
/// A style pushes its traits as a traversal enters it and pops them as it
/// leaves; the stack applies the winning trait of each type whenever the
/// top changes (MODE_NORMAL traits are replaced by deeper ones, a
/// MODE_OVERRIDE trait ignores deeper ones unless they are the same object
/// or MODE_FORCE, MODE_OFF traits are never pushed) and re-applies the
/// previous top when a trait is popped. Traversal traits are applied to the
/// context at once. Visual traits only mark their type as changed: a camera
/// applies them with applyVisualTraitStacks(). Audio traits likewise reach
/// the listener through applyAudioTraits(), since a traversal context knows
/// no listener.
///
/// A trait stack belongs to one traversal at a time and takes no lock. When
/// plug-ins register trait types after it was made, reset(true) sizes it
/// for them; until then their traits are not pushed.
class SX_API sxTraitStack : public sxBase {
 public:
  SX_CLASS(sxTraitStack, sxBase)

  /// The families a trait stack (or a statistics object) keeps.
  enum STACK_TYPES : unsigned {
    STACK_VISUAL = 0x1,
    STACK_AUDIO = 0x2,
    STACK_TRAV = 0x4,
    /// Every family (what a scene uses).
    STACK_ALL = 0x7,
    /// Set in the stack types of a trait stack made with default traits.
    STACK_DEFAULTS = 0x8
  };

  /// What get*Traits lists, per type in type order, skipping nulls.
  enum LIST_TYPE : int {
    LIST_TOPS = 0,      ///< the top of every non-empty stack
    LIST_DEFAULTS = 1,  ///< every default trait
    LIST_APPLIED = 2    ///< the trait last applied (visual and audio families only)
  };

  /// Sizes the stacks of the families in stackTypes for the trait types
  /// registered now. With withDefaults, one default trait per type of those
  /// families is made by its type's factory; defaults are applied when a
  /// stack is emptied and by the apply*Default* operations.
  explicit sxTraitStack(unsigned stackTypes = STACK_ALL, bool withDefaults = false);
  ~sxTraitStack() override;

  /// Pushes the trait if it wins over the top of its type's stack (see the
  /// class comment). Traversal traits are applied to context and counted
  /// by its statistics object; audio traits are counted.
  virtual void pushTrait(sxTravTrait* trait, sxTravContext* context);
  virtual void pushTrait(sxAudioTrait* trait, sxTravContext* context);
  virtual void pushTrait(sxVisualTrait* trait, sxTravContext* context);
  /// Pops the trait when it is the top of its type's stack (a trait that
  /// lost when pushed is not); the new top, if any, is applied.
  virtual void popTrait(sxTravTrait* trait, sxTravContext* context);
  virtual void popTrait(sxAudioTrait* trait, sxTravContext* context);
  virtual void popTrait(sxVisualTrait* trait, sxTravContext* context);
  /// Records the audio trait in force.
  virtual void setAppliedTrait(const sxAudioTrait* trait);
  /// Records the visual trait in force; its type counts as not at its
  /// default until the defaults are applied again.
  virtual void setAppliedTrait(const sxVisualTrait* trait);
  /// Puts exactly the n given traits into effect on the camera, and the
  /// default for every other type that had been changed; a trait already
  /// in force is not applied again.
  virtual void applyTraits(sxCamera* camera, int n, const sxVisualTrait** traits);
  /// Applies, for every type changed since the last call, the top of its
  /// stack (or its default) when it is not the trait in force.
  virtual void applyVisualTraitStacks(sxCamera* camera);
  /// Applies the default of every type that is not at its default.
  virtual void applyDefaultVisualTraits(sxCamera* camera);
  /// Applies the default of every visual type.
  virtual void applyAllDefaultVisualTraits(sxCamera* camera);
  /// Applies to the listener, for every audio type, the top of its stack
  /// (or its default when the stack is empty) when it is not the trait in
  /// force.
  virtual void applyAudioTraits(sxListener* listener);
  /// Applies the default of every audio type: with all false only where
  /// the trait in force is another one.
  virtual void applyDefaultAudioTraits(sxListener* listener, bool all);
  /// Applies the default of every traversal type to the context.
  virtual void applyDefaultTravTraits(sxTravContext* context);
  /// Sizes the arrays for the trait types registered now and, with
  /// resetStacks, empties every stack. False when memory ran out.
  virtual bool reset(bool resetStacks);
  /// Empty every stack of the family (the traits in force are kept).
  virtual void resetVisualStacks();
  virtual void resetAudioStacks();
  virtual void resetTravStacks();

  /// The top of that type's stack; null when it is empty.
  const sxVisualTrait* getTop(const sxVisualTraitType* type) const;
  const sxAudioTrait* getTop(const sxAudioTraitType* type) const;
  const sxTravTrait* getTop(const sxTravTraitType* type) const;
  /// The trait last applied for that type; null when none was.
  const sxVisualTrait* getAppliedTrait(const sxVisualTraitType* type) const;
  const sxAudioTrait* getAppliedTrait(const sxAudioTraitType* type) const;
  const sxTravTrait* getAppliedTrait(const sxTravTraitType* type) const;
  /// A new array with room for every type of the family, holding the
  /// traits that list selects; count is set to the number filled. The array
  /// is taken from arena when one is given, otherwise from sxMemory::malloc
  /// (the caller frees it with sxMemory::free). With withDefaults, a type
  /// without a selected trait contributes its default. Null (count 0) when
  /// nothing can be allocated.
  const sxVisualTrait** getVisualTraits(LIST_TYPE list, int& count, sxArena* arena = nullptr,
                                        bool withDefaults = false) const;
  const sxAudioTrait** getAudioTraits(LIST_TYPE list, int& count, sxArena* arena = nullptr,
                                      bool withDefaults = false) const;
  /// LIST_TOPS or LIST_DEFAULTS; any other list gives count 0. Freed with
  /// sxMemory::free.
  const sxTravTrait** getTravTraits(LIST_TYPE list, int& count) const;

  unsigned getStackTypes() const { return stackTypes; }
  /// Advanced by every effective push and pop of a visual trait and by the
  /// apply*Traits operations.
  int getVisualChangeCounter() const { return visualChangeCounter; }

 private:
  bool reallocArrays();
  void countAndApply(const sxVisualTrait* trait, sxCamera* camera);
  void applyDefault(int typeIndex, sxCamera* camera);
  void applyMarkedDefaults(sxCamera* camera);

  sxTraitStackFamily<sxVisualTrait> visual;
  int visualChangeCounter = 0;
  sxTraitTypeSet changedTypes;
  sxTraitTypeSet nonDefaultTypes;
  sxTraitStackFamily<sxAudioTrait> audio;
  sxTraitStackFamily<sxTravTrait> trav;
  unsigned stackTypes;
};
