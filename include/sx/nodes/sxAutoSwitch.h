#pragma once

#include <sx/containers/sxIterator.h>
#include <sx/nodes/sxSwitch.h>

class sxCamera;
class sxCollider;
class sxEntry;
class sxFile;
class sxListener;
class sxScene;
class sxTravContext;

/// A switch that steps through its children over time or frames.
///
/// A sequencer (sxIterator) picks the child; the switch selects it in the
/// scene's per-frame direct calls (with the switch's fade when transitions
/// are enabled). Adding a child sets the sequencer's number of items to the
/// number of children; removing one does not. Removing the child the
/// sequencer is on disables the switch; removing one before it moves the
/// sequencer back by one, so that it stays on the same child.
///
/// While disabled or paused nothing runs, a running fade included; a
/// disabled switch shows nothing to cameras, listeners and colliders.
class SX_API sxAutoSwitch : public sxSwitch {
 public:
  SX_CLASS(sxAutoSwitch, sxSwitch)

  /// Enabled, with the sequencer reset (nothing selected yet).
  sxAutoSwitch();

  sxEntry* read(sxFile* file, sxEntry* entry) override;
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

  virtual void enable(bool on);
  virtual void pause();
  /// Clears the pause; in time mode the sequencer's clock restarts now.
  virtual void resume();
  /// Stores the mode and refills the per-child durations of that mode.
  virtual void setMode(sxIterator::MODE mode);
  virtual void setDirection(sxIterator::DIRECTION direction);
  /// Stores the cycle and starts the sequence again.
  virtual void setCycle(sxIterator::CYCLE cycle);
  /// Back to "not started": the next step selects the first child of the
  /// direction.
  virtual void reset();
  /// The whole sequence's time, shared equally by the children.
  virtual void setTime(float seconds);
  virtual void setChildTime(int index, float seconds);
  /// The time of every child.
  virtual void setChildTime(float seconds);
  /// The whole sequence's frames, shared equally by the children.
  virtual void setFrameCount(int frames);
  virtual void setChildFrameCount(int index, int frames);
  /// The frames of every child.
  virtual void setChildFrameCount(int frames);

  bool isEnabled() const { return enabled; }
  bool isPaused() const { return sequencer.isPaused(); }
  sxIterator::MODE getMode() const { return sequencer.getMode(); }
  sxIterator::DIRECTION getDirection() const { return sequencer.getDirection(); }
  sxIterator::CYCLE getCycle() const { return sequencer.getCycle(); }
  float getTime() const { return sequencer.getTime(); }
  float getChildTime(int index) const { return sequencer.getItemTime(index); }
  int getFrameCount() const { return sequencer.getFrameCount(); }
  int getChildFrameCount(int index) const { return sequencer.getItemFrameCount(index); }
  /// The child the sequencer is on; -1 before the first step.
  int getCurrentChild() const { return sequencer.getSelectedItem(); }

  using sxSwitch::apply;
  /// The switch's passes, only while enabled.
  void apply(sxCamera* camera) const override;
  void apply(sxListener* listener) const override;
  void apply(sxCollider* collider) const override;
  /// Registers with the scene's direct calls, then the group update.
  void update(sxTravContext* context) override;
  /// One step of the sequencer, then the fade's clock.
  void updateDirect(sxScene* scene, bool first) override;

 protected:
  sxGroup* copyGroup() const override;
  sxGroup* cloneGroup() const override;
  void childLinked(int index) override;
  void childUnlinked(int index) override;
  void adoptPerChild(const sxSwitch& src) override;

 private:
  bool enabled = true;
  sxIterator sequencer;
};
