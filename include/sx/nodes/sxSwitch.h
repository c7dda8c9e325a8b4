#pragma once

#include <cstdint>
#include <vector>

#include <sx/nodes/sxGroup.h>
#include <sx/object/sxMemory.h>

class sxCamera;
class sxCollider;
class sxEntry;
class sxFile;
class sxListener;
class sxScene;
class sxTravContext;

/// A group that shows only some of its children, and can cross-fade from
/// the old selection to the new one.
///
/// Every child has a state (CHILD_STATE) that follows it through every edit
/// of the children: the first child of an empty switch comes on, every
/// other new child comes off, and a removed child takes its state along.
/// The selection acts in the camera, listener and collider passes;
/// traversers visit every child.
///
/// With transitions enabled a change of selection fades: the children that
/// were on turn off over the transition time while the new ones come on.
/// The clock runs in the scene's per-frame direct calls (kind
/// DIRECT_CALL_UPDATE_FIRST), with which the switch registers during the
/// update pass while transitions are enabled; it starts at the first frame
/// that sees the change. The camera and listener passes hand the fade to
/// the children through the context's transition scale and mode (2 for the
/// children fading out with 1 - progress, 1 for those fading in with
/// progress); colliders meet the new selection only.
class SX_API sxSwitch : public sxGroup {
 public:
  SX_CLASS(sxSwitch, sxGroup)

  /// The state of one child.
  enum CHILD_STATE : std::uint8_t {
    CHILD_OFF = 0,
    CHILD_ON = 1,
    CHILD_TURNING_OFF = 2  ///< fading out during a transition
  };
  /// Bits of the switch flags.
  enum SWITCH_FLAGS : unsigned {
    SWITCH_TRANSITIONS = 0x1,   ///< transitions enabled
    SWITCH_IN_TRANSITION = 0x2  ///< a transition is running
  };

  sxSwitch() = default;
  /// Copies the switch's settings; the child states come with the children
  /// (makeCopy, makeClone).
  sxSwitch(const sxSwitch& source);

  sxEntry* read(sxFile* file, sxEntry* entry) override;
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

  /// Withdraws the switch from the scene's per-frame direct calls.
  virtual void removeSceneUpdate(sxScene* scene);
  /// Turns child index on or off. False, changing nothing, when index is
  /// outside 0 to count-1. With transitions, turning off a child that is on
  /// fades it out, turning on a child that is off fades it in; turning off
  /// a child that is not on, or on one that is on or fading out, settles at
  /// once and ends the running transition.
  virtual bool selectChild(int index, bool on);
  /// Makes child index the only one on (with transitions, the children that
  /// were on fade out). False when index is not below the number of
  /// children; a negative index turns every child off.
  virtual bool selectChild(int index);
  /// Every child on (or off) at once, ending a running transition.
  virtual void allOn();
  virtual void allOff();
  /// True when child index is on or fading out; false outside the children.
  virtual bool isActive(int index) const;
  /// Switching off also ends a running transition (the children fading
  /// out are off). A change asks the next update pass to (de)register the
  /// switch with its scene.
  virtual void enableTransition(bool on);
  /// Seconds; 0 or less (or NaN) switches at once: transitions are then
  /// disabled.
  virtual void setTransitionTime(float seconds);

  bool isTransitionEnabled() const { return switchFlags & SWITCH_TRANSITIONS; }
  bool isInTransition() const { return switchFlags & SWITCH_IN_TRANSITION; }
  float getTransitionTime() const { return transitionTime; }
  /// 0 to 1 within the running transition.
  float getTransitionProgress() const { return transitionProgress; }
  /// CHILD_OFF outside the children.
  CHILD_STATE getChildState(int index) const;

  /// True: the order of the children is the order of their states.
  bool areChildrenOrdered() const override;

  using sxGroup::apply;
  /// The selected children (with the fade during a transition); the
  /// content-mask test of the group pass is not made.
  void apply(sxCamera* camera) const override;
  void apply(sxListener* listener) const override;
  /// The children that are on; no fade.
  void apply(sxCollider* collider) const override;
  /// Registers with the scene's direct calls while transitions are
  /// enabled, withdraws otherwise; then the group update.
  void update(sxTravContext* context) override;
  /// The transition clock, called by the scene every frame.
  void updateDirect(sxScene* scene, bool first) override;

 protected:
  sxGroup* copyGroup() const override;
  sxGroup* cloneGroup() const override;
  void childLinked(int index) override;
  void childUnlinked(int index) override;

  /// After a copy or clone has its children: takes the per-child data of
  /// src when the children match one to one (a child that could not be
  /// copied leaves the defaults). Kinds with more per-child data extend it.
  virtual void adoptPerChild(const sxSwitch& src);
  /// newCopyOf, then adoptPerChild: every switch kind's copyGroup and
  /// cloneGroup.
  template <class T>
  static T* newSwitchCopy(const T& src, bool cloning) {
    T* node = newCopyOf(src, cloning);
    if (node) static_cast<sxSwitch*>(node)->adoptPerChild(src);
    return node;
  }

 private:
  template <class Agent>
  void applySelection(Agent* agent, bool fade) const;
  /// Starts a fade: the clock starts at the next frame.
  void startTransition();
  /// Ends a fade: the children fading out are off.
  void endTransition();
  void setAll(CHILD_STATE state);

  std::vector<std::uint8_t, sxAllocator<std::uint8_t>> active;
  unsigned switchFlags = 0;
  float transitionProgress = 0.0f;
  /// sxGetTime seconds; 0 or less: the clock has not started.
  float transitionStart = 0.0f;
  float transitionTime = 1.0f;
};
