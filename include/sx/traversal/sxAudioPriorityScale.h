#pragma once

#include <sx/traversal/sxAudioTrait.h>

// Scales the audio priority of a sub-graph.
class SX_API sxAudioPriorityScale : public sxAudioTrait {
 public:
  SX_CLASS(sxAudioPriorityScale, sxAudioTrait)
  sxAudioPriorityScale() = default;
};
