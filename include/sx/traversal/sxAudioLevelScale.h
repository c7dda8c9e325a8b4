#pragma once

#include <sx/traversal/sxAudioTrait.h>

// Scales the audio level of a sub-graph.
class SX_API sxAudioLevelScale : public sxAudioTrait {
 public:
  SX_CLASS(sxAudioLevelScale, sxAudioTrait)
  sxAudioLevelScale() = default;
};
