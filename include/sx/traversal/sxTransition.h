#pragma once

#include <sx/traversal/sxTravTrait.h>

/// Hands a transition mode and scale to the traversal context, so that the
/// sub-graph below is drawn or heard as fading in or out.
///
/// Switches set the same two values on the context while they cross-fade
/// their children; this trait fixes them for a whole sub-graph.
class SX_API sxTransition : public sxTravTrait {
 public:
  SX_CLASS(sxTransition, sxTravTrait)

  /// What the scale means for the sub-graph.
  enum MODE : int {
    MODE_NONE = 0,     ///< no transition: shown in full
    MODE_FADE_IN = 1,  ///< coming in: the scale runs from 0 to 1
    MODE_FADE_OUT = 2  ///< going out: the scale runs from 1 to 0
  };

  sxTransition() = default;

  /// Copies scale and mode into the context.
  void apply(sxTravContext* context) const override;
  /// Equal applying fields, scale and mode.
  bool isEqual(const sxTrait* other) const override;
  /// The trait fields, then float scale and int mode.
  sxEntry* read(sxFile* file, sxEntry* entry) override;
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

  virtual void setScale(float s) { scale = s; }
  float getScale() const { return scale; }
  virtual void setMode(MODE m) { mode = m; }
  MODE getMode() const { return mode; }

  bool operator==(const sxTransition& other) const { return isEqual(&other); }

 private:
  MODE mode = MODE_NONE;
  float scale = 1.0f;
};
