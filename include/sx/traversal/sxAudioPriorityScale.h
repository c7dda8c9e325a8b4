#pragma once

#include <sx/traversal/sxAudioTrait.h>

/// Scales the audio priority of a sub-graph: applied, it hands its scale to
/// the listener's priority-scale setter.
class SX_API sxAudioPriorityScale : public sxAudioTrait {
 public:
  SX_CLASS(sxAudioPriorityScale, sxAudioTrait)
  sxAudioPriorityScale() = default;

  void apply(sxListener* target) const override;
  SX_VALUE_TRAIT_OVERRIDES
  virtual void set(float value) { scale = value; }
  float get() const { return scale; }

 private:
  float scale = 1.0f;
};
