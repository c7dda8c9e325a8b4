#pragma once

#include <sx/traversal/sxAudioTrait.h>

// Scales the audio level of a sub-graph.
class SX_API sxAudioLevelScale : public sxAudioTrait {
 public:
  SX_DECLARE_CLASS(sxAudioLevelScale)
  SX_DEFAULT_CONSTRUCTORS(sxAudioLevelScale, sxAudioTrait)
};
