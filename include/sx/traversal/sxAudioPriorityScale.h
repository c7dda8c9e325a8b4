#pragma once

#include <sx/traversal/sxAudioTrait.h>

/// Scales the audio priority of a sub-graph: applied, it hands its scale to
/// the listener's priority-scale setter.
class SX_API sxAudioPriorityScale : public sxAudioTrait {
 public:
  SX_CLASS(sxAudioPriorityScale, sxAudioTrait)
  sxAudioPriorityScale() = default;

  void apply(sxListener* target) const override;
  bool isEqual(const sxTrait* other) const override;
  virtual void set(float value) { scale = value; }
  float get() const { return scale; }

  /// The trait fields, then the value as a float.
  sxEntry* read(sxFile* file, sxEntry* entry) override;
  sxEntry* write(sxFile* file, sxEntry* entry) const override;

 private:
  float scale = 1.0f;
};
